// The XML property bag: document shape, value kinds, object trees, positions and errors.
#include "persistence/xml_prop_bag.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "persistence_test_support.h"
#include "runtime/conversions.h"

namespace brix {
namespace {

using test_support::ContentsWithProperty;
using test_support::ExpectError;
using test_support::ExpectObjectNotSet;
using test_support::HolderDocument;
using test_support::kBagSource;
using test_support::PlainObject;
using test_support::ReadBack;
using test_support::Scripted;

const std::string kSampleDocument =
    "<PropertyBag><Sample name=\"S1\"><Count>3</Count><Note><![CDATA[a<b]]></Note>"
    "<Extra vartype=\"empty\"/><Data xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" "
    "dt:dt=\"bin.base64\">AQID</Data><SampleChild name=\"Child\"><Level>2</Level></SampleChild>"
    "</Sample></PropertyBag>\r\n";

std::shared_ptr<Scripted> MakeSample() {
  auto child = Scripted::Create(
      "SampleChild", [](XMLPropBag& bag) { bag.WriteProperty("Level", Variant(std::int16_t{2})); });
  return Scripted::Create("Sample", [child](XMLPropBag& bag) {
    bag.WriteProperty("Count", Variant(3));
    bag.WriteProperty("Note", Variant("a<b"));
    bag.WriteProperty("Extra", Variant());
    bag.WriteProperty("Data", Variant(ByteArray{1, 2, 3}));
    bag.WriteProperty("Child", Variant(child));
  });
}

void ExpectSameValue(const Variant& actual, const Variant& expected) {
  ASSERT_EQ(actual.Type(), expected.Type());
  if (expected.IsString()) EXPECT_EQ(actual.AsString(), expected.AsString());
  if (expected.IsByteArray()) EXPECT_EQ(actual.AsByteArray(), expected.AsByteArray());
  if (expected.IsObject()) EXPECT_EQ(actual.IsNothing(), expected.IsNothing());
}

TEST(XMLPropBag, SavesTheSampleTreeExactlyAsTheDomWritesIt) {
  auto bag = XMLPropBag::Create();
  bag->SaveState(MakeSample().get(), "S1");
  EXPECT_EQ(bag->Contents(), kSampleDocument);
}

TEST(XMLPropBag, RestoresTheSampleTreeAsStringsEmptyAndBytes) {
  auto bag = XMLPropBag::Create();
  bag->SetContents(kSampleDocument);
  std::vector<Variant> values;
  auto child = Scripted::Create("SampleChild", {},
                                [&](XMLPropBag& b) { values.push_back(b.ReadProperty("Level")); });
  auto sample = Scripted::Create("Sample", {}, [&](XMLPropBag& b) {
    for (const char* name : {"Count", "Note", "Extra", "Data"})
      values.push_back(b.ReadProperty(name));
    values.push_back(b.ReadProperty("Child", Variant(child)));
  });
  bag->RestoreState(sample.get(), "S1");
  ASSERT_EQ(values.size(), 6u);
  ExpectSameValue(values[0], Variant("3"));
  ExpectSameValue(values[1], Variant("a<b"));
  ExpectSameValue(values[2], Variant());
  ExpectSameValue(values[3], Variant(ByteArray{1, 2, 3}));
  ExpectSameValue(values[4], Variant("2"));  // the child reads before the object read returns
  ExpectSameValue(values[5], Variant());     // the object branch always gives Empty
  EXPECT_EQ(child->reads, 1);
}

struct KindCase {
  const char* label;
  Variant value;
  std::string element;
  Variant read_back;
};

TEST(XMLPropBag, WritesEachKindOfValueAndReadsItBack) {
  const std::vector<KindCase> cases = {
      {"empty", Variant(), "<P vartype=\"empty\"/>", Variant()},
      {"null", Variant::Null(), "<P vartype=\"null\"/>", Variant::Null()},
      {"nothing", Variant::Nothing(), "<P vartype=\"nothing\"/>", Variant::Nothing()},
      {"numeric text", Variant("12"), "<P>12</P>", Variant("12")},
      {"long", Variant(-7), "<P>-7</P>", Variant("-7")},
      {"double", Variant(2.5), "<P>2.5</P>", Variant("2.5")},
      {"boolean", Variant(true), "<P>True</P>", Variant("True")},
      {"date", Variant(Date{40239.5}), "<P>3/2/2010 12:00:00 PM</P>",
       Variant("3/2/2010 12:00:00 PM")},
      {"markup", Variant("1<2"), "<P><![CDATA[1<2]]></P>", Variant("1<2")},
      {"closing markup", Variant("x>y"), "<P><![CDATA[x>y]]></P>", Variant("x>y")},
      {"ampersand", Variant("a&b"), "<P>a&amp;b</P>", Variant("a&b")},
      {"empty text", Variant(""), "<P/>", Variant("")},
      {"object with a default value", Variant(std::make_shared<PlainObject>(Variant("<v>"))),
       "<P><![CDATA[<v>]]></P>", Variant("<v>")},
      {"no bytes", Variant(ByteArray{}),
       "<P xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" dt:dt=\"bin.base64\"/>",
       Variant(ByteArray{})},
      {"bytes", Variant(ByteArray{0, 255, 128}),
       "<P xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" dt:dt=\"bin.base64\">AP+A</P>",
       Variant(ByteArray{0, 255, 128})},
  };
  for (const KindCase& c : cases) {
    SCOPED_TRACE(c.label);
    const std::string contents = ContentsWithProperty(c.value);
    EXPECT_EQ(contents, HolderDocument(c.element));
    ExpectSameValue(ReadBack(contents), c.read_back);
  }
}

TEST(XMLPropBag, RefusesValuesWithoutAStringFormAndAddsNothing) {
  const std::vector<Variant> refused = {
      Variant(VariantArray{{Variant(1), Variant(2)}}),
      Variant(ErrorValue{5}),
      Variant::Missing(),
      Variant(std::make_shared<PlainObject>(std::nullopt)),
      Variant(std::make_shared<PlainObject>(Variant::Null())),
  };
  for (const Variant& value : refused) {
    auto bag = XMLPropBag::Create();
    auto holder = Scripted::Create("Holder", [&](XMLPropBag& b) {
      ExpectError([&] { b.WriteProperty("P", value); }, -2147191005, kBagSource,
                  "Invalid PropertyValue type.");
    });
    bag->SaveState(holder.get());
    EXPECT_EQ(bag->Contents(), "<PropertyBag><Holder/></PropertyBag>\r\n");
  }
}

TEST(XMLPropBag, ReadsMarkersInAnyCaseAndOtherwiseTheText) {
  const std::string contents = HolderDocument(
      "<A vartype=\"Null\">x</A><B vartype=\"EMPTY\"/><C vartype=\"NoThing\"/>"
      "<D vartype=\"other\">t<![CDATA[<u>]]></D>"
      "<E vartype=\"empty\" xmlns:dt=\"urn:schemas-microsoft-com:datatypes\" dt:dt=\"bin.base64\"/>"
      "<F xmlns:b=\"urn:schemas-microsoft-com:datatypes\" b:dt=\"bin.base64\">\r\nAQ\r\nID\r\n</F>"
      "<G dt=\"bin.base64\"> AQID </G><H>a<I>b</I>c</H><P>first</P><P>second</P>");
  ExpectSameValue(ReadBack(contents, "A"), Variant::Null());
  ExpectSameValue(ReadBack(contents, "B"), Variant());
  ExpectSameValue(ReadBack(contents, "C"), Variant::Nothing());
  ExpectSameValue(ReadBack(contents, "D"), Variant("t<u>"));
  ExpectSameValue(ReadBack(contents, "E"), Variant());
  ExpectSameValue(ReadBack(contents, "F"), Variant(ByteArray{1, 2, 3}));
  ExpectSameValue(ReadBack(contents, "G"), Variant(" AQID "));
  ExpectSameValue(ReadBack(contents, "H"), Variant("abc"));
  ExpectSameValue(ReadBack(contents, "P"), Variant("first"));
  ExpectSameValue(ReadBack(contents, "P[2]"), Variant("second"));
  ExpectSameValue(ReadBack(contents, "*[last()]"), Variant("second"));

  const std::string declared_above =
      "<PropertyBag xmlns:q=\"urn:schemas-microsoft-com:datatypes\"><Holder>"
      "<J q:dt=\"bin.base64\">AQID</J><K xmlns:q=\"other\" q:dt=\"bin.base64\">AQID</K>"
      "</Holder></PropertyBag>";
  ExpectSameValue(ReadBack(declared_above, "J"), Variant(ByteArray{1, 2, 3}));
  ExpectSameValue(ReadBack(declared_above, "K"), Variant("AQID"));
}

TEST(XMLPropBag, MissingPropertyGivesTheDefaultOrTheMissingMarker) {
  const std::string contents = HolderDocument("<P>x</P>");
  auto bag = XMLPropBag::Create();
  bag->SetContents(contents);
  auto holder = Scripted::Create("Holder", {}, [](XMLPropBag& b) {
    EXPECT_TRUE(b.ReadProperty("Q").IsMissing());
    ExpectSameValue(b.ReadProperty("Q", Variant(5)), Variant(5));
    ExpectSameValue(b.ReadProperty("P", Variant(5)), Variant("x"));
  });
  bag->RestoreState(holder.get());
  EXPECT_EQ(holder->reads, 1);
}

TEST(XMLPropBag, SavingUnderOneNameReplacesInPlaceAndOtherNamesAddElements) {
  auto bag = XMLPropBag::Create();
  int generation = 0;
  auto a = Scripted::Create("A", [&](XMLPropBag& b) { b.WriteProperty("G", Variant(generation)); });
  auto other = Scripted::Create("B");
  bag->SaveState(a.get(), "one");
  bag->SaveState(other.get());
  generation = 1;
  bag->SaveState(a.get(), "one");
  bag->SaveState(a.get(), "two");
  EXPECT_EQ(bag->Contents(),
            "<PropertyBag><A name=\"one\"><G>1</G></A><B/><A name=\"two\"><G>1</G></A>"
            "</PropertyBag>\r\n");
  generation = 2;
  bag->SaveState(a.get());  // no name: replaces the first A, whatever its name
  EXPECT_EQ(bag->Contents(),
            "<PropertyBag><A><G>2</G></A><B/><A name=\"two\"><G>1</G></A></PropertyBag>\r\n");
}

TEST(XMLPropBag, DeleteObjectRemovesTheFirstMatchOnly) {
  auto bag = XMLPropBag::Create();
  bag->SetContents(
      "<PropertyBag><A name=\"x\"/><A name=\"y\"/><A name=\"x\"><P/></A></PropertyBag>");
  bag->DeleteObject("A", "x");
  EXPECT_EQ(bag->Contents(),
            "<PropertyBag><A name=\"y\"/><A name=\"x\"><P/></A></PropertyBag>\r\n");
  bag->DeleteObject("A");
  bag->DeleteObject("Missing", "x");
  EXPECT_EQ(bag->Contents(), "<PropertyBag><A name=\"x\"><P/></A></PropertyBag>\r\n");
}

TEST(XMLPropBag, RestoreStateOfAnUnknownObjectIsASilentNoOp) {
  auto bag = XMLPropBag::Create();
  bag->SetContents(kSampleDocument);
  auto sample = Scripted::Create("Sample");
  bag->RestoreState(sample.get(), "S2");
  bag->RestoreState(Scripted::Create("Other").get());
  bag->RestoreState(nullptr);
  bag->SaveState(nullptr);
  EXPECT_EQ(sample->reads, 0);
  bag->RestoreState(sample.get());  // no name: the first Sample
  EXPECT_EQ(sample->reads, 1);
  EXPECT_EQ(bag->Contents(), kSampleDocument);
}

// Nested objects are found from the bag's path over the whole document, so with several roots
// of one class the first child of that name in the document wins, even under another root.
TEST(XMLPropBag, NestedObjectsAreTheFirstMatchInTheDocument) {
  auto bag = XMLPropBag::Create();
  bag->SetContents(
      "<PropertyBag><Q><T name=\"T2\"><V>first</V></T></Q>"
      "<Q><T name=\"T1\"><V>second root</V></T><T name=\"T1\"><V>later</V></T></Q></PropertyBag>");
  Variant seen;
  auto table = Scripted::Create("T", {}, [&](XMLPropBag& b) { seen = b.ReadProperty("V"); });
  auto query = Scripted::Create("Q", {}, [&](XMLPropBag& b) {
    EXPECT_TRUE(b.ReadProperty("T1", Variant(table)).IsEmpty());
    EXPECT_TRUE(b.ReadProperty("Missing", Variant(table)).IsEmpty());
  });
  bag->RestoreState(query.get());
  ExpectSameValue(seen, Variant("second root"));
  EXPECT_EQ(table->reads, 1);
}

TEST(XMLPropBag, ReadsManySiblingObjectsOneLookupEach) {
  constexpr int kCount = 20000;
  auto leaf = [](int n) {
    return Scripted::Create("Leaf", [n](XMLPropBag& b) { b.WriteProperty("N", Variant(n)); });
  };
  auto root = Scripted::Create("Root", [&](XMLPropBag& b) {
    b.WriteProperty("Count", Variant(kCount));
    for (int n = 1; n <= kCount; ++n) b.WriteProperty("Leaf" + std::to_string(n), Variant(leaf(n)));
  });
  auto bag = XMLPropBag::Create();
  bag->SaveState(root.get(), "R");
  auto loaded = XMLPropBag::Create();
  loaded->SetContents(bag->Contents());
  long long sum = 0;
  auto reader = Scripted::Create("Root", {}, [&](XMLPropBag& b) {
    const int count = CLng(b.ReadProperty("Count"));
    for (int n = count; n >= 1; --n) {
      auto child =
          Scripted::Create("Leaf", {}, [&](XMLPropBag& c) { sum += CLng(c.ReadProperty("N")); });
      b.ReadProperty("Leaf" + std::to_string(n), Variant(child));
    }
  });
  loaded->RestoreState(reader.get(), "R");
  EXPECT_EQ(sum, 1LL * kCount * (kCount + 1) / 2);
}

TEST(XMLPropBag, NewBagHasNoDocumentAndIgnoresSetDocument) {
  auto bag = XMLPropBag::Create();
  EXPECT_EQ(bag->Contents(), "");
  EXPECT_EQ(bag->Document(), nullptr);
  pugi::xml_document other;
  bag->SetDocument(&other);
  EXPECT_EQ(bag->Document(), nullptr);
  bag->SaveState(Scripted::Create("A").get());
  const pugi::xml_document* document = bag->Document();
  ASSERT_NE(document, nullptr);
  bag->SetDocument(&other);
  EXPECT_EQ(bag->Document(), document);
  EXPECT_STREQ(document->document_element().name(), "PropertyBag");
}

TEST(XMLPropBag, UsingTheBagWithoutDocumentOrPositionRaises91) {
  auto bag = XMLPropBag::Create();
  ExpectObjectNotSet([&] { bag->WriteProperty("P", Variant(1)); });
  ExpectObjectNotSet([&] { bag->ReadProperty("P"); });
  ExpectObjectNotSet([&] { bag->RestoreState(Scripted::Create("A").get()); });
  ExpectObjectNotSet([&] { bag->DeleteObject("A"); });
  bag->SetContents("<PropertyBag/>");
  ExpectObjectNotSet([&] { bag->WriteProperty("P", Variant(1)); });
  ExpectObjectNotSet([&] { bag->ReadProperty("P"); });
}

TEST(XMLPropBag, DomErrorsLeaveTheDocumentUnchanged) {
  auto bag = XMLPropBag::Create();
  auto holder = Scripted::Create("Holder", [](XMLPropBag& b) {
    ExpectError([&] { b.WriteProperty("bad name", Variant(1)); }, kErrXMLDomFailure, kBagSource,
                "'bad name' is not a valid element name.");
    ExpectError([&] { b.WriteProperty("P", Variant(std::string("a\0b", 3))); }, kErrXMLDomFailure,
                kBagSource,
                "Text that holds the character U+0000 cannot be stored in an XML document.");
    ExpectError([&] { b.ReadProperty("P["); }, kErrXMLDomFailure, kBagSource,
                "The XPath expression \"P[\" is invalid: Unrecognized node test.");
    ExpectError([&] { b.ReadProperty("/"); }, kErrTypeMismatch, "brixobjects4", "Type mismatch");
    ExpectError([&] { b.ReadProperty("1 + 1"); }, kErrXMLDomFailure, kBagSource,
                "The XPath expression \"1 + 1\" is invalid: Expression does not evaluate to "
                "node set.");
  });
  bag->SaveState(holder.get());
  ExpectError([&] { bag->SaveState(Scripted::Create("1x").get()); }, kErrXMLDomFailure, kBagSource,
              "'1x' is not a valid element name.");
  ExpectError([&] { bag->RestoreState(Scripted::Create("A").get(), "say \"hi\""); },
              kErrXMLDomFailure, kBagSource,
              "The XPath expression \"//PropertyBag/A[@name=\"say \"hi\"\"]\" is invalid: "
              "Expected ']' to match an opening '['.");
  EXPECT_EQ(bag->Contents(), "<PropertyBag><Holder/></PropertyBag>\r\n");

  auto foreign = XMLPropBag::Create();
  foreign->SetContents("<Other/>");
  ExpectError([&] { foreign->SaveState(Scripted::Create("A").get()); }, kErrXMLDomFailure,
              kBagSource, "Only one top level element is allowed in an XML document.");
  EXPECT_EQ(foreign->Contents(), "<Other/>\r\n");
}

TEST(XMLPropBag, RemovingTheElementABagStandsOnLeavesItWithoutPosition) {
  auto bag = XMLPropBag::Create();
  auto self_deleting = Scripted::Create("A", [](XMLPropBag& b) {
    b.WriteProperty("Before", Variant(1));
    b.DeleteObject("A", "x");
    ExpectObjectNotSet([&] { b.WriteProperty("After", Variant(2)); });
  });
  bag->SaveState(self_deleting.get(), "x");
  EXPECT_EQ(bag->Contents(), "<PropertyBag/>\r\n");
}

TEST(XMLPropBag, ABagKeepsItsNodeWhenItsContentsAreReplaced) {
  auto bag = XMLPropBag::Create();
  bag->SetContents(HolderDocument("<P>old</P>"));
  auto holder = Scripted::Create("Holder", {}, [](XMLPropBag& b) {
    b.SetContents("<PropertyBag><Holder><P>new</P></Holder></PropertyBag>");
    ExpectSameValue(b.ReadProperty("P"), Variant("old"));
    b.WriteProperty("Q", Variant(1));  // lands in the old, detached document
  });
  bag->RestoreState(holder.get());
  EXPECT_EQ(bag->Contents(), HolderDocument("<P>new</P>"));
}

TEST(XMLPropBag, MalformedContentsRaiseTheParsersReason) {
  auto bag = XMLPropBag::Create();
  bag->SaveState(Scripted::Create("A").get());
  ExpectError([&] { bag->SetContents("<PropertyBag>\n<A></B></PropertyBag>"); }, -2147191004,
              kBagSource, "Start-end tags mismatch at line 2, column 6.");
  EXPECT_EQ(bag->Contents(), "");
  EXPECT_NE(bag->Document(), nullptr);
}

}  // namespace
}  // namespace brix
