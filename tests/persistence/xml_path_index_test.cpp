// The indexed answers to whole-document paths agree with the XPath engine, node for node.
#include "persistence/xml_path_index.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <optional>
#include <random>
#include <sstream>
#include <string>

#include "persistence/shared_xml_document.h"

namespace brix {
namespace {

// Paths in the bag's own forms and in forms close to them that the index must leave to XPath:
// other attributes, other quotes, descendant steps, positions.
TEST(PathIndex, SelectsTheSameFirstNodeAsXPathOnRandomDocuments) {
  std::mt19937 random(2024);
  auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  // Few names and "name" values, so that names repeat, matches nest and values are missing,
  // empty or shared.
  auto name = [&] { return std::array{"PropertyBag", "PropertyBag", "A", "B", "ș"}[pick(5)]; };
  auto value = [&] { return std::array<const char*, 4>{nullptr, "x", "", "y/z][@"}[pick(4)]; };
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
    static const char* const kTests[][2] = {{"[@name=\"", "\"]"},  {"[@name = \"", "\"]"},
                                            {"[@name='", "']"},    {"[@other=\"", "\"]"},
                                            {"[@name =\"", "\"]"}, {"[1][@name=\"", "\"]"}};
    std::string xpath;
    bool bag_form = true;  // "//" first, then child steps with the bag's two "name" tests
    for (int steps = 1 + pick(4); steps > 0; --steps) {
      const bool descendant = xpath.empty() || pick(8) == 0;
      bag_form = bag_form && (xpath.empty() || !descendant);
      xpath += (descendant ? "//" : "/") + std::string(name());
      const int test = pick(4) ? pick(2) : pick(6);
      bag_form = bag_form && test < 2;
      if (const char* v = value()) xpath += kTests[test][0] + std::string(v) + kTests[test][1];
    }
    const pugi::xml_node expected = document.Dom().select_node(xpath.c_str()).node();
    EXPECT_EQ(document.SelectFirst(xpath), expected) << xpath;
    if (bag_form) {  // answered by the index itself, not by falling back to XPath
      const std::optional<PathSelection*> selection = document.Index().Select(xpath);
      ASSERT_TRUE(selection.has_value()) << "not indexed: " << xpath;
      EXPECT_EQ(*selection ? PathIndex::First(**selection) : pugi::xml_node(), expected) << xpath;
    }
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
    const pugi::xpath_node_set elements = document.Dom().select_nodes("//*");
    pugi::xml_node victim = elements[pick(static_cast<int>(elements.size()))].node();
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
