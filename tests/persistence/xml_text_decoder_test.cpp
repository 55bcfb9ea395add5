// Documents in the encodings hosts save, and characters XML does not allow: each gives its value
// exactly or a refusal that says what and where.
#include "persistence/xml_text_decoder.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "querybuilder/xqb_query.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::Outcome;

const std::string kRefused = "-2147191004 brixobjects4.kelpXMLPBag: ";

/// The value of "P" in the one "Holder" of `document`, in quotes, or the error raised.
std::string ValueOfP(const std::string& document) {
  return Outcome([&] {
    std::string read = "not restored";
    struct Holder : IXMLPropBag {
      std::string* read;
      std::string TypeName() const override { return "Holder"; }
      void WriteProperties(XMLPropBag&) override {}
      void ReadProperties(XMLPropBag& bag) override {
        *read = "'" + bag.ReadProperty("P").AsString() + "'";
      }
    } holder;
    holder.read = &read;
    auto bag = XMLPropBag::Create();
    bag->SetContents(document);
    bag->RestoreState(&holder);
    return read;
  });
}

std::string InHolder(const std::string& value) {
  return "<PropertyBag><Holder><P>" + value + "</P></Holder></PropertyBag>";
}

/// `text` (ASCII) as UTF-16 bytes with a byte-order mark.
std::string Utf16(const std::string& text, bool little_endian) {
  std::string bytes = little_endian ? "\xFF\xFE" : "\xFE\xFF";
  for (const char c : text) {
    bytes += little_endian ? std::string{c, '\0'} : std::string{'\0', c};
  }
  return bytes;
}

TEST(XmlTextDecoder, ReadsEachEncodingOrRefusesItClearly) {
  const std::string declared_latin1 = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
  const std::string declared_1250 = "<?xml version='1.0' encoding='windows-1250'?>";
  // clang-format off
  const std::vector<std::pair<std::string, std::string>> cases = {
      {InHolder("livrat\xC4\x83"),                              "'livrat\xC4\x83'"},
      {"\xEF\xBB\xBF" + InHolder("x"),                          "'x'"},
      {declared_latin1 + InHolder("caf\xE9"),                   "'caf\xC3\xA9'"},
      {declared_1250 + InHolder("livrat\xE3 \xBA"),             "'livrat\xC4\x83 \xC5\x9F'"},
      {Utf16(InHolder("utf16"), true),                          "'utf16'"},
      {Utf16(InHolder("utf16"), false),                         "'utf16'"},
      {Utf16(InHolder("x"), true).substr(2),                    "'x'"},  // no mark: "<" then 0
      {Utf16(InHolder("x"), true) + "\x01",                     kRefused + "The UTF-16 document is cut short."},
      {std::string("\xFF\xFE<\0\x00\xD8x\0", 8),                   kRefused + "The UTF-16 document holds an unpaired surrogate at code unit 2."},
      {"<?xml version=\"1.0\" encoding=\"KOI8-R\"?><a/>",        kRefused + "The document's encoding \"KOI8-R\" is not supported: save it as UTF-8, UTF-16, ISO-8859-1 or Windows-1250."},
  };
  // clang-format on
  for (const auto& [document, expected] : cases)
    EXPECT_EQ(ValueOfP(document), expected) << document;
}

TEST(XmlTextDecoder, RefusesCharactersXmlDoesNotAllowAtTheirPlace) {
  // clang-format off
  const std::vector<std::pair<std::string, std::string>> cases = {
      // The parser would cut the text at U+0000, or pass on what no UTF-8 text may hold.
      {InHolder("liv&#0;rata"),        kRefused + "The character reference &#0; stands for a character XML does not allow at line 1, column 28."},
      {InHolder("a&#xD800;"),          kRefused + "The character reference &#xD800; stands for a character XML does not allow at line 1, column 26."},
      {InHolder("&#x110000;"),         kRefused + "The character reference &#x110000; stands for a character XML does not allow at line 1, column 25."},
      {InHolder("&#99999999999999;"),  kRefused + "The character reference &#99999999999999; stands for a character XML does not allow at line 1, column 25."},
      {InHolder("a\x01"),              kRefused + "An Invalid character was found in text content at line 1, column 26."},
      {"<a>\n" + InHolder("\xFF"),     kRefused + "The text is not valid UTF-8 at line 2, column 25."},
      {InHolder("\xC0\xAF"),           kRefused + "The text is not valid UTF-8 at line 1, column 25."},   // overlong "/"
      {InHolder("\xED\xA0\x80"),       kRefused + "A character XML does not allow was found at line 1, column 25."},  // a surrogate
      {InHolder("\xE2\x82"),           kRefused + "The text is not valid UTF-8 at line 1, column 25."},   // cut short
      // References to control characters are how the bag writes them; they read back.
      {InHolder("&#1;&#x1F;&#x41;&#65;"), "'\x01\x1F" "AA'"},
      // In CDATA, comments and processing instructions "&#0;" is only text.
      {InHolder("<![CDATA[&#0;]]>"),   "'&#0;'"},
      {InHolder("<!-- &#0; -->x<?pi &#0;?>"), "'x'"},
  };
  // clang-format on
  for (const auto& [document, expected] : cases)
    EXPECT_EQ(ValueOfP(document), expected) << document;
}

TEST(XmlTextDecoder, ALoadRefusesACutValueInsteadOfReadingItShort) {
  auto query = xqb_Query::Create();
  const std::string document =
      "<PropertyBag><xqb_Query><QueryName>liv&#0;rata</QueryName></xqb_Query></PropertyBag>";
  EXPECT_EQ(Outcome([&] { return query->LoadXMLDef(document), query->QueryName(); }),
            std::to_string(kErrLoadXMLDef) +
                " [OrlaXML_qb].[xqb_Persistence].[LoadXMLDef]: Couldn't load xml query definition!"
                "\r\nThe character reference &#0; stands for a character XML does not allow at "
                "line 1, column 39.");
}

}  // namespace
}  // namespace brix
