// Base of the collections keyed by DBName (tables, fields): the existence test and adding an
// object under its name.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "querybuilder/indexed_collection.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

template <class T>
class NameIndex;

template <class T>
class NamedCollection : public IndexedCollection<T, NameIndex<T>> {
 protected:
  /// `used_name_error` and `used_name_text` (a static text) are what adding a used name raises.
  NamedCollection(std::int32_t used_name_error, std::string_view used_name_text)
      : used_name_error_(used_name_error), used_name_text_(used_name_text) {}

  /// Whether an object bears exactly `name` (letter case counts). A search that finds nothing
  /// among 32767 objects raises 6.
  bool NameExists(std::string_view name) {
    const bool found = this->CurrentIndex().Contains(name);
    if (!found) CheckSearchCounter(this->Count());
    return found;
  }

  /// Raises the used-name error from `source` when an object bears `name`.
  void RefuseUsedName(std::string_view name, std::string_view source) {
    if (NameExists(name))
      Raise(used_name_error_, std::string(source), std::string(used_name_text_));
  }

  /// Adds `item` itself under its DBName, after `RefuseUsedName`; no object raises 91.
  void AddNamed(std::shared_ptr<T> item, std::string_view source) {
    if (!item) RaiseRuntimeError(kErrObjectVariableNotSet);
    RefuseUsedName(item->DBName(), source);
    std::string key = item->DBName();
    this->AddItem(std::move(item), key);
  }

 private:
  std::int32_t used_name_error_;
  std::string_view used_name_text_;
};

}  // namespace brix
