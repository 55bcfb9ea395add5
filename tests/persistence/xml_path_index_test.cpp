// The indexed answers to whole-document paths agree with the XPath engine, node for node.
#include "persistence/xml_path_index.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "persistence/shared_xml_document.h"
#include "persistence/xml_tree_walk.h"

namespace brix {
namespace {

TEST(PathIndex, IndexesOnlyTheBagsPathFormsOverNamesWithoutPrefix) {
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
  for (const char* name : {"a", "_", "A1.b-c", "ăîșț"}) EXPECT_TRUE(IsXmlName(name)) << name;
  for (const char* name : {"", "1a", "-a", ".a", "a b", "a:b", "a/b", "a\"", "a[1]"}) {
    EXPECT_FALSE(IsXmlName(name)) << name;
  }
}

TEST(PathIndex, SelectsTheSameFirstNodeAsXPathOnRandomDocuments) {
  std::mt19937 random(2024);
  auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  // Few names and "name" values, so that names repeat, matches nest and values are missing,
  // empty or shared.
  auto name = [&] { return std::array{"PropertyBag", "PropertyBag", "A", "B", "ș"}[pick(5)]; };
  auto value = [&] { return std::array<const char*, 4>{nullptr, "x", "", "y/z]'[@"}[pick(4)]; };
  std::function<void(pugi::xml_node, int)> fill = [&](pugi::xml_node parent, int depth) {
    for (int i = depth > 5 ? 0 : pick(4); i > 0; --i) {
      pugi::xml_node child = parent.append_child(name());
      if (const char* v = value()) {
        child.append_attribute("other").set_value("o");
        child.append_attribute("name").set_value(v);
      }
      if (pick(3) == 0) child.append_child(pugi::node_pcdata).set_value("t");
      fill(child, depth + 1);
    }
  };
  auto expect_same_as_xpath = [&](SharedDocument& document) {
    std::string xpath = "/";
    for (int steps = 1 + pick(4); steps > 0; --steps) {
      xpath += std::string("/") + name();
      if (const char* v = value())
        xpath += (pick(2) ? "[@name=\"" : "[@name = \"") + std::string(v) + "\"]";
    }
    EXPECT_EQ(document.SelectFirst(xpath), document.Dom().select_node(xpath.c_str()).node())
        << xpath;
  };
  for (int round = 0; round < 300; ++round) {
    SharedDocument document;
    fill(document.Dom().append_child("PropertyBag"), 0);
    if (round % 2 == 1) {  // parsed documents keep names in the text buffer: another order path
      std::ostringstream text;
      document.Dom().save(text, "", pugi::format_raw);
      document.Dom().load_string(text.str().c_str());
    }
    for (int query = 0; query < 40; ++query) expect_same_as_xpath(document);

    // Change the tree and ask again: the index must follow.
    std::vector<pugi::xml_node> elements;
    for (pugi::xml_node node = document.Dom().document_element(); node;
         node = NextInDocumentOrder(node, document.Dom())) {
      if (node.type() == pugi::node_element) elements.push_back(node);
    }
    pugi::xml_node victim = elements[pick(static_cast<int>(elements.size()))];
    if (victim.parent().type() == pugi::node_element) {
      document.Remove(victim);
    } else {
      fill(victim, 3);
      document.Changed();
    }
    for (int query = 0; query < 20; ++query) expect_same_as_xpath(document);
  }
}

}  // namespace
}  // namespace brix
