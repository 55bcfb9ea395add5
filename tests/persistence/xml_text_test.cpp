// Text in and out of the bag: exact serialised forms, round trips of tricky text, loading
// errors and hostile input.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "persistence_test_support.h"

namespace brix {
namespace {

using test_support::ContentsWithProperty;
using test_support::ExpectError;
using test_support::HolderDocument;
using test_support::kBagSource;
using test_support::ReadBack;
using test_support::Scripted;

TEST(XmlText, WritesTextSoThatAParserGivesItBackUnchanged) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"a\nb", "<P>a\r\nb</P>"},
      {"a\r\nb", "<P>a&#13;\r\nb</P>"},
      {"\r", "<P>&#13;</P>"},
      {" ", "<P>&#32;</P>"},
      {"\n\t ", "<P>&#10;\t </P>"},
      {" x ", "<P> x </P>"},
      {"x\x01y\x1f", "<P>x&#1;y&#31;</P>"},
      {"\"q\" 'a'", "<P>\"q\" 'a'</P>"},
      {"1<2\n", "<P><![CDATA[1<2\r\n]]></P>"},
      {"<\r>", "<P><![CDATA[<]]>&#13;<![CDATA[>]]></P>"},
      {"]]>", "<P><![CDATA[]]]]><![CDATA[>]]></P>"},
      {"a]]>b]]>", "<P><![CDATA[a]]]]><![CDATA[>b]]]]><![CDATA[>]]></P>"},
  };
  for (const auto& [text, element] : cases) {
    SCOPED_TRACE(text);
    const std::string contents = ContentsWithProperty(Variant(text));
    EXPECT_EQ(contents, HolderDocument(element));
    const Variant back = ReadBack(contents);
    ASSERT_TRUE(back.IsString());
    EXPECT_EQ(back.AsString(), text);
  }
}

TEST(XmlText, RoundTripsTrickyTextAndNamesThroughSaveAndLoad) {
  const std::vector<std::string> texts = {
      "\r\n\r\n",
      "\n",
      "\t",
      "end\n",
      "a\r\rb",
      "<a>\n</a>",
      "]]]]>>",
      "&amp;<",
      "\x7f\x0b\x0c",
      "Țară, încă: șî ăâ ȘȚĂÎÂ",
      "😀 𝄞 ∑",
      "x<y\x02>z\r",
      std::string(200, '\n'),
  };
  for (const std::string& text : texts) {
    SCOPED_TRACE(text);
    const std::string name = "n \t\n\r&<>'" + text.substr(0, 3);
    auto bag = XMLPropBag::Create();
    auto writer =
        Scripted::Create("Holder", [&](XMLPropBag& b) { b.WriteProperty("P", Variant(text)); });
    bag->SaveState(writer.get(), name);
    auto loaded = XMLPropBag::Create();
    loaded->SetContents(bag->Contents());
    EXPECT_EQ(loaded->Contents(), bag->Contents());
    Variant back;
    auto reader =
        Scripted::Create("Holder", {}, [&](XMLPropBag& b) { back = b.ReadProperty("P"); });
    loaded->RestoreState(reader.get(), name);
    ASSERT_TRUE(back.IsString());
    EXPECT_EQ(back.AsString(), text);
  }
}

TEST(XmlText, LoadingKeepsTextUntrimmedAndDropsWhitespaceBetweenElements) {
  const std::string text =
      "\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n<!-- saved -->\r\n<PropertyBag>\r\n\t<Holder>\r\n"
      "\t\t<P>  spaced\r\n  </P>\r\n\t</Holder>\r\n</PropertyBag>\r\n";
  const Variant back = ReadBack(text);
  ASSERT_TRUE(back.IsString());
  EXPECT_EQ(back.AsString(), "  spaced\n  ");
  auto bag = XMLPropBag::Create();
  bag->SetContents(text);
  EXPECT_EQ(bag->Contents(), HolderDocument("<P>  spaced\r\n  </P>"));
}

TEST(XmlText, RefusesWhatThePlatformsParserRefuses) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"", "XML document must have a top level element."},
      {" \r\n", "XML document must have a top level element."},
      {"<a/><b/>", "Only one top level element is allowed in an XML document."},
      {"x<a/>", "Invalid at the top level of the document."},
      {"<a/><![CDATA[x]]>", "Invalid at the top level of the document."},
      {"<a><b n=\"1\" m=\"2\" n=\"3\"/></a>", "Duplicate attribute 'n'."},
      {std::string("<a>\0</a>", 8),
       "An Invalid character was found in text content at line 1, column 4."},
      {"<a>\r\n<b>\r\n</a>", "Start-end tags mismatch at line 3, column 3."},
      {"<a", "Error parsing start element tag at line 1, column 2."},
      {"<1a/>", "Could not determine tag type at line 1, column 2."},
  };
  for (const auto& [text, reason] : cases) {
    SCOPED_TRACE(text);
    auto bag = XMLPropBag::Create();
    ExpectError([&] { bag->SetContents(text); }, -2147191004, kBagSource, reason);
    EXPECT_EQ(bag->Contents(), "");
  }
}

TEST(XmlText, EveryTruncationOrCorruptionLoadsOrRaisesTheLoadError) {
  const std::string whole = ContentsWithProperty(Variant("a<b & c\r\n"));
  std::mt19937 random(11);
  std::vector<std::string> inputs;
  for (std::size_t length = 0; length <= whole.size(); ++length)
    inputs.push_back(whole.substr(0, length));
  for (int i = 0; i < 2000; ++i) {
    std::string corrupted = whole;
    for (int flips = 1 + static_cast<int>(random() % 4); flips > 0; --flips) {
      corrupted[random() % corrupted.size()] = static_cast<char>(random());
    }
    inputs.push_back(corrupted);
  }
  for (const std::string& input : inputs) {
    auto bag = XMLPropBag::Create();
    try {
      bag->SetContents(input);
      auto holder = Scripted::Create("Holder", {}, [](XMLPropBag& b) { b.ReadProperty("P"); });
      bag->RestoreState(holder.get());
      bag->Contents();
    } catch (const Error& error) {
      EXPECT_TRUE(error.Number() == -2147191004 || error.Number() == kErrXMLDomFailure)
          << error.Number() << " " << error.Description();
    }
  }
}

// The DOM's own parsing, printing and removal of nodes is recursive; the bag must not be.
TEST(XmlText, HandlesDocumentsNestedAHundredThousandLevelsDeep) {
  constexpr int kDepth = 100000;
  std::string text = "<PropertyBag>";
  for (int i = 0; i < kDepth; ++i) text += "<PropertyBag name=\"n\">";
  for (int i = 0; i < kDepth; ++i) text += "</PropertyBag>";
  text += "</PropertyBag>";
  auto bag = XMLPropBag::Create();
  bag->SetContents(text);
  std::string expected = "<PropertyBag>";
  for (int i = 1; i < kDepth; ++i) expected += "<PropertyBag name=\"n\">";
  expected += "<PropertyBag name=\"n\"/>";
  for (int i = 1; i < kDepth; ++i) expected += "</PropertyBag>";
  expected += "</PropertyBag>\r\n";
  EXPECT_EQ(bag->Contents(), expected);

  // Every level matches "//PropertyBag", so the selection sees nested matches.
  auto root = Scripted::Create("PropertyBag", {}, [](XMLPropBag& b) {
    EXPECT_EQ(b.ReadProperty("Level", Variant(7)).Type(), vbLong);
  });
  bag->RestoreState(root.get(), "n");
  EXPECT_EQ(root->reads, 1);
  bag->DeleteObject("PropertyBag", "n");
  EXPECT_EQ(bag->Contents(), "<PropertyBag/>\r\n");
}

}  // namespace
}  // namespace brix
