// The existence index of tables and fields: how many held objects bear each exact DBName.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>

namespace brix {

/// A multiset of the `DBName` texts of the held objects, compared exactly (letter case counts).
template <class T>
class NameIndex {
 public:
  void Insert(const T& item) { ++counts_[item.DBName()]; }
  void Erase(const T& item) {
    auto it = counts_.find(item.DBName());
    if (it != counts_.end() && --it->second == 0) counts_.erase(it);
  }
  void Clear() { counts_.clear(); }
  void Reserve(std::size_t count) { counts_.reserve(count); }
  bool Contains(std::string_view name) const { return counts_.contains(std::string(name)); }

 private:
  std::unordered_map<std::string, std::int32_t> counts_;
};

}  // namespace brix
