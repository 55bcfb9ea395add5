// Loads XML text into a DOM document, refusing what the platform's parser refuses.
#include "persistence/xml_text_reader.h"

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "persistence/xml_markup_check.h"
#include "persistence/xml_prop_bag_errors.h"
#include "persistence/xml_text_decoder.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr bool IsXmlSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

/// Finds the first element, in document order, that repeats an attribute name. The DOM's own
/// walk keeps the calls per node few; only elements with two or more attributes are sorted.
class DuplicateAttributeFinder : public pugi::xml_tree_walker {
 public:
  bool for_each(pugi::xml_node& node) override {
    pugi::xml_attribute first = node.first_attribute();
    if (!first.next_attribute()) return true;
    names_.clear();
    for (pugi::xml_attribute attribute : node.attributes()) names_.emplace_back(attribute.name());
    std::sort(names_.begin(), names_.end());
    auto twin = std::adjacent_find(names_.begin(), names_.end());
    if (twin == names_.end()) return true;
    duplicate_ = *twin;
    return false;
  }

  /// The repeated name, or an empty view when there is none.
  std::string_view Duplicate() const { return duplicate_; }

 private:
  std::vector<std::string_view> names_;
  std::string_view duplicate_;
};

/// Whether an element of `text`, which the parser accepted, may have two or more attributes.
/// The parser insists on white space between attributes, so a second attribute of an element
/// comes after a quote that white space follows; text without that pattern skips the walk.
bool MayHaveSeveralAttributes(std::string_view text) {
  for (const char quote_mark : {'"', '\''}) {
    for (std::size_t quote = text.find(quote_mark); quote != std::string_view::npos;
         quote = text.find(quote_mark, quote + 1)) {
      if (quote + 1 < text.size() && IsXmlSpace(text[quote + 1])) return true;
    }
  }
  return false;
}

/// The reason the loaded tree is not a document the platform accepts, or an empty string.
std::string CheckTree(pugi::xml_document& document, std::string_view text) {
  std::size_t elements = 0;
  for (pugi::xml_node node : document.children()) {
    if (node.type() == pugi::node_pcdata || node.type() == pugi::node_cdata) {
      return "Invalid at the top level of the document.";
    }
    elements += node.type() == pugi::node_element;
  }
  if (elements == 0) return "XML document must have a top level element.";
  if (elements > 1) return "Only one top level element is allowed in an XML document.";
  DuplicateAttributeFinder finder;
  if (MayHaveSeveralAttributes(text) && !document.traverse(finder)) {
    return "Duplicate attribute '" + std::string(finder.Duplicate()) + "'.";
  }
  return {};
}

}  // namespace

std::string_view ReadXmlText(pugi::xml_document& document, std::string_view bytes, bool embed_text,
                             std::string& decoded) {
  document.reset();
  decoded.clear();
  const std::string_view text = DecodeXmlText(bytes, decoded);
  std::string reason = ForbiddenCharacters(text);
  if (reason.empty()) reason = MalformedMarkup(text);
  if (reason.empty()) {
    const pugi::xml_parse_result result = document.load_buffer(
        text.data(), text.size(),
        pugi::parse_default | pugi::parse_fragment | (embed_text ? pugi::parse_embed_pcdata : 0u),
        pugi::encoding_utf8);
    if (result.status == pugi::status_out_of_memory) {
      document.reset();
      throw std::bad_alloc();  // the callers report running out of memory as such
    }
    reason = result
                 ? CheckTree(document, text)
                 : result.description() + Location(text, static_cast<std::size_t>(result.offset));
  }
  if (reason.empty()) {
    // The parser skips a UTF-8 byte-order mark, and counts its offsets after it.
    return text.starts_with("\xEF\xBB\xBF") ? text.substr(3) : text;
  }
  document.reset();
  RaiseXMLPropBagError(kErrInvalidXMLFile, std::move(reason));
}

}  // namespace brix
