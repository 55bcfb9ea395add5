// Reads a definition document of the usual shape straight from its text, without building a DOM
// or using the property bag's lookups, giving exactly what the bag-based reading gives.
#pragma once

#include <string_view>

#include "persistence/xml_read_budget.h"
#include "querybuilder/xqb_query.h"

namespace brix {

/// Fills `query` from the document `xml_text` (any encoding the bag reads) when the document has
/// the shape every saved definition has: after an optional declaration, one "PropertyBag" element
/// holding one "xqb_Query" element; under each object, the children of the next class named by
/// their numbers in order; property values of text, references and CDATA sections, marked at most
/// by a "vartype" attribute; no nested markup inside (comments and processing instructions are
/// dropped, as the parser drops them). For such a document every lookup of the bag finds the
/// element this reader reads, so the objects read the same.
///
/// Returns false, having possibly changed `query`, when the document has another shape, is not
/// well-formed, or a value does not convert: the caller then reads the document through the
/// bag, which sets every saved property again and raises what it raises.
///
/// A document past `budget` is refused at once with the budget's error: reading it again
/// through the bag would only meet the same bound later, after building a DOM.
bool ReadRegularDefinition(std::string_view xml_text, xqb_Query& query, XMLReadBudget& budget);

}  // namespace brix
