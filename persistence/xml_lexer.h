// A lexer for XML text of the plain kind documents are saved in: it yields start tags, end tags
// and element text one at a time, read exactly as the DOM parser reads them, and gives up on
// anything it does not read that way for certain.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace brix {

/// Thrown by `XmlLexer` where the text leaves what it reads exactly as the parser does (or is
/// not well-formed): the caller then reads the text the general way.
struct IrregularXml {};

/// An attribute of a start tag: its name, and its value as the parser gives it.
struct XmlAttribute {
  std::string_view name;
  std::string_view value;
  bool operator==(const XmlAttribute&) const = default;
};

/// One step of a document.
struct XmlEvent {
  enum Kind : std::uint8_t {
    kStartTag,
    kEndTag,
    kText,  // an element's text between two tags; never empty
    kEnd,   // the end of the document, after its element
  };
  Kind kind = kEnd;
  std::string_view name;  // of a tag
  std::array<XmlAttribute, 2> attributes{};
  std::size_t attribute_count = 0;
  bool closed = false;    // a start tag that closes itself ("<a/>"): no end tag follows
  bool expected = false;  // the start tag's name is the one the caller said it expected
  std::string_view text;  // of a text
};

/// Walks a document (UTF-8 whose characters XML allows, possibly after a byte-order mark). Names
/// are views of the text. Text is the element's character data and CDATA sections between two
/// tags joined as the parser leaves them: CR LF and lone CRs read as LF, references expanded in
/// character data, a run of white space alone between two pieces of markup dropped, comments and
/// processing instructions skipped. Attribute values read with references expanded and white
/// space characters as blanks. The document's declaration is skipped.
///
/// Gives up (`IrregularXml`) on a DOCTYPE, names that are not ASCII, a third attribute,
/// references XML does not define, and text that is not well-formed XML. A text stays valid
/// until the next text, a decoded attribute value until the next start tag.
class XmlLexer {
 public:
  explicit XmlLexer(std::string_view text);

  /// Reads the next step into `event`. `expected`: the name the next start tag most likely has,
  /// compared first to spare scanning the name.
  void Next(XmlEvent& event, std::string_view expected = {});

  /// Reads the rest of the element whose start tag was just read, when it holds text alone:
  /// the events `Next` would give, its text (empty when none) and its end tag, at once.
  std::string_view TextThroughEnd();

 private:
  bool AtTag() const;
  void SkipSpace();
  bool Take(std::string_view text);
  bool Take(char c);
  const char* Find(char c) const;
  const char* Find(std::string_view text) const;
  std::string_view Name();
  void SkipDeclaration();
  void SkipMarkupOutsideText();
  bool SkipCommentOrInstruction();
  void SkipComment();
  void SkipInstruction();
  std::string_view ReadText();
  void ReadStartTag(XmlEvent& event, std::string_view expected);
  void ReadAttribute(XmlAttribute& attribute, std::string& scratch);
  std::string_view ReadEndTag();

  const char* at_;
  const char* end_;
  bool started_ = false;                      // the document's element has begun
  std::vector<std::string_view> open_;        // the elements open, outermost first
  std::string text_scratch_;                  // a text that had to be decoded
  std::array<std::string, 2> value_scratch_;  // attribute values that had to be decoded
};

}  // namespace brix
