// Parameter expansion: find the parameter condition, add one condition per supplied value, and
// report any failure as the expansion's own error.
#include "querybuilder/parameter_expander.h"

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>

#include "querybuilder/full_text_renderer.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/xqb_conditions.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kSource = "[OrlaXML_qb].[xqb_Persistence].[AddParamValues]";

struct Parameter {
  std::shared_ptr<xqb_Conditions> conditions;  // of the field that carries it
  qbe_ClauseOperator clause = static_cast<qbe_ClauseOperator>(0);
};

std::optional<Parameter> FindParameter(const xqb_Query& query, std::string_view param_name) {
  std::optional<Parameter> found;
  FindInConditions(query,
                   [&](const xqb_Table&, const xqb_Field& field, const xqb_Condition& condition) {
                     if (condition.ParamName() != param_name) return false;
                     found = Parameter{field.Conditions(), condition.Clause()};
                     return true;
                   });
  return found;
}

// The elements of a variant or byte array by position, between its bounds.
class ArrayView {
 public:
  explicit ArrayView(const Variant& values) : values_(values) {
    if (values.IsVariantArray()) {
      lower_ = values.AsVariantArray().lower_bound;
      count_ = values.AsVariantArray().items.size();
    } else if (values.IsByteArray()) {
      count_ = values.AsByteArray().size();
    } else {
      RaiseRuntimeError(kErrTypeMismatch);
    }
  }
  std::int64_t LowerBound() const { return lower_; }
  std::int64_t UpperBound() const { return lower_ + static_cast<std::int64_t>(count_) - 1; }
  Variant Element(std::int64_t position) const {
    auto offset = static_cast<std::size_t>(position - lower_);
    if (values_.IsByteArray()) return Variant(values_.AsByteArray()[offset]);
    return values_.AsVariantArray().items[offset];
  }

 private:
  const Variant& values_;
  std::int64_t lower_ = 0;
  std::size_t count_ = 0;
};

// A bound taken into the 16-bit position counter.
std::int16_t CounterBound(std::int64_t bound) {
  if (bound < std::numeric_limits<std::int16_t>::min() ||
      bound > std::numeric_limits<std::int16_t>::max()) {
    RaiseRuntimeError(kErrOverflow);
  }
  return static_cast<std::int16_t>(bound);
}

void AddValues(const Parameter& parameter, const Variant& param_values) {
  ArrayView values(param_values);
  const std::int16_t first = CounterBound(values.LowerBound());
  const std::int16_t last = CounterBound(values.UpperBound());
  for (std::int32_t position = first; position <= last; ++position) {
    Variant element = values.Element(position);
    if (DiffersFromEmptyString(element)) {
      auto added = parameter.conditions->Add(parameter.clause, element, Variant(""));
      added->SetIsEditable(false);
      added->SetTag("ConditionFromParam");
    }
    if (position == std::numeric_limits<std::int16_t>::max()) RaiseRuntimeError(kErrOverflow);
  }
}

}  // namespace

void ParameterExpander::AddParamValues(std::string_view param_name, const Variant& param_values) {
  try {
    std::optional<Parameter> parameter = FindParameter(query_, param_name);
    if (parameter) AddValues(*parameter, param_values);
  } catch (const Error& trapped) {
    Raise(kErrAddParamValues, std::string(kSource),
          TrappedDescription("Couldn't add parameter!", "Reason: ", trapped));
  }
}

}  // namespace brix
