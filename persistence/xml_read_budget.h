// What one read of a document has built so far, held against its limits. The budget is handed to
// whatever reads (the bag and the bags nested in it, or a direct reader): it is never global.
#pragma once

#include <cstdint>
#include <string_view>

#include "persistence/xml_read_limits.h"

namespace brix {

/// Counts the objects of one read and checks its values; past a bound raises kErrLoadLimit
/// under the bag's source, naming the bound and how to raise it.
class XMLReadBudget {
 public:
  explicit XMLReadBudget(const XMLReadLimits& limits = {}) : limits_(limits) {}

  const XMLReadLimits& Limits() const { return limits_; }

  /// Starts a new read under `limits`.
  void Restart(const XMLReadLimits& limits) {
    limits_ = limits;
    objects_ = 0;
  }

  /// Counts `count` more objects (none when not positive). Inline: a load calls it per object.
  void TakeObjects(std::int64_t count) {
    if (count <= 0) return;
    // Compared before adding: a claimed count near the type's limit must not wrap.
    if (count > limits_.MaxObjects - objects_) RaiseTooManyObjects();
    objects_ += count;
  }
  /// Raises when `text` is longer than a property may be.
  void CheckValue(std::string_view text) const {
    if (static_cast<std::int64_t>(text.size()) > limits_.MaxValueLength) RaiseTooLong(text.size());
  }

 private:
  [[noreturn]] void RaiseTooManyObjects() const;
  [[noreturn]] void RaiseTooLong(std::size_t size) const;

  XMLReadLimits limits_;
  std::int64_t objects_ = 0;
};

}  // namespace brix
