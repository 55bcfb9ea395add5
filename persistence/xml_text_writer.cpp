// Serialises a DOM document as the platform's DOM does, without recursion.
#include "persistence/xml_text_writer.h"

#include <string_view>

#include "persistence/xml_tree_walk.h"

namespace brix {
namespace {

void AppendReference(std::string& out, unsigned char c) {
  out += "&#";
  out += std::to_string(c);
  out += ';';
}

/// A character the parser would drop or change when it reads it raw in text or CDATA.
bool NeedsReference(unsigned char c) { return (c < 0x20 && c != '\t' && c != '\n') || c == '\r'; }

void AppendText(std::string& out, std::string_view text) {
  const bool blank_only = text.find_first_not_of(" \t\n\r") == std::string_view::npos;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (i == 0 && blank_only) {
      AppendReference(out, c);
    } else if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '\n') {
      out += "\r\n";
    } else if (NeedsReference(c)) {
      AppendReference(out, c);
    } else {
      out += static_cast<char>(c);
    }
  }
}

void AppendCData(std::string& out, std::string_view content) {
  bool open = false;
  auto verbatim = [&](std::string_view part) {
    if (!open) out += "<![CDATA[";
    open = true;
    out += part;
  };
  auto close = [&] {
    if (open) out += "]]>";
    open = false;
  };
  for (std::size_t i = 0; i < content.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(content[i]);
    if (content.substr(i, 3) == "]]>") {
      verbatim("]]");
      close();
      verbatim(">");
      i += 2;
    } else if (c == '\n') {
      verbatim("\r\n");
    } else if (NeedsReference(c)) {
      close();
      AppendReference(out, c);
    } else {
      verbatim(content.substr(i, 1));
    }
  }
  if (content.empty()) verbatim({});
  close();
}

void AppendAttributeValue(std::string& out, std::string_view value) {
  for (const char ch : value) {
    const unsigned char c = static_cast<unsigned char>(ch);
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else if (c == '>') {
      out += "&gt;";
    } else if (c == '"') {
      out += "&quot;";
    } else if (c < 0x20) {
      AppendReference(out, c);
    } else {
      out += ch;
    }
  }
}

/// Writes a start tag, or the whole element when it has no children.
void AppendStartTag(std::string& out, pugi::xml_node element) {
  out += '<';
  out += element.name();
  for (pugi::xml_attribute attribute : element.attributes()) {
    out += ' ';
    out += attribute.name();
    out += "=\"";
    AppendAttributeValue(out, attribute.value());
    out += '"';
  }
  out += element.first_child() ? ">" : "/>";
}

void AppendEndTag(std::string& out, pugi::xml_node element) {
  out += "</";
  out += element.name();
  out += '>';
}

void AppendLeaf(std::string& out, pugi::xml_node node) {
  switch (node.type()) {
    case pugi::node_pcdata:
      AppendText(out, node.value());
      break;
    case pugi::node_cdata:
      AppendCData(out, node.value());
      break;
    default:
      break;
  }
}

}  // namespace

std::string WriteXmlText(const pugi::xml_document& document) {
  std::string out;
  auto end_tag = [&out](pugi::xml_node element) { AppendEndTag(out, element); };
  for (pugi::xml_node root : document.children()) {
    if (root.type() != pugi::node_element) continue;
    for (pugi::xml_node node = root; node; node = NextInDocumentOrder(node, root, end_tag)) {
      if (node.type() == pugi::node_element) {
        AppendStartTag(out, node);
      } else {
        AppendLeaf(out, node);
      }
    }
    out += "\r\n";
  }
  return out;
}

}  // namespace brix
