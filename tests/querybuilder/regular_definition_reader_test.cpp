// The direct reading of a definition document gives what reading it through the bag gives, on
// saved documents and on documents edited away from the usual shape.
#include "querybuilder/regular_definition_reader.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "persistence/xml_prop_bag.h"
#include "persistence/xml_text_decoder.h"
#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "tests/support/definition_outcome.h"
#include "tests/support/random_query.h"

namespace brix {
namespace {

using test_support::LoadsAsThroughBag;
using test_support::Outcome;
using test_support::ReadsDirectly;
using test_support::ThroughBag;
using test_support::ThroughLoad;

struct Edit {
  const char* what;
  std::vector<std::pair<std::string, std::string>> replacements;  // each of its first match
  bool stays_regular;
};

/// `text` with the edit's replacements made in turn; "" when one does not apply.
std::string Apply(const Edit& edit, std::string text) {
  for (const auto& [from, to] : edit.replacements) {
    const std::size_t at = text.find(from);
    if (at == std::string::npos) return {};
    text.replace(at, from.size(), to);
  }
  return text;
}

// Edits the generated documents of the lexer's test do not make: values that do not convert,
// markers, names and markup the reader must leave to the bag.
const std::vector<Edit> kEdits = {
    {"a count written again after the children",
     {{"</xqb_Field>", "<ConditionsCount>0</ConditionsCount></xqb_Field>"}},
     true},
    {"an unknown empty element", {{"<IsEditable>", "<Extra/><IsEditable>"}}, true},
    {"a number with blanks", {{"<ConditionID>", "<ConditionID> 0"}}, true},
    {"a number in exponent form", {{"<ConditionID>", "<ConditionID>1e1"}}, true},
    {"a number with a leading zero", {{"<ConditionID>", "<ConditionID>0"}}, true},
    {"a number out of range", {{"<ConditionID>", "<ConditionID>99999999999"}}, true},
    {"a number that is text", {{"<Clause>", "<Clause>x"}}, true},
    {"a Boolean as a number", {{"<IsEditable>True", "<IsEditable>-1"}}, true},
    {"a Boolean in lower case", {{"<IsEditable>False", "<IsEditable>false"}}, true},
    {"a Null operand", {{"<Value>", "<Value vartype=\"null\">"}}, true},
    {"a negative count", {{"<ConditionsCount>", "<ConditionsCount>-"}}, true},
    {"a count as Null", {{"<FieldsCount>", "<FieldsCount vartype=\"null\">"}}, true},
    {"a condition named twice", {{"name=\"Condition2\"", "name=\"Condition1\""}}, false},
    {"a condition named by another attribute",
     {{"name=\"Condition1\"", "nam=\"Condition1\""}},
     false},
    {"markup inside a value",
     {{"<Tag>",
       "<Tag><PropertyBag><xqb_Query><TablesCount>0</TablesCount></xqb_Query>"
       "</PropertyBag>"}},
     false},
    {"an unknown element with content", {{"<IsEditable>", "<X><Y/></X><IsEditable>"}}, false},
    {"a declaration and a byte order mark",
     {{"<PropertyBag>", "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<PropertyBag>"}},
     true},
    {"blanks and single quotes in tags",
     {{"name=\"Condition1\">", "name = 'Condition1' >"}, {"</Clause>", "</Clause\r\n>"}},
     true},
    {"every kind of text in one value",
     {{"<Tag/>",
       "<Tag>a&lt;&amp;&gt;&quot;&apos;&#x20aC;&#128512; <![CDATA[<b>\r\n]]> \r\n "
       "<![CDATA[]]>b\r\nc\rd</Tag>"}},
     true},
    {"white space alone in a value", {{"<Tag/>", "<Tag> \r\n\t</Tag>"}}, true},
    {"an empty marked value", {{"<Value>", "<Value vartype='Empty'>"}}, true},
    {"two attributes on a value", {{"<Value>", "<Value a='' b=''>AQID</Value><Value>"}}, false},
    {"a reference the parser keeps", {{"<Tag/>", "<Tag>&nbsp;</Tag>"}}, false},
    {"a second attribute on a condition",
     {{"name=\"Condition1\"", "name=\"Condition1\" x=\"\""}},
     false},
    {"a repeated attribute on the query",
     {{"<xqb_Query name=", "<xqb_Query name='x' name="}},
     false},
    {"a repeated attribute on the bag", {{"<PropertyBag>", "<PropertyBag a='' a=''>"}}, false},
    {"a repeated attribute on a value", {{"<Value>", "<Value vartype='' vartype=''>"}}, false},
    {"a marker written by reference", {{"<Value>", "<Value vartype=\"&#78;ull\">"}}, true},
    {"an end tag that does not match", {{"</Clause>", "</Claus>"}}, false},
    {"an end tag of another name as long", {{"</Clause>", "</Clausx>"}}, false},
    {"an end tag of a longer name", {{"</Clause>", "</Clauses>"}}, false},
    {"a document cut short", {{"</xqb_Query></PropertyBag>", "</xqb_Query>"}}, false},
    {"text after the document", {{"</PropertyBag>", "</PropertyBag>x"}}, false},
    {"a second query",
     {{"</PropertyBag>", "<xqb_Query><TablesCount>0</TablesCount></xqb_Query></PropertyBag>"}},
     false},
};

TEST(RegularDefinitionReader, ReadsSavedDocumentsDirectlyAsTheBagDoes) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    const std::string saved = test_support::RandomQueryMaker(seed).Make()->SaveXMLDef();
    ASSERT_TRUE(ReadsDirectly(saved)) << "seed " << seed;
    ASSERT_EQ(ThroughLoad(saved), ThroughBag(saved)) << "seed " << seed;
  }
}

TEST(RegularDefinitionReader, EditedDocumentsLoadAsThroughTheBag) {
  for (const Edit& edit : kEdits) {
    int tried = 0;
    for (unsigned seed = 1; seed <= 400 && tried < 10; ++seed) {
      const std::string saved = test_support::RandomQueryMaker(seed).Make()->SaveXMLDef();
      const std::string edited = Apply(edit, saved);
      if (edited.empty()) continue;
      ++tried;
      const bool loaded = ThroughBag(edited).loaded;
      ASSERT_TRUE(LoadsAsThroughBag(edited)) << edit.what << ", seed " << seed;
      if (!edit.stays_regular) {
        EXPECT_FALSE(ReadsDirectly(edited)) << edit.what << ", seed " << seed;
      } else if (loaded) {
        EXPECT_TRUE(ReadsDirectly(edited)) << edit.what << ", seed " << seed;
      }
    }
    EXPECT_GT(tried, 0) << edit.what << " never applied";
  }
}

// Text that is not XML is refused at its place whichever way it is read, though the parser
// would take it. Each edit of a saved sample: what it replaces, with what, the text where the
// fault begins and the reason.
TEST(RegularDefinitionReader, TextThatIsNotXmlIsRefusedAtItsPlaceBothWays) {
  std::ifstream in(std::string(BRIX_TEST_DATA_DIR) + "/query_definition.xml", std::ios::binary);
  const std::string sample{std::istreambuf_iterator<char>(in), {}};
  const std::string tag = "<Tag>q-tag", bag = "<PropertyBag>", end = "</PropertyBag>";
  const std::string decl = "<?xml version=\"1.0\"?>";
  const std::string not_reference = "\" is not a reference XML defines (write \"&amp;\" for \"&\")";
  const std::string misplaced =
      "The XML declaration is allowed only once, at the very start of the document";
  const std::string doctype = "A DOCTYPE is allowed only once, before the document element";
  const std::string not_allowed = "A character XML does not allow was found";
  struct Case {
    std::string from, to, fault, reason;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {tag, "<Tag>q & tag",        "& tag",     "\"&" + not_reference},
      {tag, "<Tag>q-tag&",         "&</Tag>",   "\"&" + not_reference},
      {tag, "<Tag>&nbsp;",         "&nbsp;",    "\"&nbsp;" + not_reference},
      {tag, "<Tag>&#X41;",         "&#X41;",    "\"&#X41;" + not_reference},
      {tag, "<Tag>&#;",            "&#;",       "\"&#;" + not_reference},
      {tag, "<Tag>&#12a;",         "&#12a;",    "\"&#12a;" + not_reference},
      {tag, "<Tag>&#x;",           "&#x;",      "\"&#x;" + not_reference},
      {tag, "<Tag>&AMP;",          "&AMP;",     "\"&AMP;" + not_reference},
      {tag, "<Tag>&amp q;",        "&amp q;",   "\"&amp" + not_reference},
      {tag, "<Tag>a]]>b",          "]]>b",      "\"]]>\" is not allowed in text"},
      {tag, "<Tag>a<![CDATA[x]]>]]>", "]]></",  "\"]]>\" is not allowed in text"},
      {"name=\"Facturi", "name=\"a<b", "<b",    "\"<\" is not allowed in an attribute value"},
      {"name=\"Facturi", "name=\"a & b", "& b", "\"&" + not_reference},
      {"name=\"Facturi", "name=\"&nbsp;", "&nbsp;", "\"&nbsp;" + not_reference},
      {"name=\"Table1", "name=\"Table&1", "&1",  "\"&1" + not_reference},
      {bag, "<PropertyBag a=\"<\">", "<\">",     "\"<\" is not allowed in an attribute value"},
      {tag, "<Tag><!-- a -- b -->q-tag", "-- b", "\"--\" is not allowed inside a comment"},
      {tag, "<Tag><!-- a --->q-tag", "--->",     "\"--\" is not allowed inside a comment"},
      {bag, " " + decl + bag,      "<?xml",     misplaced},
      {bag, decl + decl + bag,     decl + bag,  misplaced},
      {tag, "<Tag>" + decl + "q",  "<?xml",     misplaced},
      {end, end + decl,            "<?xml",     misplaced},
      {bag, "<?XML version=\"1.0\"?>" + bag, "<?XML", misplaced},
      {bag, "<?xml encoding=\"UTF-8\"?>" + bag, "encoding", "The XML declaration must begin with its version"},
      {tag, "<Tag><!DOCTYPE x>",   "<!DOCTYPE", doctype},
      {bag, "<!DOCTYPE x><!DOCTYPE x>" + bag, "<!DOCTYPE x><P", doctype},
      {end, end + "<!DOCTYPE x>",  "<!DOCTYPE", doctype},
      {bag, "<!ELEMENT x ANY>" + bag, "<!ELEMENT", "Markup declarations are allowed only inside a DOCTYPE"},
      {"<Tag>q-tag</Tag>", "<T\xC3\x97g>q</T\xC3\x97g>", "\xC3\x97g>", "The element name \"T\xC3\x97g\" holds a character that XML names may not hold"},
      {tag, "<1a/>" + tag,         "1a/>",      "The element name \"1a\" holds a character that XML names may not hold"},
      {tag, "<Tag a\xC3\x97=\"1\">q-tag", "\xC3\x97=", "The attribute name \"a\xC3\x97\" holds a character that XML names may not hold"},
      {tag, "<Tag>q\xEF\xBF\xBE",  "\xEF\xBF\xBE", not_allowed},
      {tag, "<Tag>q\xEF\xBF\xBF",  "\xEF\xBF\xBF", not_allowed},
      {tag, "<Tag>&#xFFFE;",       "&#xFFFE;",  "The character reference &#xFFFE; stands for a character XML does not allow"},
      {tag, "<Tag>&#65535;",       "&#65535;",  "The character reference &#65535; stands for a character XML does not allow"},
  };
  // clang-format on
  for (const Case& c : cases) {
    std::string edited = sample;
    ASSERT_NE(edited.find(c.from), std::string::npos) << c.from;
    edited.replace(edited.find(c.from), c.from.size(), c.to);
    const std::string reason = c.reason + Location(edited, edited.find(c.fault));
    EXPECT_EQ(ThroughBag(edited), (Outcome{false, {}, kErrInvalidXMLFile, reason})) << c.to;
    EXPECT_EQ(
        ThroughLoad(edited),
        (Outcome{false, {}, kErrLoadXMLDef, "Couldn't load xml query definition!\r\n" + reason}))
        << c.to;
  }
  // The control characters the bag writes as references read back.
  auto query = xqb_Query::Create();
  std::string controls;
  for (char c = 1; c < 32; ++c) controls += c;
  query->SetQueryName(controls);
  const std::string saved = query->SaveXMLDef();
  EXPECT_NE(saved.find("&#1;"), std::string::npos);
  EXPECT_EQ(ThroughLoad(saved).saved, saved);
}

TEST(RegularDefinitionReader, ALoadThatFailsPartWayLeavesTheQueryAsItWas) {
  const std::string saved = test_support::RandomQueryMaker(3).Make()->SaveXMLDef();
  const std::string other = test_support::RandomQueryMaker(5).Make()->SaveXMLDef();
  auto query = xqb_Query::Create();
  query->LoadXMLDef(saved);
  // The direct reading builds tables before it meets the broken end; the parser then refuses.
  const std::string broken = other.substr(0, other.rfind("</xqb_Table>")) + "</PropertyBag>";
  EXPECT_THROW(query->LoadXMLDef(broken), Error);
  EXPECT_EQ(query->SaveXMLDef(), saved);
}

}  // namespace
}  // namespace brix
