// The existence index of tables and fields: how many held objects bear each exact DBName.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "querybuilder/counted_keys.h"

namespace brix {

/// A multiset of the `DBName` texts of the held objects, compared exactly (letter case counts).
template <class T>
class NameIndex {
 public:
  void Insert(const T& item) { names_.Add(Hash(item.DBName()), item.DBName()); }
  void Erase(const T& item) { names_.Remove(Hash(item.DBName()), item.DBName()); }
  void Clear() { names_.Clear(); }
  void Reserve(std::size_t count) { names_.Reserve(count); }
  bool Contains(std::string_view name) const { return names_.Contains(Hash(name), name); }

 private:
  static std::size_t Hash(std::string_view name) {
    const std::size_t h = std::hash<std::string_view>()(name);
    return h ^ (h >> 29);  // the table takes the low bits
  }

  CountedKeys<std::string, std::string_view> names_;
};

}  // namespace brix
