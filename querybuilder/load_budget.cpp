// The running load's bounds: one per thread, installed by LoadXMLDef for the time of the load.
#include "querybuilder/load_budget.h"

#include <string>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

thread_local LoadBudget* current = nullptr;

[[noreturn]] void RaiseOverLimit(const std::string& reason) {
  Raise(kErrLoadLimit, "[LoadXMLDef]", reason);
}

}  // namespace

LoadBudget::LoadBudget(const xqb_LoadLimits& limits) : limits_(limits), outer_(current) {
  current = this;
}

LoadBudget::~LoadBudget() { current = outer_; }

void LoadBudget::TakeObjects(std::int64_t count) {
  if (!current || count <= 0) return;
  current->objects_ += count;
  if (current->objects_ > current->limits_.MaxObjects) {
    RaiseOverLimit("The definition holds more than " + std::to_string(current->limits_.MaxObjects) +
                   " objects (tables, fields and conditions); SetLoadLimits raises the bound.");
  }
}

void LoadBudget::CheckValue(std::string_view text) {
  if (!current || static_cast<std::int64_t>(text.size()) <= current->limits_.MaxValueLength) return;
  RaiseOverLimit("A value of " + std::to_string(text.size()) + " bytes is longer than the " +
                 std::to_string(current->limits_.MaxValueLength) +
                 " a definition may hold; SetLoadLimits raises the bound.");
}

}  // namespace brix
