// Reads a definition document of the usual shape straight from its DOM, without the property
// bag's lookups, giving exactly what the bag-based reading gives.
#pragma once

#include <pugixml.hpp>

#include "querybuilder/xqb_query.h"

namespace brix {

/// Fills `query` from `document` when the document has the shape every saved definition has:
/// one "PropertyBag" element (the document element) holding one "xqb_Query" element; under each
/// object, the children of the next class in the order of their numbers, each named once; no
/// nested markup in property values. There every lookup of the bag finds the child it would find
/// in this element, so the objects read the same.
///
/// Returns false, having possibly changed `query`, when the document has another shape or a value
/// does not convert: the caller then reads the document through the bag, which sets every saved
/// property again and raises what it raises.
bool ReadRegularDefinition(const pugi::xml_document& document, xqb_Query& query);

}  // namespace brix
