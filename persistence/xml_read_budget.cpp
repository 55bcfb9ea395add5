// The bounds of one read, checked as objects and values come.
#include "persistence/xml_read_budget.h"

#include <string>

#include "persistence/xml_prop_bag_errors.h"
#include "runtime/error_numbers.h"

namespace brix {

void XMLReadBudget::RaiseTooManyObjects() const {
  RaiseXMLPropBagError(kErrLoadLimit, "The document holds more than " +
                                          std::to_string(limits_.MaxObjects) +
                                          " objects (tables, fields and conditions); "
                                          "SetLoadLimits raises the bound.");
}

void XMLReadBudget::RaiseTooLong(std::size_t size) const {
  RaiseXMLPropBagError(kErrLoadLimit, "A value of " + std::to_string(size) +
                                          " bytes is longer than the " +
                                          std::to_string(limits_.MaxValueLength) +
                                          " a document may hold; SetLoadLimits raises the bound.");
}

}  // namespace brix
