// JSON of statements: values through nlohmann-json, the layout of brixq's output kept line by line.
#include "tools/statement_json.h"

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix::brixq {

nlohmann::json ParameterValueJson(const SqlParameter& parameter) {
  switch (parameter.type) {
    case SqlType::kInteger:
    case SqlType::kReal:
    case SqlType::kBoolean: {
      // The canonical text is already JSON's: parsing keeps "12.5" and "1e+300" as written.
      nlohmann::json number = nlohmann::json::parse(parameter.text, nullptr, false);
      if (!number.is_discarded()) return number;
      break;
    }
    default:
      break;
  }
  return parameter.text;
}

nlohmann::json StatementObject(const ParameterizedStatement& statement, SqlDialect dialect) {
  nlohmann::json parameters = nlohmann::json::array();
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    const SqlParameter& parameter = statement.parameters[i];
    nlohmann::json& item = parameters.emplace_back(nlohmann::json::object());
    item["placeholder"] = Placeholder(dialect, i + 1);
    item["type"] = SqlTypeName(parameter.type);
    item["value"] = ParameterValueJson(parameter);
  }
  nlohmann::json out = nlohmann::json::object();
  out["sql"] = statement.text;
  out["parameters"] = std::move(parameters);
  return out;
}

std::string DumpJson(const nlohmann::json& value) {
  try {
    return value.dump();
  } catch (const nlohmann::json::type_error&) {
    Raise(kErrInvalidProcedureCall, "brixq",
          "a value is not valid UTF-8 text, and JSON cannot carry it");
  }
}

std::string StatementJson(const ParameterizedStatement& statement, SqlDialect dialect) {
  std::string out = "{\n  \"dialect\": " + DumpJson(SqlDialectName(dialect)) +
                    ",\n  \"sql\": " + DumpJson(statement.text) + ",\n  \"parameters\": [";
  for (std::size_t i = 0; i < statement.parameters.size(); ++i) {
    const SqlParameter& parameter = statement.parameters[i];
    out += i == 0 ? "\n    {\"type\": " : ",\n    {\"type\": ";
    out += DumpJson(SqlTypeName(parameter.type)) +
           ", \"value\": " + DumpJson(ParameterValueJson(parameter)) + '}';
  }
  out += statement.parameters.empty() ? "]\n}" : "\n  ]\n}";
  return out;
}

}  // namespace brix::brixq
