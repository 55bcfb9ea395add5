// Loads XML text into a DOM document, refusing what the platform's parser refuses.
#include "persistence/xml_text_reader.h"

#include <algorithm>
#include <string>
#include <vector>

#include "persistence/xml_prop_bag_errors.h"
#include "persistence/xml_tree_walk.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

std::string Location(std::string_view text, std::size_t offset) {
  offset = std::min(offset, text.size());
  const std::string_view before = text.substr(0, offset);
  const std::size_t line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t last_break = before.rfind('\n');
  const std::size_t line_start = last_break == std::string_view::npos ? 0 : last_break + 1;
  return " at line " + std::to_string(line) + ", column " +
         std::to_string(offset - line_start + 1) + ".";
}

/// The reason the loaded tree is not a document the platform accepts, or an empty string.
std::string CheckTree(const pugi::xml_document& document) {
  std::size_t elements = 0;
  for (pugi::xml_node node : document.children()) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
      return "Invalid at the top level of the document.";
    }
    elements += node.type() == pugi::node_element;
  }
  if (elements == 0) return "XML document must have a top level element.";
  if (elements > 1) return "Only one top level element is allowed in an XML document.";
  std::vector<std::string_view> names;
  for (pugi::xml_node node = document.first_child(); node;
       node = NextInDocumentOrder(node, document)) {
    pugi::xml_attribute first = node.first_attribute();
    if (!first || !first.next_attribute()) continue;
    names.clear();
    for (pugi::xml_attribute attribute : node.attributes()) names.emplace_back(attribute.name());
    std::sort(names.begin(), names.end());
    if (auto twin = std::adjacent_find(names.begin(), names.end()); twin != names.end()) {
      return "Duplicate attribute '" + std::string(*twin) + "'.";
    }
  }
  return {};
}

}  // namespace

void ReadXmlText(pugi::xml_document& document, std::string_view text) {
  document.reset();
  std::string reason;
  if (const std::size_t nul = text.find('\0'); nul != std::string_view::npos) {
    reason = "An Invalid character was found in text content" + Location(text, nul);
  } else if (pugi::xml_parse_result result = document.load_buffer(
                 text.data(), text.size(), pugi::parse_default | pugi::parse_fragment,
                 pugi::encoding_utf8);
             !result) {
    reason = result.description() + Location(text, static_cast<std::size_t>(result.offset));
  } else {
    reason = CheckTree(document);
  }
  if (reason.empty()) return;
  document.reset();
  RaiseXMLPropBagError(kErrInvalidXMLFile, std::move(reason));
}

}  // namespace brix
