// Whole-document selections of the bag's path grammar answered from a lazily built index.
#include "persistence/xml_path_index.h"

#include <algorithm>
#include <functional>

#include "persistence/xml_prop_bag_errors.h"
#include "persistence/xml_tree_walk.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

bool IsAsciiLetter(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

bool IsNameStart(unsigned char c) { return IsAsciiLetter(c) || c == '_' || c >= 0x80; }

bool IsNameChar(unsigned char c) {
  return IsNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

/// Reads a name at the front of `rest` and removes it; an empty view when there is none.
std::string_view TakeName(std::string_view& rest) {
  if (rest.empty() || !IsNameStart(static_cast<unsigned char>(rest.front()))) return {};
  std::size_t length = 1;
  while (length < rest.size() && IsNameChar(static_cast<unsigned char>(rest[length]))) ++length;
  std::string_view name = rest.substr(0, length);
  rest.remove_prefix(length);
  return name;
}

bool TakePrefix(std::string_view& rest, std::string_view prefix) {
  if (rest.substr(0, prefix.size()) != prefix) return false;
  rest.remove_prefix(prefix.size());
  return true;
}

/// Reads `[@name="v"]` or `[@name = "v"]` and returns v.
std::optional<std::string_view> TakeNamePredicate(std::string_view& rest) {
  if (!TakePrefix(rest, "[@name=\"") && !TakePrefix(rest, "[@name = \"")) return std::nullopt;
  const std::size_t quote = rest.find('"');
  if (quote == std::string_view::npos) return std::nullopt;
  std::string_view value = rest.substr(0, quote);
  rest.remove_prefix(quote + 1);
  if (!TakePrefix(rest, "]")) return std::nullopt;
  return value;
}

// Longer paths go to the XPath engine, which refuses them beyond its own nesting limit; this
// also bounds the depth of the selection tree.
constexpr std::size_t kMaxIndexedSteps = 1000;

bool Matches(pugi::xml_node node, const PathStep& step) {
  if (node.type() != pugi::node_element || step.name != node.name()) return false;
  if (!step.name_attribute) return true;
  pugi::xml_attribute attribute = node.attribute("name");
  return attribute && *step.name_attribute == attribute.value();
}

/// A key under which a child is grouped: its name, or its name and "name" attribute.
struct ChildKey {
  std::string_view name;
  std::string_view name_attribute;
  bool has_name_attribute = false;
  bool operator==(const ChildKey&) const = default;
};

struct ChildKeyHash {
  std::size_t operator()(const ChildKey& key) const {
    const std::size_t name = std::hash<std::string_view>{}(key.name);
    if (!key.has_name_attribute) return name;
    return name ^ (std::hash<std::string_view>{}(key.name_attribute) * 31 + 1);
  }
};

ChildKey KeyOf(const PathStep& step) {
  return {step.name, step.name_attribute.value_or(std::string_view{}),
          step.name_attribute.has_value()};
}

std::string FirstStepKey(const PathStep& step) {
  std::string key(step.name);
  if (step.name_attribute) {
    key += '\0';
    key += *step.name_attribute;
  }
  return key;
}

}  // namespace

struct PathIndex::Selection {
  std::vector<pugi::xml_node> nodes;  // in document order
  bool may_nest = false;              // some node may lie inside another
  bool grouped = false;
  std::unordered_map<ChildKey, std::unique_ptr<Selection>, ChildKeyHash> children;
};

bool IsXmlName(std::string_view name) {
  std::string_view rest = name;
  return !TakeName(rest).empty() && rest.empty();
}

std::optional<std::vector<PathStep>> ParseIndexablePath(std::string_view xpath) {
  std::string_view rest = xpath;
  if (!TakePrefix(rest, "//")) return std::nullopt;
  std::vector<PathStep> steps;
  do {
    PathStep step;
    step.name = TakeName(rest);
    if (step.name.empty()) return std::nullopt;
    if (!rest.empty() && rest.front() == '[') {
      step.name_attribute = TakeNamePredicate(rest);
      if (!step.name_attribute) return std::nullopt;
    }
    steps.push_back(step);
  } while (steps.size() < kMaxIndexedSteps && TakePrefix(rest, "/"));
  if (!rest.empty()) return std::nullopt;
  return steps;
}

pugi::xml_node SelectFirstByXPath(pugi::xml_node context, std::string_view xpath) {
  const std::string expression(xpath);
  if (expression.find('\0') != std::string::npos) {
    RaiseXMLPropBagError(kErrXMLDomFailure,
                         "The XPath expression holds the character U+0000 and cannot be read.");
  }
  pugi::xpath_node found;
  try {
    found = pugi::xpath_query(expression.c_str()).evaluate_node(context);
  } catch (const pugi::xpath_exception& error) {
    RaiseXMLPropBagError(kErrXMLDomFailure, "The XPath expression \"" + expression +
                                                "\" is invalid: " + error.what() + ".");
  }
  if (!found) return {};
  if (found.node().type() != pugi::node_element) RaiseRuntimeError(kErrTypeMismatch);
  return found.node();
}

PathIndex::PathIndex(const pugi::xml_document& document) : document_(document) {}

PathIndex::~PathIndex() = default;

void PathIndex::Clear() {
  first_steps_.clear();
  document_order_.clear();
}

std::optional<pugi::xml_node> PathIndex::SelectFirst(std::string_view xpath) {
  const std::optional<std::vector<PathStep>> steps = ParseIndexablePath(xpath);
  if (!steps) return std::nullopt;
  Selection* selection = FirstStep(steps->front());
  for (std::size_t i = 1; i < steps->size() && selection; ++i) {
    selection = NextStep(*selection, (*steps)[i]);
  }
  if (!selection || selection->nodes.empty()) return pugi::xml_node();
  return selection->nodes.front();
}

// "//Name" matches elements anywhere, so the first step scans the whole document once per
// distinct step. The walk counts the matching elements it is inside of, which tells whether
// matches nest (then later steps must sort what they collect).
PathIndex::Selection* PathIndex::FirstStep(const PathStep& step) {
  std::unique_ptr<Selection>& slot = first_steps_[FirstStepKey(step)];
  if (slot) return slot.get();
  slot = std::make_unique<Selection>();
  std::size_t open_matches = 0;
  auto leave = [&](pugi::xml_node node) { open_matches -= Matches(node, step); };
  for (pugi::xml_node node = document_.first_child(); node;
       node = NextInDocumentOrder(node, document_, leave)) {
    if (!Matches(node, step)) continue;
    slot->may_nest = slot->may_nest || open_matches > 0;
    slot->nodes.push_back(node);
    open_matches += static_cast<bool>(node.first_child());
  }
  return slot.get();
}

PathIndex::Selection* PathIndex::NextStep(Selection& selection, const PathStep& step) {
  if (!selection.grouped) GroupChildren(selection);
  auto found = selection.children.find(KeyOf(step));
  return found == selection.children.end() ? nullptr : found->second.get();
}

// Children of elements that do not nest come out in document order when taken parent by parent;
// when parents nest, the groups are sorted.
void PathIndex::GroupChildren(Selection& selection) {
  auto add = [&selection](const ChildKey& key, pugi::xml_node child) {
    std::unique_ptr<Selection>& group = selection.children[key];
    if (!group) {
      group = std::make_unique<Selection>();
      group->may_nest = selection.may_nest;
    }
    group->nodes.push_back(child);
  };
  for (pugi::xml_node parent : selection.nodes) {
    for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
      if (child.type() != pugi::node_element) continue;
      add({child.name(), {}, false}, child);
      if (pugi::xml_attribute name = child.attribute("name")) {
        add({child.name(), name.value(), true}, child);
      }
    }
  }
  if (selection.may_nest) {
    for (auto& [key, group] : selection.children) SortInDocumentOrder(group->nodes);
  }
  selection.grouped = true;
}

void PathIndex::SortInDocumentOrder(std::vector<pugi::xml_node>& nodes) {
  if (document_order_.empty()) {
    std::size_t position = 0;
    for (pugi::xml_node node = document_.first_child(); node;
         node = NextInDocumentOrder(node, document_)) {
      document_order_.emplace(node.internal_object(), position++);
    }
  }
  std::sort(nodes.begin(), nodes.end(), [this](pugi::xml_node a, pugi::xml_node b) {
    return document_order_.at(a.internal_object()) < document_order_.at(b.internal_object());
  });
}

}  // namespace brix
