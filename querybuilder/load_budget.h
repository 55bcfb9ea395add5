// The bounds of the definition load running on this thread, checked by both reading paths.
#pragma once

#include <cstdint>
#include <string_view>

#include "querybuilder/load_limits.h"

namespace brix {

/// Installs `limits` for the load on this thread while it lives (loads do not nest).
class LoadBudget {
 public:
  explicit LoadBudget(const xqb_LoadLimits& limits);
  ~LoadBudget();
  LoadBudget(const LoadBudget&) = delete;
  LoadBudget& operator=(const LoadBudget&) = delete;

  /// Counts `count` more objects; past the bound raises, naming it. No load running: nothing.
  static void TakeObjects(std::int64_t count);
  /// Raises when `text` is longer than a property may be.
  static void CheckValue(std::string_view text);

 private:
  xqb_LoadLimits limits_;
  std::int64_t objects_ = 0;
  LoadBudget* outer_;
};

}  // namespace brix
