// Whole-document selections of the bag's path grammar answered from a lazily built index.
#include "persistence/xml_path_index.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <functional>

#include "persistence/xml_prop_bag_errors.h"
#include "persistence/xml_tree_walk.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr unsigned char kNameStart = 1;
constexpr unsigned char kNameChar = 2;

// The class of each byte in a name: table lookups keep the test of every name cheap.
constexpr std::array<unsigned char, 256> kNameCharClasses = [] {
  std::array<unsigned char, 256> classes{};
  for (int c = 0; c < 256; ++c) {
    const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
    if (letter || c == '_' || c >= 0x80) {
      classes[c] = kNameStart | kNameChar;
    } else if ((c >= '0' && c <= '9') || c == '-' || c == '.') {
      classes[c] = kNameChar;
    }
  }
  return classes;
}();

bool IsNameStart(unsigned char c) { return kNameCharClasses[c] & kNameStart; }

bool IsNameChar(unsigned char c) { return kNameCharClasses[c] & kNameChar; }

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

/// True when the NUL-terminated `text` (a name or value kept by the DOM) equals `view`; `text`
/// is read only as far as it matches, without measuring it first.
bool EqualsCString(std::string_view view, const char* text) {
  for (const char c : view) {
    if (*text == '\0' || *text != c) return false;
    ++text;
  }
  return *text == '\0';
}

bool IsIndexable(const PathStep& step) {
  return IsXmlName(step.name) &&
         (!step.name_attribute || step.name_attribute->find('"') == std::string_view::npos);
}

// Generations are unique across all documents, so a selection kept from one document never
// passes for a selection of another.
std::uint64_t NextGeneration() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

/// A key under which a child is grouped: its name, or its name and "name" attribute.
struct ChildKey {
  std::string_view name;
  std::string_view name_attribute;
  bool has_name_attribute = false;
  bool operator==(const ChildKey&) const = default;
};

// Siblings grouped by "name" attribute mostly share their element name, so the attribute alone
// spreads them.
struct ChildKeyHash {
  std::size_t operator()(const ChildKey& key) const {
    return std::hash<std::string_view>{}(key.has_name_attribute ? key.name_attribute : key.name);
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

/// Collects the elements anywhere in the document that one step matches, in document order,
/// and notes whether one of them lies inside another. The DOM's own walk keeps the calls per
/// node few: the name is asked first, the type only of a node whose name matches.
class StepMatcher : public pugi::xml_tree_walker {
 public:
  explicit StepMatcher(const PathStep& step) : step_(step) {}

  bool for_each(pugi::xml_node& node) override {
    if (!EqualsCString(step_.name, node.name()) || node.type() != pugi::node_element) return true;
    if (step_.name_attribute) {
      pugi::xml_attribute attribute = node.attribute("name");
      if (!attribute || !EqualsCString(*step_.name_attribute, attribute.value())) return true;
    }
    while (!open_depths_.empty() && open_depths_.back() >= depth()) open_depths_.pop_back();
    may_nest_ = may_nest_ || !open_depths_.empty();
    open_depths_.push_back(depth());
    matches_.push_back(node);
    return true;
  }

  std::vector<pugi::xml_node>& Matches() { return matches_; }
  bool MayNest() const { return may_nest_; }

 private:
  const PathStep& step_;
  std::vector<pugi::xml_node> matches_;
  std::vector<int> open_depths_;  // depths of the matches the walk is inside of
  bool may_nest_ = false;
};

}  // namespace

struct PathSelection {
  using Groups = std::unordered_map<ChildKey, std::unique_ptr<PathSelection>, ChildKeyHash>;

  std::vector<pugi::xml_node> nodes;  // in document order, never empty
  std::size_t steps = 1;              // of the path that selects these nodes
  bool may_nest = false;              // some node may lie inside another
  bool grouped_by_name = false;
  bool grouped_by_name_attribute = false;
  // The groups of children, made on the first step from this selection: most selections are
  // the last step of their path.
  std::unique_ptr<Groups> children;
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

PathIndex::PathIndex(const pugi::xml_document& document)
    : document_(document), generation_(NextGeneration()) {}

PathIndex::~PathIndex() = default;

void PathIndex::DropSelections() {
  generation_ = NextGeneration();
  first_steps_.clear();
  document_order_.clear();
}

std::optional<pugi::xml_node> PathIndex::SelectFirst(std::string_view xpath) {
  const std::optional<Selection*> selection = Select(xpath);
  if (!selection) return std::nullopt;
  return *selection ? First(**selection) : pugi::xml_node();
}

std::optional<PathIndex::Selection*> PathIndex::Select(std::string_view xpath) {
  const std::optional<std::vector<PathStep>> steps = ParseIndexablePath(xpath);
  if (!steps) return std::nullopt;
  Selection* selection = FirstStep(steps->front());
  for (std::size_t i = 1; i < steps->size() && selection; ++i) {
    selection = NextStep(*selection, (*steps)[i]);
  }
  return selection;
}

std::optional<PathIndex::Selection*> PathIndex::Step(Selection& selection, const PathStep& step) {
  if (selection.steps >= kMaxIndexedSteps || !IsIndexable(step)) return std::nullopt;
  return NextStep(selection, step);
}

pugi::xml_node PathIndex::First(const Selection& selection) { return selection.nodes.front(); }

// "//Name" matches elements anywhere, so the first step walks the whole document once per
// distinct step.
PathIndex::Selection* PathIndex::FirstStep(const PathStep& step) {
  std::unique_ptr<Selection>& slot = first_steps_[FirstStepKey(step)];
  if (!slot) {
    StepMatcher matcher(step);
    pugi::xml_node(document_).traverse(matcher);
    slot = std::make_unique<Selection>();
    slot->nodes = std::move(matcher.Matches());
    slot->may_nest = matcher.MayNest();
  }
  return slot->nodes.empty() ? nullptr : slot.get();
}

PathIndex::Selection* PathIndex::NextStep(Selection& selection, const PathStep& step) {
  const bool by_name_attribute = step.name_attribute.has_value();
  if (!(by_name_attribute ? selection.grouped_by_name_attribute : selection.grouped_by_name)) {
    GroupChildren(selection, by_name_attribute);
  }
  auto found = selection.children->find(KeyOf(step));
  return found == selection.children->end() ? nullptr : found->second.get();
}

// Children of elements that do not nest come out in document order when taken parent by parent;
// when parents nest, the groups are sorted. Children are grouped by name, or by name and "name"
// attribute, as steps ask for them: a step with a name test never needs the groups by name.
void PathIndex::GroupChildren(Selection& selection, bool by_name_attribute) {
  if (!selection.children) selection.children = std::make_unique<Selection::Groups>();
  std::vector<Selection*> added;
  auto add = [&](const ChildKey& key, pugi::xml_node child) {
    std::unique_ptr<Selection>& group = (*selection.children)[key];
    if (!group) {
      group = std::make_unique<Selection>();
      group->steps = selection.steps + 1;
      group->may_nest = selection.may_nest;
      added.push_back(group.get());
    }
    group->nodes.push_back(child);
  };
  for (pugi::xml_node parent : selection.nodes) {
    for (pugi::xml_node child = parent.first_child(); child; child = child.next_sibling()) {
      if (child.type() != pugi::node_element) continue;
      if (!by_name_attribute) {
        add({child.name(), {}, false}, child);
      } else if (pugi::xml_attribute name = child.attribute("name")) {
        add({child.name(), name.value(), true}, child);
      }
    }
  }
  if (selection.may_nest) {
    for (Selection* group : added) SortInDocumentOrder(group->nodes);
  }
  (by_name_attribute ? selection.grouped_by_name_attribute : selection.grouped_by_name) = true;
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
