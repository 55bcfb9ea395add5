// What the collections keyed by DBName (tables, fields) share: the existence test and adding an
// object under its name.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "querybuilder/indexed_collection.h"
#include "querybuilder/name_index.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {

/// What adding a used name raises: the collection's number and text (a static text).
struct UsedNameError {
  std::int32_t number;
  std::string_view text;
};

template <class T>
using NamedStore = IndexedStore<T, NameIndex<T>>;

/// Whether an object bears exactly `name` (letter case counts). A search that finds nothing
/// among 32767 objects raises 6.
template <class T>
bool NameExists(NamedStore<T>& store, std::string_view name) {
  const bool found = store.CurrentIndex().Contains(name);
  if (!found) CheckSearchCounter(store.Items().Count());
  return found;
}

/// Raises `error` from `source` when an object bears `name`.
template <class T>
void RefuseUsedName(NamedStore<T>& store, std::string_view name, const UsedNameError& error,
                    std::string_view source) {
  if (NameExists(store, name)) Raise(error.number, std::string(source), std::string(error.text));
}

/// Adds `item` itself under its DBName, after `RefuseUsedName`; no object raises 91.
template <class T>
void AddNamed(NamedStore<T>& store, std::shared_ptr<T> item, const UsedNameError& error,
              std::string_view source) {
  if (!item) RaiseRuntimeError(kErrObjectVariableNotSet);
  RefuseUsedName(store, item->DBName(), error, source);
  std::string key = item->DBName();
  store.AddItem(std::move(item), key);
}

}  // namespace brix
