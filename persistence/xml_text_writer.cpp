// Serialises a DOM document as the platform's DOM does, without recursion.
#include "persistence/xml_text_writer.h"

#include <array>
#include <string_view>
#include <vector>

namespace brix {
namespace {

void AppendReference(std::string& out, unsigned char c) {
  out += "&#";
  out += std::to_string(c);
  out += ';';
}

/// A character the parser would drop or change when it reads it raw in text or CDATA.
constexpr bool NeedsReference(unsigned char c) {
  return (c < 0x20 && c != '\t' && c != '\n') || c == '\r';
}

/// Characters of text that are not written as they are: markup, LF and what `NeedsReference`
/// names. Text is copied in runs between them.
constexpr std::array<bool, 256> kSpecialInText = [] {
  std::array<bool, 256> special{};
  for (int c = 0; c < 256; ++c) {
    special[c] = c == '&' || c == '<' || c == '>' || c == '\n' ||
                 NeedsReference(static_cast<unsigned char>(c));
  }
  return special;
}();

/// Writes the entity of a markup character ("&", "<", ">"); false for any other character.
bool AppendMarkupEntity(std::string& out, unsigned char c) {
  switch (c) {
    case '&':
      out += "&amp;";
      return true;
    case '<':
      out += "&lt;";
      return true;
    case '>':
      out += "&gt;";
      return true;
    default:
      return false;
  }
}

void AppendTextCharacter(std::string& out, unsigned char c) {
  if (AppendMarkupEntity(out, c)) return;
  if (c == '\n') {
    out += "\r\n";
  } else {
    AppendReference(out, c);
  }
}

void AppendText(std::string& out, std::string_view text) {
  std::size_t start = 0;
  if (!text.empty() && text.find_first_not_of(" \t\n\r") == std::string_view::npos) {
    AppendReference(out, static_cast<unsigned char>(text.front()));
    start = 1;
  }
  for (std::size_t i = start; i < text.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(text[i]);
    if (!kSpecialInText[c]) continue;
    out.append(text, start, i - start);
    AppendTextCharacter(out, c);
    start = i + 1;
  }
  out.append(text, start, text.size() - start);
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
  std::size_t start = 0;  // characters are copied in runs between those replaced
  for (std::size_t i = 0; i < value.size(); ++i) {
    const unsigned char c = static_cast<unsigned char>(value[i]);
    if (c >= 0x20 && c != '"' && c != '&' && c != '<' && c != '>') continue;
    out.append(value, start, i - start);
    start = i + 1;
    if (AppendMarkupEntity(out, c)) continue;
    if (c == '"') {
      out += "&quot;";
    } else {
      AppendReference(out, c);
    }
  }
  out.append(value, start, value.size() - start);
}

/// Writes the elements of a document in document order with the DOM's own walk, which keeps the
/// calls per node few.
class DocumentWalker : public pugi::xml_tree_walker {
 public:
  explicit DocumentWalker(std::string& out) : writer_(out) {}

  bool for_each(pugi::xml_node& node) override {
    EndDeeperThan(depth());
    const pugi::xml_node_type type = node.type();
    if (type == pugi::node_element) {
      WriteElement(node);
    } else if (depth() > 0 && type == pugi::node_pcdata) {
      writer_.Text(node.value());
    } else if (depth() > 0 && type == pugi::node_cdata) {
      writer_.CData(node.value());
    }
    return true;
  }

  bool end(pugi::xml_node&) override {
    EndDeeperThan(0);
    return true;
  }

 private:
  void WriteElement(pugi::xml_node element) {
    writer_.StartElement(element.name());
    for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
      writer_.Attribute(attribute.name(), attribute.value());
    }
    if (*element.value()) writer_.Text(element.value());  // leading text kept in the element
    if (!element.first_child()) writer_.EndElement();
  }

  void EndDeeperThan(int depth) {
    while (writer_.Depth() > static_cast<std::size_t>(depth)) writer_.EndElement();
  }

  XmlTextWriter writer_;
};

}  // namespace

void XmlTextWriter::StartElement(std::string_view name) {
  CloseStartTag();
  out_ += '<';
  out_ += name;
  open_names_.push_back(name);
  start_tag_open_ = true;
}

void XmlTextWriter::Attribute(std::string_view name, std::string_view value) {
  out_ += ' ';
  out_ += name;
  out_ += "=\"";
  AppendAttributeValue(out_, value);
  out_ += '"';
}

void XmlTextWriter::Text(std::string_view text) {
  CloseStartTag();
  AppendText(out_, text);
}

void XmlTextWriter::CData(std::string_view text) {
  CloseStartTag();
  AppendCData(out_, text);
}

void XmlTextWriter::TextElement(std::string_view name, std::string_view text) {
  CloseStartTag();
  out_ += '<';
  out_ += name;
  if (text.empty()) {
    out_ += "/>";
    return;
  }
  out_ += '>';
  AppendText(out_, text);
  out_ += "</";
  out_ += name;
  out_ += '>';
}

void XmlTextWriter::TextElement(std::string_view start_tag, std::string_view text,
                                std::string_view end_tag) {
  CloseStartTag();
  if (text.empty()) {
    out_.append(start_tag.substr(0, start_tag.size() - 1)).append("/>");
    return;
  }
  out_ += start_tag;
  AppendText(out_, text);
  out_ += end_tag;
}

void XmlTextWriter::EndElement() {
  if (start_tag_open_) {
    out_ += "/>";
    start_tag_open_ = false;
  } else {
    out_ += "</";
    out_ += open_names_.back();
    out_ += '>';
  }
  open_names_.pop_back();
  if (open_names_.empty()) out_ += "\r\n";
}

void XmlTextWriter::CloseStartTag() {
  if (!start_tag_open_) return;
  out_ += '>';
  start_tag_open_ = false;
}

std::string WriteXmlText(const pugi::xml_document& document) {
  std::string out;
  DocumentWalker walker(out);
  pugi::xml_node(document).traverse(walker);
  return out;
}

}  // namespace brix
