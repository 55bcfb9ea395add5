// Expands a parameter condition of a saved definition into one condition per value that the
// user supplied at run time.
#pragma once

#include <string_view>

#include "runtime/variant.h"

namespace brix {

class xqb_Query;

/// Adds the run-time values of a named parameter to the field that carries it.
///
/// The parameter is the first condition, in tree order, whose `ParamName` equals the name
/// exactly (case-sensitive); without one nothing happens, whatever the values. The values are a
/// variant array (or a byte array), walked from its lower to its upper bound. Every element that
/// differs from the empty string (`DiffersFromEmptyString`: Empty and "" are skipped, and so is
/// Null, which compares Null) becomes `Conditions.Add(Clause, element, "")` on that field, with
/// `IsEditable` False and `Tag` "ConditionFromParam". The parameter condition itself stays as it
/// is; renderers skip it for its `ParamName`.
///
/// The walk counts positions in a 16-bit Integer counter: both bounds are taken into it before the
/// first element (a bound beyond -32768..32767 overflows before anything is added), and stepping
/// past 32767 overflows after the element at 32767 was added.
///
/// Every error is trapped and raised again as 0x80042774 "[OrlaXML_qb].[xqb_Persistence]
/// .[AddParamValues]" "Couldn't add parameter!" CR LF "Reason: " + the trapped description: a
/// duplicate condition, a used random identity (457), the overflow (6), values that are no array
/// (13), an element whose comparison raises (13 for an error value or an array, 91 for Nothing).
/// Conditions added before the failure stay.
class ParameterExpander {
 public:
  explicit ParameterExpander(xqb_Query& query) : query_(query) {}

  void AddParamValues(std::string_view param_name, const Variant& param_values);

 private:
  xqb_Query& query_;
};

}  // namespace brix
