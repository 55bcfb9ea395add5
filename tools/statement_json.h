// A parameterized statement as JSON, for programs that read brixq's output and for the service.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "querybuilder/parameterized_statement.h"

namespace brix::brixq {

/// A bound value as JSON: integers and reals are numbers, Booleans true or false, every other
/// value a string (dates, date-times and times in ISO 8601).
nlohmann::json ParameterValueJson(const SqlParameter& parameter);

/// {"sql": ..., "parameters": [{"placeholder": "?1", "type": ..., "value": ...}, ...]}.
nlohmann::json StatementObject(const ParameterizedStatement& statement, SqlDialect dialect);

/// {"dialect": ..., "sql": ..., "parameters": [{"type": ..., "value": ...}, ...]} on several
/// lines, one parameter a line. Strings are UTF-8 with ", \ and control characters escaped (NUL
/// is \u0000); text that is not valid UTF-8 raises 5, since JSON cannot carry it.
std::string StatementJson(const ParameterizedStatement& statement, SqlDialect dialect);

/// `value` as compact JSON text; text that is not valid UTF-8 raises 5 with the source "brixq".
std::string DumpJson(const nlohmann::json& value);

}  // namespace brix::brixq
