// The bounds of one read, checked as objects and values come.
#include "persistence/xml_read_budget.h"

#include <string>

#include "persistence/xml_prop_bag_errors.h"
#include "runtime/error_numbers.h"

namespace brix {

void XMLReadBudget::TakeObjects(std::int64_t count) {
  if (count <= 0) return;
  // Compared before adding: a claimed count near the type's limit must not wrap.
  if (count > limits_.MaxObjects - objects_) {
    RaiseXMLPropBagError(kErrLoadLimit,
                         "The document holds more than " + std::to_string(limits_.MaxObjects) +
                             " objects (tables, fields and conditions); SetLoadLimits raises "
                             "the bound.");
  }
  objects_ += count;
}

void XMLReadBudget::CheckValue(std::string_view text) const {
  if (static_cast<std::int64_t>(text.size()) <= limits_.MaxValueLength) return;
  RaiseXMLPropBagError(kErrLoadLimit, "A value of " + std::to_string(text.size()) +
                                          " bytes is longer than the " +
                                          std::to_string(limits_.MaxValueLength) +
                                          " a document may hold; SetLoadLimits raises the bound.");
}

}  // namespace brix
