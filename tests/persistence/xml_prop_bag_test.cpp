// The XML property bag: the document it writes, value kinds and their text, object trees,
// positions, errors and hostile documents.
#include "persistence/xml_prop_bag.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "runtime/conversions.h"
#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::Outcome;

/// A persistable object whose class name and property writing and reading are given as lambdas.
class Scripted : public IXMLPropBag {
 public:
  using Script = std::function<void(XMLPropBag&)>;
  explicit Scripted(std::string type_name, Script write = {}, Script read = {})
      : type_name(std::move(type_name)), write(std::move(write)), read(std::move(read)) {}
  std::string TypeName() const override { return type_name; }
  void WriteProperties(XMLPropBag& bag) override { write ? write(bag) : void(); }
  void ReadProperties(XMLPropBag& bag) override { read ? read(bag) : void(); }

  std::string type_name;
  Script write, read;
};

const std::string kBagError = " brixobjects4.kelpXMLPBag: ";
const std::string kDomError = "-2147467259" + kBagError;
const std::string kNotSet = "91 brixobjects4: Object variable or With block variable not set";

// An expected text ending in "..." is matched up to there: the rest is the XML library's own
// wording, which is not ours to pin.
::testing::AssertionResult Matches(const std::string& actual, const std::string& expected) {
  const bool prefix = expected.ends_with("...");
  const std::string wanted = prefix ? expected.substr(0, expected.size() - 3) : expected;
  if (prefix ? actual.starts_with(wanted) : actual == wanted) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "got: " << actual << "\nexpected: " << expected;
}

/// A value as short text: "empty", "null", "nothing", "missing", 'text', a number, or "bytes"
/// and the bytes.
std::string Describe(const Variant& value) {
  if (value.IsEmpty()) return "empty";
  if (value.IsNull()) return "null";
  if (value.IsNothing()) return "nothing";
  if (value.IsMissing()) return "missing";
  if (value.IsString()) return "'" + value.AsString() + "'";
  if (!value.IsByteArray()) return CStr(value);
  return "bytes " + std::string(value.AsByteArray().begin(), value.AsByteArray().end());
}

/// A bag's contents holding `elements` under "PropertyBag".
std::string InBag(const std::string& elements) {
  return (elements.empty() ? "<PropertyBag/>" : "<PropertyBag>" + elements + "</PropertyBag>") +
         "\r\n";
}

/// Saves a `Holder` (named `instance`) that writes `value` as "P": the bag's contents, or the
/// error of the write followed by the contents.
std::string ContentsWithProperty(const Variant& value, std::string_view instance) {
  std::string error;
  Scripted holder("Holder", [&](XMLPropBag& bag) {
    error = Outcome([&] { return bag.WriteProperty("P", value), std::string(); });
  });
  auto bag = XMLPropBag::Create();
  bag->SaveState(&holder, instance);
  return error + bag->Contents();
}

/// Loads `contents`, restores the `Holder` named `instance` and describes its property `name`
/// read with `fallback`, or the error raised.
std::string ReadBack(const std::string& contents, std::string_view name = "P",
                     const Variant& fallback = Variant::Missing(), std::string_view instance = {}) {
  return Outcome([&] {
    std::string read = "not restored";
    Scripted holder("Holder", {},
                    [&](XMLPropBag& bag) { read = Describe(bag.ReadProperty(name, fallback)); });
    auto bag = XMLPropBag::Create();
    bag->SetContents(contents);
    bag->RestoreState(&holder, instance);
    return read;
  });
}

// Each kind of value is written in its form and read back. Text is written so that a parser gives
// it back unchanged, also in an instance name (an attribute, where markup and control characters
// become references). A refused value raises and adds nothing.
TEST(XMLPropBag, WritesEachKindOfValueAndTrickyTextAndReadsThemBackOrRefusesThemAddingNothing) {
  const std::string name = "n \t\n\r&<>'\x01]]>ț";
  const std::string holder = "<Holder name=\"n &#9;&#10;&#13;&amp;&lt;&gt;'&#1;]]&gt;ț\"";
  const std::string bytes =
      "<P xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" dt:dt=\"bin.base64\"";
  const std::string line(72, '/');
  const std::string refused = "-2147191005" + kBagError + "Invalid PropertyValue type.";
  // clang-format off
  const std::vector<std::tuple<Variant, std::string, std::string>> cases = {  // value, element (or the error), read back ("": refused)
      {Variant(),            "<P vartype=\"empty\"/>", "empty"},
      {Variant::Null(),      "<P vartype=\"null\"/>",  "null"},
      {Variant::Nothing(),   "<P vartype=\"nothing\"/>", "nothing"},
      {Variant(Date{40239.5}), "<P>3/2/2010 12:00:00 PM</P>", "'3/2/2010 12:00:00 PM'"},
      {Variant("1<2"),       "<P><![CDATA[1<2]]></P>", "'1<2'"},
      {Variant("x>y"),       "<P><![CDATA[x>y]]></P>", "'x>y'"},
      {Variant("a&b"),       "<P>a&amp;b</P>",         "'a&b'"},
      {Variant(""),          "<P/>",                   "''"},
      {test_support::ObjectWith(Variant("<v>")), "<P><![CDATA[<v>]]></P>", "'<v>'"},
      {Variant(std::make_shared<Scripted>("Child", [](XMLPropBag& b) { b.WriteProperty("L", Variant(2)); })), "<Child name=\"P\"><L>2</L></Child>", "missing"},
      {Variant("a\nb"),      "<P>a\r\nb</P>",          "'a\nb'"},
      {Variant("a\r\nb"),    "<P>a&#13;\r\nb</P>",     "'a\r\nb'"},
      {Variant(" "),         "<P>&#32;</P>",           "' '"},
      {Variant("\n\t "),     "<P>&#10;\t </P>",        "'\n\t '"},
      {Variant(" x "),       "<P> x </P>",             "' x '"},
      {Variant("x\x01y\x1f\x7f"), "<P>x&#1;y&#31;\x7f</P>", "'x\x01y\x1f\x7f'"},
      {Variant("'a' \"q\""), "<P>'a' \"q\"</P>",       "''a' \"q\"'"},
      {Variant("1<2\n"),     "<P><![CDATA[1<2\r\n]]></P>", "'1<2\n'"},
      {Variant("&amp;<"),    "<P><![CDATA[&amp;<]]></P>", "'&amp;<'"},
      {Variant("x<y\x02>z\r"), "<P><![CDATA[x<y]]>&#2;<![CDATA[>z]]>&#13;</P>", "'x<y\x02>z\r'"},
      {Variant("a]]>b]]>"),  "<P><![CDATA[a]]]]><![CDATA[>b]]]]><![CDATA[>]]></P>", "'a]]>b]]>'"},
      {Variant("]]]]>>"),    "<P><![CDATA[]]]]]]><![CDATA[>>]]></P>", "']]]]>>'"},
      {Variant("Țară, încă: șî ăâ ȘȚĂÎÂ 😀 𝄞 ∑"), "<P>Țară, încă: șî ăâ ȘȚĂÎÂ 😀 𝄞 ∑</P>", "'Țară, încă: șî ăâ ȘȚĂÎÂ 😀 𝄞 ∑'"},
      {Variant(ByteArray{}), bytes + "/>",             "bytes "},
      {Variant(ByteArray{0xFB, 0xFF}), bytes + ">+/8=</P>",      "bytes \xFB\xFF"},
      {Variant(ByteArray(55, 0xFF)), bytes + ">" + line + "\r\n/w==</P>", "bytes " + std::string(55, '\xFF')},
      {Variant(ByteArray(108, 0xFF)), bytes + ">" + line + "\r\n" + line + "</P>", "bytes " + std::string(108, '\xFF')},
      {Variant(VariantArray{{Variant(1), Variant(2)}}), refused,                  ""},
      {Variant(ErrorValue{5}), refused,                  ""},
      {test_support::ObjectWith(Variant::Null()), refused,                  ""},
      {Variant(std::string("a\0b", 3)), kDomError + "Text that holds the character U+0000 cannot be stored in an XML document.", ""},
  };
  // clang-format on
  for (const auto& [value, written, read_back] : cases) {
    SCOPED_TRACE(written);
    const std::string contents = ContentsWithProperty(value, name);
    if (read_back.empty()) {
      EXPECT_EQ(contents, written + InBag(holder + "/>"));
    } else {
      EXPECT_EQ(contents, InBag(holder + ">" + written + "</Holder>"));
      EXPECT_EQ(ReadBack(contents, "P", Variant::Missing(), name), read_back);
    }
  }
}

TEST(XMLPropBag, ReadsMarkersInAnyCaseTypedBytesTheFirstMatchOrTheDefault) {
  const Variant none = Variant::Missing();
  const std::string base64 = kDomError + "Invalid Base64 text: ";
  const std::string xpath = kDomError + "The XPath expression \"";
  // clang-format off
  const std::vector<std::tuple<std::string, const char*, Variant, std::string>> cases = {  // elements, property, default, read
      {"<P vartype=\"Null\">x</P>",       "P", none, "null"},
      {"<P vartype=\"EMPTY\"/>",          "P", none, "empty"},
      {"<P vartype=\"NoThing\"/>",        "P", none, "nothing"},
      {"<P vartype=\"other\">t<![CDATA[<u>]]></P>", "P", none, "'t<u>'"},
      {"<P vartype=\"empty\" q:dt=\"bin.base64\">AQID</P>", "P", none, "empty"},
      {"<P xmlns:b=\"urn:schemas-microsoft-com:datatypes\" b:dt=\"bin.base64\">\r\nA Q\r\n\tID\r\n</P>", "P", none, "bytes \x01\x02\x03"},
      {"<P q:dt=\"bin.base64\">AQI</P>",  "P", none, "bytes \x01\x02"},
      {"<P q:dt=\"bin.base64\">AQ= =\r\n</P>", "P", none, "bytes \x01"},
      {"<P q:dt=\"bin.base64\">AQ*D</P>", "P", none, base64 + "the character 0x2A at position 3 is not allowed."},
      {"<P q:dt=\"bin.base64\">AQ\xC3\xA9</P>", "P", none, base64 + "the character 0xC3 at position 3 is not allowed."},
      {"<P q:dt=\"bin.base64\">AQIDB</P>", "P", none, base64 + "the last group has a single character."},
      {"<P q:dt=\"bin.base64\">AQ==AQ</P>", "P", none, base64 + "data follows the padding at position 5."},
      {"<P q:dt=\"bin.base64\">AQ=</P>",  "P", none, base64 + "the padding does not complete the last group."},
      {"<P q:dt=\"bin.base64\">AQID====</P>", "P", none, base64 + "the padding does not complete the last group."},
      {"<P dt=\"bin.base64\"> AQID </P>", "P", none, "' AQID '"},
      {"<P xmlns:q=\"other\" q:dt=\"bin.base64\">AQID</P>", "P", none, "'AQID'"},
      {"<P>  spaced\r\n  </P>",           "P", none, "'  spaced\n  '"},
      {"<P>a<I>b</I>c</P>",               "P", none, "'abc'"},
      {"<P>first</P><P>second</P>",       "P", Variant(5), "'first'"},
      {"<P>first</P><P>second</P>",       "P[2]", none, "'second'"},
      {"<P/>",                            "Q", none, "missing"},
      {"<P/>",                            "Q", Variant(5), "5"},
      {"<P/>",                            "P[", none, xpath + "P[\" is invalid: ..."},
      {"<P/>",                            "1 + 1", none, xpath + "1 + 1\" is invalid: ..."},
      {"<P/>",                            "/", none, "13 brixobjects4: Type mismatch"},
  };
  // clang-format on
  const std::string bag = "<PropertyBag xmlns:q=\"urn:schemas-microsoft-com:datatypes\"><Holder>";
  for (const auto& [elements, name, fallback, read] : cases) {
    EXPECT_TRUE(Matches(ReadBack(bag + elements + "</Holder></PropertyBag>", name, fallback), read))
        << elements << " " << name;
  }
}

/// One action on a bag: the bag starts without a document (`initial` empty) or with `initial` as
/// its contents; then what objects read or what was raised, and the contents after.
struct BagCase {
  std::optional<std::string> initial;
  std::function<void(XMLPropBag&)> act;
  std::string outcome;
  std::string contents;
};

/// Runs each case on a bag of its own; objects the actions use report what they read to `read`.
void RunCases(const std::vector<BagCase>& cases, std::string& read) {
  for (std::size_t i = 0; i < cases.size(); ++i) {
    SCOPED_TRACE("case " + std::to_string(i));
    const BagCase& c = cases[i];
    auto bag = XMLPropBag::Create();
    if (c.initial) bag->SetContents(*c.initial);
    read.clear();
    EXPECT_TRUE(Matches(Outcome([&] { return c.act(*bag), read; }), c.outcome));
    EXPECT_EQ(bag->Contents(), c.contents);
  }
}

/// An object of class "A" that writes 1 as "ț.G-1" and reports what it reads there.
Scripted WritingOne(std::string& read) {
  return Scripted(
      "A", [](XMLPropBag& b) { b.WriteProperty("ț.G-1", Variant(1)); },
      [&read](XMLPropBag& b) {
        read += (read.empty() ? "" : " ") + Describe(b.ReadProperty("ț.G-1"));
      });
}

TEST(XMLPropBag, NeedsADocumentAndAPositionAndKeepsItsOwnDocument) {
  std::string read;
  Scripted a = WritingOne(read);
  pugi::xml_document foreign;
  foreign.load_string("<Foreign/>");
  // clang-format off
  const std::vector<BagCase> cases = {
      {{},               [&](XMLPropBag& b) { b.SetDocument(&foreign); },          "",      ""},
      {{},               [&](XMLPropBag& b) { b.RestoreState(&a); },               kNotSet, ""},
      {{},               [&](XMLPropBag& b) { b.DeleteObject("A"); },              kNotSet, ""},
      {{},               [&](XMLPropBag& b) { b.WriteProperty("P", Variant(1)); }, kNotSet, ""},
      {"<PropertyBag/>", [&](XMLPropBag& b) { b.ReadProperty("P"); },              kNotSet, InBag("")},
      {"<Other/>",       [&](XMLPropBag& b) { b.SaveState(&a); },
       kDomError + "Only one top level element is allowed in an XML document.", "<Other/>\r\n"},
  };
  // clang-format on
  RunCases(cases, read);
}

TEST(XMLPropBag, SavesByClassAndNameReplacingTheFirstMatchInPlace) {
  std::string read;
  Scripted a = WritingOne(read);
  Scripted b_object("B"), invalid("1x");
  Scripted self_deleting("A", [&](XMLPropBag& b) {
    b.WriteProperty("Before", Variant(1));
    b.DeleteObject("A", "x");
    b.WriteProperty("After", Variant(2));
  });
  const std::string one = "<A name=\"one\"><ț.G-1>0</ț.G-1></A><B/>";
  const std::string two = "<A name=\"two\"><ț.G-1>2</ț.G-1></A>";
  // clang-format off
  const std::vector<BagCase> cases = {
      {InBag(""),        [&](XMLPropBag& b) { b.SaveState(&a, "one"); b.SaveState(&b_object); }, "", InBag("<A name=\"one\"><ț.G-1>1</ț.G-1></A><B/>")},
      {InBag(one),       [&](XMLPropBag& b) { b.SaveState(&a, "one"); }, "", InBag("<A name=\"one\"><ț.G-1>1</ț.G-1></A><B/>")},
      {InBag(one),       [&](XMLPropBag& b) { b.SaveState(&a, "two"); }, "", InBag(one + "<A name=\"two\"><ț.G-1>1</ț.G-1></A>")},
      // Without a name the first element of the class is replaced, whatever its name.
      {InBag(one + two), [&](XMLPropBag& b) { b.SaveState(&a); },        "", InBag("<A><ț.G-1>1</ț.G-1></A><B/>" + two)},
      {InBag(one),       [&](XMLPropBag& b) { b.SaveState(nullptr); },   "", InBag(one)},
      {InBag(""),        [&](XMLPropBag& b) { b.SaveState(&b_object); b.WriteProperty("a:b", Variant(1)); },
       kDomError + "'a:b' is not a valid element name.", InBag("<B/>")},
      {InBag(one),       [&](XMLPropBag& b) { b.SaveState(&invalid); },
       kDomError + "'1x' is not a valid element name.", InBag(one)},
      // An object that deletes its own element while writing loses its position.
      {InBag("<A name=\"x\"><P/></A>"), [&](XMLPropBag& b) { b.SaveState(&self_deleting, "x"); }, kNotSet, InBag("")},
  };
  // clang-format on
  RunCases(cases, read);
}

TEST(XMLPropBag, RestoresAndDeletesTheFirstMatchOfClassAndName) {
  std::string read;
  auto note = [&](const std::string& text) { read += (read.empty() ? "" : " ") + text; };
  Scripted a = WritingOne(read);
  Scripted c_object("C", {}, [&](XMLPropBag&) { note("C"); });
  Scripted switching("Holder", {}, [&](XMLPropBag& b) {
    b.SetContents(InBag("<Holder><P>new</P></Holder>"));
    note(Describe(b.ReadProperty("P")));  // the bag keeps its node in the old document
    b.WriteProperty("Q", Variant(1));
  });
  // Nested objects are found from the bag's path over the whole document, so with several roots
  // of one class the first child of that name in the document wins, even under another root.
  auto leaf = std::make_shared<Scripted>(
      "T", Scripted::Script{}, [&](XMLPropBag& b) { note(Describe(b.ReadProperty("V"))); });
  Scripted tree("Q", {}, [&](XMLPropBag& b) {
    note(Describe(b.ReadProperty("T1", Variant(leaf))));
    note(Describe(b.ReadProperty("None", Variant(leaf))));
  });
  const std::string nested =
      "<Q><T name=\"T2\"><V>first</V></T></Q>"
      "<Q><T name=\"T1\"><V>second root</V></T><T name=\"T1\"><V>later</V></T></Q>";
  const std::string three = "<A><ț.G-1>3</ț.G-1></A><B/><A name=\"two\"><ț.G-1>2</ț.G-1></A>";
  const std::string indented =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<!-- saved -->\r\n<PropertyBag>\r\n\t<A name=\"x\"/>"
      "\r\n\t<A name=\"y\"/>\r\n\t<A name=\"x\">\r\n\t\t<P/>\r\n\t</A>\r\n</PropertyBag>\r\n";
  const std::string loaded = "<A name=\"x\"/><A name=\"y\"/><A name=\"x\"><P/></A>";
  // clang-format off
  const std::vector<BagCase> cases = {
      {InBag(three), [&](XMLPropBag& b) { b.RestoreState(&a, "one"); b.RestoreState(&c_object); b.RestoreState(nullptr); }, "", InBag(three)},
      {InBag(three), [&](XMLPropBag& b) { b.RestoreState(&a, "two"); b.RestoreState(&a); }, "'2' '3'", InBag(three)},
      {InBag(three), [&](XMLPropBag& b) { b.RestoreState(&a, "say \"hi\""); },
       kDomError + "The XPath expression \"//PropertyBag/A[@name=\"say \"hi\"\"]\" is invalid: ...", InBag(three)},
      {indented,     [&](XMLPropBag&) {},                                                   "", InBag(loaded)},
      {indented,     [&](XMLPropBag& b) { b.DeleteObject("A", "x"); },                      "", InBag("<A name=\"y\"/><A name=\"x\"><P/></A>")},
      {indented,     [&](XMLPropBag& b) { b.DeleteObject("A"); b.DeleteObject("Missing", "x"); }, "", InBag("<A name=\"y\"/><A name=\"x\"><P/></A>")},
      {InBag(nested), [&](XMLPropBag& b) { b.RestoreState(&tree); }, "'second root' empty empty", InBag(nested)},
      {InBag("<Holder><P>old</P></Holder>"), [&](XMLPropBag& b) { b.RestoreState(&switching); }, "'old'", InBag("<Holder><P>new</P></Holder>")},
  };
  // clang-format on
  RunCases(cases, read);
}

TEST(XMLPropBag, RefusesTextThatDoesNotLoadLeavingAnEmptyDocument) {
  const std::string load = "-2147191004" + kBagError;
  // clang-format off
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"<a/><b/>",                    "Only one top level element is allowed in an XML document."},
      {"",                            "XML document must have a top level element."},
      {"x<a/>",                       "Invalid at the top level of the document."},
      {"<a/><![CDATA[x]]>",           "Invalid at the top level of the document."},
      {"<a><b n=\"1\" m=\"2\" n=\"3\"/></a>", "Duplicate attribute 'n'."},
      {"<a><b n='1'\r\nn=\"2\"/></a>", "Duplicate attribute 'n'."},
      {"<a x=\"1\"y=\"2\"/>",         "Error parsing element attribute at line 1, column 9."},
      {std::string("<a>\0</a>", 8),   "An Invalid character was found in text content at line 1, column 4."},
      {"<a>\r\n<b>\r\n</a>",          "Start-end tags mismatch at line 3, column 3."},
  };
  // clang-format on
  for (const auto& [text, reason] : cases) {
    auto bag = XMLPropBag::Create();
    EXPECT_EQ(Outcome([&] { return bag->SetContents(text), std::string(); }), load + reason);
    EXPECT_EQ(bag->Contents(), "") << text;
  }
}

// The DOM's own parsing, printing and removal of nodes is recursive; the bag must not be. Every
// level matches "//PropertyBag", so the selection sees nested matches.
TEST(XMLPropBag, LoadsRestoresAndDeletesVeryDeepDocumentsWithoutRecursion) {
  std::string read;
  const std::string open = "<PropertyBag name=\"n\">", close = "</PropertyBag>";
  std::string opens, closes;
  for (int level = 1; level < 100000; ++level) opens += open, closes += close;
  const std::string deep = "<PropertyBag>" + opens + open + closes + close + close;
  const std::string deep_written = InBag(opens + "<PropertyBag name=\"n\"/>" + closes);
  Scripted deep_root("PropertyBag", {},
                     [&](XMLPropBag& b) { read = Describe(b.ReadProperty("L", Variant(7))); });
  const std::vector<BagCase> cases = {
      {deep, [&](XMLPropBag&) {}, "", deep_written},
      {deep, [&](XMLPropBag& b) { b.RestoreState(&deep_root, "n"); }, "7", deep_written},
      {deep, [&](XMLPropBag& b) { b.DeleteObject("PropertyBag", "n"); }, "", InBag("")},
  };
  RunCases(cases, read);
}

// A bag loaded for reading keeps leading text in the elements themselves; every read and the
// contents are the same as after SetContents.
TEST(XMLPropBag, ReadsTheSameWhenLoadedForReading) {
  const std::vector<std::string> documents = {
      "<Holder><P>text</P></Holder>",
      "<Holder><P/></Holder>",
      "<Holder><P>a<![CDATA[<b>]]>c</P></Holder>",
      "<Holder><P><![CDATA[x]]>tail</P></Holder>",
      "<Holder><P>lead<Q>inner</Q>tail<R><S>deep</S></R></P></Holder>",
      "<Holder><P vartype=\"NULL\">ignored</P></Holder>",
      "<Holder><P xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" "
      "dt:dt=\"bin.base64\">QUJD</P></Holder>",
      "<Holder>top<P>x</P>end</Holder>",
  };
  for (const std::string& document : documents) {
    std::string read[2], contents[2];
    for (int mode = 0; mode < 2; ++mode) {
      Scripted holder("Holder", {},
                      [&](XMLPropBag& bag) { read[mode] = Describe(bag.ReadProperty("P")); });
      auto bag = XMLPropBag::Create();
      mode == 0 ? bag->SetContents(InBag(document)) : bag->SetContentsForReading(InBag(document));
      bag->RestoreState(&holder);
      contents[mode] = bag->Contents();
    }
    EXPECT_EQ(read[1], read[0]) << document;
    EXPECT_EQ(contents[1], contents[0]) << document;
  }
}

TEST(XMLPropBag, WritesTextStraightUnderNamesCheckedOnceOrEachTime) {
  const ElementName name("ț.G-1");
  EXPECT_EQ(std::string(name.StartTag()) + "|" + std::string(name.EndTag()), "<ț.G-1>|</ț.G-1>");
  Scripted writer("A", [&](XMLPropBag& b) {
    b.WriteText(name, "x<y");  // markup goes in a CDATA section
    b.WriteText(name, "");
    b.WriteText("P", " a&b\n");
  });
  EXPECT_EQ(XMLPropBag::SaveStateText(writer),
            "<PropertyBag><A><ț.G-1><![CDATA[x<y]]></ț.G-1><ț.G-1/><P> a&amp;b\r\n</P></A>"
            "</PropertyBag>\r\n");
  EXPECT_TRUE(test_support::RaisesError([] { ElementName("a:b"); }, kErrXMLDomFailure,
                                        "brixobjects4.kelpXMLPBag",
                                        "'a:b' is not a valid element name."));
  Scripted badly_named("A", [](XMLPropBag& b) { b.WriteText("1x", "v"); });
  EXPECT_TRUE(test_support::RaisesError([&] { XMLPropBag::SaveStateText(badly_named); },
                                        kErrXMLDomFailure, "brixobjects4.kelpXMLPBag",
                                        "'1x' is not a valid element name."));
}

}  // namespace
}  // namespace brix
