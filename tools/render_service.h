// What POST /api/render answers: every text the library makes of one definition, as JSON.
#pragma once

#include <nlohmann/json.hpp>

namespace brix::brixq {

/// Renders the definition of `request` ({"definition", "date", "params", "dialect", "top",
/// "near", "parts"}) into {"sql", "where", "fullText", "descriptions", "fields", "statements"}
/// (only those `parts` names, when given; "problems", the definition's `Validate` findings, only
/// when named): the texts byte for byte those of brixq sql, where, dt, describe, clauses and
/// check. A malformed request raises `ApiError` 400; a definition that does not load or render
/// raises `ApiError` 422 with the library's error and, where single conditions fail alone,
/// "conditionErrors".
nlohmann::json Render(const nlohmann::json& request);

/// As `Render`, for a definition document posted as it is, `options` holding the other members.
nlohmann::json RenderDefinition(std::string definition, const nlohmann::json& options);

/// {"clauses": [{"number", "name", "description"}]}: the 32 clauses, their enumerator names and
/// Romanian texts.
nlohmann::json ClauseCatalogue();

}  // namespace brix::brixq
