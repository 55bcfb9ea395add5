// The indexed answers to whole-document paths agree with the XPath engine, node for node.
#include "persistence/xml_path_index.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "persistence/shared_xml_document.h"
#include "persistence/xml_tree_walk.h"

namespace brix {
namespace {

TEST(PathIndex, ParsesOnlyTheBagsPathForms) {
  struct Case {
    std::string xpath;
    std::vector<std::pair<std::string, std::optional<std::string>>> steps;
  };
  const std::vector<Case> indexable = {
      {"//PropertyBag", {{"PropertyBag", std::nullopt}}},
      {"//PropertyBag/xqb_Query[@name=\"Q1\"]/xqb_Table[@name = \"Table1\"]",
       {{"PropertyBag", std::nullopt}, {"xqb_Query", "Q1"}, {"xqb_Table", "Table1"}}},
      {"//a.b-c/_x[@name = \"x y/z]'[@\"]/ț[@name=\"\"]",
       {{"a.b-c", std::nullopt}, {"_x", "x y/z]'[@"}, {"ț", ""}}},
  };
  for (const Case& c : indexable) {
    SCOPED_TRACE(c.xpath);
    const auto steps = ParseIndexablePath(c.xpath);
    ASSERT_TRUE(steps.has_value());
    ASSERT_EQ(steps->size(), c.steps.size());
    for (std::size_t i = 0; i < c.steps.size(); ++i) {
      EXPECT_EQ((*steps)[i].name, c.steps[i].first);
      EXPECT_EQ((*steps)[i].name_attribute, c.steps[i].second);
    }
  }
  for (const char* xpath :
       {"PropertyBag", "/PropertyBag", "///A", "//A/", "//A//B", "//A[@name= \"x\"]",
        "//A[@name =\"x\"]", "//A[@name='x']", "//A[@name=\"x\"", "//A[@name=\"x\"]]",
        "//A[@id=\"x\"]", "//A[1]", "//a:b", "//1a", "//-a", "//A|//B", "//A/..", "//*"}) {
    EXPECT_FALSE(ParseIndexablePath(xpath).has_value()) << xpath;
  }
  std::string long_path = "//A";
  for (int step = 1; step < 1000; ++step) long_path += "/A";
  EXPECT_TRUE(ParseIndexablePath(long_path).has_value());
  EXPECT_FALSE(ParseIndexablePath(long_path + "/A").has_value());
}

TEST(PathIndex, AcceptsXmlNamesWithoutPrefix) {
  for (const char* name : {"a", "_", "A1.b-c", "ăîșț", "xqb_Query"})
    EXPECT_TRUE(IsXmlName(name)) << name;
  for (const char* name : {"", "1a", "-a", ".a", "a b", "a:b", "a/b", "a\"", "a[1]"}) {
    EXPECT_FALSE(IsXmlName(name)) << name;
  }
}

/// Random documents over a few names, with repeated names, nested matches and "name" attributes
/// that are missing, empty or shared.
class RandomTrees {
 public:
  explicit RandomTrees(unsigned seed) : random_(seed) {}

  void Fill(pugi::xml_node parent, int depth) {
    const int children = depth > 5 ? 0 : Pick(4);
    for (int i = 0; i < children; ++i) {
      pugi::xml_node child = parent.append_child(Name().c_str());
      if (const int value = Pick(static_cast<int>(kValues.size()) + 1); value > 0) {
        child.append_attribute("other").set_value("o");
        child.append_attribute("name").set_value(kValues[value - 1]);
      }
      if (Pick(3) == 0) child.append_child(pugi::node_pcdata).set_value("t");
      Fill(child, depth + 1);
    }
  }

  std::string Path() {
    std::string path = "/";
    for (int steps = 1 + Pick(4); steps > 0; --steps) {
      path += "/" + Name();
      if (const int value = Pick(static_cast<int>(kValues.size()) + 1); value > 0) {
        path += Pick(2) ? "[@name=\"" : "[@name = \"";
        path += kValues[value - 1];
        path += "\"]";
      }
    }
    return path;
  }

  int Pick(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

 private:
  std::string Name() {
    static const std::vector<std::string> names = {"PropertyBag", "PropertyBag", "A", "B", "ș"};
    return names[Pick(static_cast<int>(names.size()))];
  }

  static constexpr std::array<const char*, 3> kValues = {"x", "", "y z"};
  std::mt19937 random_;
};

void ExpectSameAsXPath(SharedDocument& document, const std::string& xpath) {
  const pugi::xml_node indexed = document.SelectFirst(xpath);
  const pugi::xml_node engine = document.Dom().select_node(xpath.c_str()).node();
  EXPECT_EQ(indexed, engine) << xpath;
}

TEST(PathIndex, SelectsTheSameFirstNodeAsXPathOnRandomDocuments) {
  RandomTrees trees(2024);
  for (int round = 0; round < 300; ++round) {
    SharedDocument document;
    pugi::xml_node root = document.Dom().append_child("PropertyBag");
    trees.Fill(root, 0);
    if (round % 2 == 1) {  // parsed documents keep names in the text buffer: another order path
      pugi::xml_document copy;
      copy.append_copy(root);
      std::ostringstream text;
      copy.save(text, "", pugi::format_raw);
      document.Dom().load_string(text.str().c_str());
    }
    for (int query = 0; query < 40; ++query) ExpectSameAsXPath(document, trees.Path());

    // Change the tree and ask again: the index must follow.
    std::vector<pugi::xml_node> elements;
    for (pugi::xml_node node = document.Dom().document_element(); node;
         node = NextInDocumentOrder(node, document.Dom())) {
      if (node.type() == pugi::node_element) elements.push_back(node);
    }
    pugi::xml_node victim = elements[trees.Pick(static_cast<int>(elements.size()))];
    if (victim.parent().type() == pugi::node_element) {
      document.Remove(victim);
    } else {
      trees.Fill(victim, 3);
      document.Changed();
    }
    for (int query = 0; query < 20; ++query) ExpectSameAsXPath(document, trees.Path());
  }
}

}  // namespace
}  // namespace brix
