// A parameterized statement as one JSON object, for programs that read brixq's output.
#pragma once

#include <string>

#include "querybuilder/parameterized_statement.h"

namespace brix::brixq {

/// {"dialect": ..., "sql": ..., "parameters": [{"type": ..., "value": ...}, ...]} on several
/// lines. Integers and reals are JSON numbers, Booleans true or false, every other value a JSON
/// string (dates, date-times and times in ISO 8601). Strings are UTF-8 with ", \ and control
/// characters escaped (NUL is \u0000); text that is not valid UTF-8 raises 5, since JSON cannot
/// carry it.
std::string StatementJson(const ParameterizedStatement& statement, SqlDialect dialect);

}  // namespace brix::brixq
