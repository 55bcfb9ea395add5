// The render endpoint's work: load, apply parameters, and collect every text of the definition.
#include "tools/render_service.h"

#include <algorithm>
#include <array>
#include <climits>
#include <optional>

#include "querybuilder/clause_catalogue.h"
#include "querybuilder/query_validator.h"
#include "querybuilder/tree_walk.h"
#include "querybuilder/xqb_query.h"
#include "runtime/variant.h"
#include "tools/api_error.h"
#include "tools/clause_names.h"
#include "tools/command_line.h"
#include "tools/request_clock.h"
#include "tools/statement_json.h"

namespace brix::brixq {
namespace {

// Conditions beyond this many are not rendered one by one to find the failing ones.
constexpr int kMaxConditionsChecked = 200;

nlohmann::json ClauseJson(std::int32_t number) {
  return {{"number", number},
          {"name", ClauseName(number)},
          {"description", ClauseDescription(static_cast<qbe_ClauseOperator>(number))}};
}

// The texts a render may be asked for, in the order they are computed.
// "problems" (what Validate finds) is rendered only when asked for.
constexpr std::array<const char*, 7> kParts = {"sql",    "where",      "fullText", "descriptions",
                                               "fields", "statements", "problems"};
constexpr unsigned kProblems = 1u << 6;

// The request's members, checked.
struct RenderRequest {
  std::string definition;
  std::optional<double> date;
  std::vector<std::pair<std::string, std::vector<std::string>>> params;
  std::optional<SqlDialect> dialect;
  std::int32_t top = 0;
  std::int16_t near = 33;
  unsigned parts = ((1u << kParts.size()) - 1) & ~kProblems;  // bit i: kParts[i] is wanted
};

unsigned PartsMember(const nlohmann::json& parts) {
  constexpr const char* kShape =
      "\"parts\" must be an array of \"sql\", \"where\", \"fullText\", \"descriptions\", "
      "\"fields\", \"statements\" and \"problems\"";
  if (!parts.is_array()) throw ApiError(400, kShape);
  unsigned bits = 0;
  for (const nlohmann::json& part : parts) {
    auto found =
        std::find_if(kParts.begin(), kParts.end(), [&](const char* name) { return part == name; });
    if (found == kParts.end()) throw ApiError(400, kShape);
    bits |= 1u << (found - kParts.begin());
  }
  return bits;
}

std::int64_t WholeMember(const nlohmann::json& request, const char* name, std::int64_t low,
                         std::int64_t high) {
  const nlohmann::json& value = request[name];
  if (!value.is_number_integer() || value.get<std::int64_t>() < low ||
      value.get<std::int64_t>() > high) {
    throw ApiError(400, std::string("\"") + name + "\" must be a whole number from " +
                            std::to_string(low) + " to " + std::to_string(high));
  }
  return value.get<std::int64_t>();
}

std::vector<std::pair<std::string, std::vector<std::string>>> ParamsMember(
    const nlohmann::json& params) {
  constexpr const char* kShape =
      "\"params\" must be an array of {\"name\": text, \"values\": [text]}";
  if (!params.is_array()) throw ApiError(400, kShape);
  std::vector<std::pair<std::string, std::vector<std::string>>> out;
  for (const nlohmann::json& param : params) {
    if (!param.is_object() || !param.contains("name") || !param["name"].is_string() ||
        !param.contains("values") || !param["values"].is_array()) {
      throw ApiError(400, kShape);
    }
    std::vector<std::string> values;
    for (const nlohmann::json& value : param["values"]) {
      if (!value.is_string()) throw ApiError(400, kShape);
      values.push_back(value.get<std::string>());
    }
    out.emplace_back(param["name"].get<std::string>(), std::move(values));
  }
  return out;
}

// The members other than "definition".
RenderRequest ParseOptions(const nlohmann::json& request) {
  RenderRequest parsed;
  if (request.contains("date")) {
    if (request["date"].is_string())
      parsed.date = ParseDateTime(request["date"].get<std::string>());
    if (!parsed.date) throw ApiError(400, "\"date\" must be YYYY-MM-DD or YYYY-MM-DDTHH:MM:SS");
  }
  if (request.contains("params")) parsed.params = ParamsMember(request["params"]);
  if (request.contains("dialect")) {
    const nlohmann::json& dialect = request["dialect"];
    if (dialect == "sqlite") {
      parsed.dialect = SqlDialect::kSQLite;
    } else if (dialect == "postgresql") {
      parsed.dialect = SqlDialect::kPostgreSQL;
    } else {
      throw ApiError(400, "\"dialect\" must be \"sqlite\" or \"postgresql\"");
    }
  }
  if (request.contains("top"))
    parsed.top = static_cast<std::int32_t>(WholeMember(request, "top", 0, INT32_MAX));
  if (request.contains("parts")) parsed.parts = PartsMember(request["parts"]);
  if (request.contains("near")) {
    parsed.near = static_cast<std::int16_t>(WholeMember(request, "near", INT16_MIN, INT16_MAX));
  }
  return parsed;
}

std::shared_ptr<xqb_Query> LoadQuery(const RenderRequest& request) {
  auto query = xqb_Query::Create();
  query->LoadXMLDef(request.definition);
  for (const auto& [name, values] : request.params) {
    VariantArray array;
    for (const std::string& value : values) array.items.emplace_back(value);
    query->AddParamValues(name, Variant(std::move(array)));
  }
  return query;
}

nlohmann::json Descriptions(const xqb_Query& query) {
  nlohmann::json descriptions = nlohmann::json::array();
  ForEachCondition(
      query, [&](const xqb_Table& table, const xqb_Field& field, const xqb_Condition& condition) {
        nlohmann::json& item = descriptions.emplace_back(nlohmann::json::object());
        item["id"] = condition.ConditionID();
        item["text"] = query.DescribeCondition(table, field, condition);
      });
  return descriptions;
}

nlohmann::json FieldJson(const xqb_Table& table, const xqb_Field& field) {
  // Members are assigned one by one: an initializer list would copy each nested value again,
  // and the clause lists are most of a large answer.
  nlohmann::json clauses = nlohmann::json::array();
  // Numbers and names only: the Romanian texts are the catalogue's, sent once by its endpoint.
  for (std::int32_t clause : field.ReturnAvailableClauses()) {
    nlohmann::json& item = clauses.emplace_back(nlohmann::json::object());
    item["number"] = clause;
    item["name"] = ClauseName(clause);
  }
  nlohmann::json out = nlohmann::json::object();
  out["table"] = table.DBName();
  out["field"] = field.DBName();
  out["caption"] = field.Caption();
  out["dataType"] = field.ShowAsType();
  out["dbType"] = field.DBType();
  out["controlType"] = field.ControlType();
  out["uiOrder"] = field.UIOrder();
  out["visible"] = field.IsVisible();
  out["clauses"] = std::move(clauses);
  return out;
}

// Tables in collection order; within a table the fields placed by UIOrder first, in that order,
// then those without a place (0 or negative), in collection order.
nlohmann::json Fields(const xqb_Query& query) {
  nlohmann::json fields = nlohmann::json::array();
  for (const auto& table : *query.Tables()) {
    std::vector<std::shared_ptr<xqb_Field>> ordered(table->Fields()->begin(),
                                                    table->Fields()->end());
    auto place = [](const std::shared_ptr<xqb_Field>& f) {
      return f->UIOrder() > 0 ? f->UIOrder() : INT_MAX;
    };
    std::stable_sort(ordered.begin(), ordered.end(),
                     [&](const auto& a, const auto& b) { return place(a) < place(b); });
    for (const auto& field : ordered) fields.push_back(FieldJson(*table, *field));
  }
  return fields;
}

nlohmann::json Statements(const xqb_Query& query, const RenderRequest& request) {
  nlohmann::json statements = nlohmann::json::object();
  for (SqlDialect dialect : {SqlDialect::kSQLite, SqlDialect::kPostgreSQL}) {
    if (request.dialect && *request.dialect != dialect) continue;
    StatementOptions options;
    options.dialect = dialect;
    options.top_records = request.top;
    statements[SqlDialectName(dialect)] =
        StatementObject(query.ReturnParameterizedSQL(options), dialect);
  }
  return statements;
}

nlohmann::json Problems(const xqb_Query& query) {
  nlohmann::json problems = nlohmann::json::array();
  for (const QueryProblem& problem : query.Validate()) {
    nlohmann::json& item = problems.emplace_back(nlohmann::json::object());
    item["path"] = problem.path;
    item["message"] = problem.message;
  }
  return problems;
}

nlohmann::json RenderPart(const xqb_Query& query, const RenderRequest& request, std::size_t part) {
  switch (part) {
    case 0:
      return query.ReturnSQL(request.top);
    case 1:
      return query.ReturnWHEREConditions();
    case 2:
      return query.ReturnDTConditions(request.near);
    case 3:
      return Descriptions(query);
    case 4:
      return Fields(query);
    case 5:
      return Statements(query, request);
    default:
      return Problems(query);
  }
}

nlohmann::json RenderQuery(const xqb_Query& query, const RenderRequest& request) {
  nlohmann::json answer = nlohmann::json::object();
  for (std::size_t part = 0; part < kParts.size(); ++part) {
    if (request.parts & (1u << part)) answer[kParts[part]] = RenderPart(query, request, part);
  }
  return answer;
}

// Keeps only the `keep`-th condition (tree order) of the query.
void KeepOneCondition(xqb_Query& query, int keep) {
  int seen = 0;
  for (const auto& table : *query.Tables()) {
    for (const auto& field : *table->Fields()) {
      auto conditions = field->Conditions();
      const int count = conditions->Count();
      for (std::int32_t position = count; position >= 1; --position) {
        if (seen + position - 1 != keep) conditions->Remove(Variant(position));
      }
      seen += count;
    }
  }
}

// The conditions that fail when rendered alone, each with its error.
nlohmann::json ConditionErrors(const RenderRequest& request) {
  nlohmann::json errors = nlohmann::json::array();
  std::vector<std::int32_t> ids;
  try {
    auto query = LoadQuery(request);
    ForEachCondition(*query, [&](const xqb_Table&, const xqb_Field&, const xqb_Condition& c) {
      ids.push_back(c.ConditionID());
    });
  } catch (const Error&) {
    return errors;  // the definition itself does not load: no condition is to blame alone
  }
  for (int i = 0; i < static_cast<int>(ids.size()) && i < kMaxConditionsChecked; ++i) {
    try {
      auto query = LoadQuery(request);
      KeepOneCondition(*query, i);
      RenderQuery(*query, request);
    } catch (const Error& error) {
      errors.push_back({{"conditionId", ids[i]},
                        {"number", error.Number()},
                        {"source", error.Source()},
                        {"description", error.Description()}});
    }
  }
  return errors;
}

nlohmann::json RenderRequested(const RenderRequest& request) {
  std::optional<ScopedRequestDate> date;
  if (request.date) date.emplace(*request.date);
  try {
    // Created after the date is fixed, so that the query's Today is that day.
    auto query = LoadQuery(request);
    return RenderQuery(*query, request);
  } catch (const Error& error) {
    nlohmann::json extra = nlohmann::json::object();
    nlohmann::json failing = ConditionErrors(request);
    if (!failing.empty()) extra["conditionErrors"] = std::move(failing);
    throw ApiError(422, error.Number(), error.Source(), error.Description(), std::move(extra));
  }
}

}  // namespace

nlohmann::json Render(const nlohmann::json& body) {
  if (!body.is_object()) throw ApiError(400, "the body must be a JSON object");
  const auto definition = body.find("definition");
  if (definition == body.end() || !definition->is_string()) {
    throw ApiError(400, "\"definition\" is required: the definition document as text");
  }
  RenderRequest request = ParseOptions(body);
  request.definition = definition->get<std::string>();
  return RenderRequested(request);
}

nlohmann::json RenderDefinition(std::string definition, const nlohmann::json& options) {
  RenderRequest request = ParseOptions(options);
  request.definition = std::move(definition);
  return RenderRequested(request);
}

nlohmann::json ClauseCatalogue() {
  nlohmann::json clauses = nlohmann::json::array();
  for (std::int32_t number = 1; number <= kClauseCount; ++number) {
    clauses.push_back(ClauseJson(number));
  }
  return {{"clauses", std::move(clauses)}};
}

}  // namespace brix::brixq
