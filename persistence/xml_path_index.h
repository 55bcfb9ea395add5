// Fast answers to the bag's own whole-document XPath selections, with XPath as the fallback.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace brix {

/// True for an XML element name without a namespace prefix: a letter or "_" first, then letters,
/// digits, "_", "-" or "."; characters outside ASCII are accepted anywhere.
bool IsXmlName(std::string_view name);

/// One step of an indexable path: an element name, optionally with a test of its "name"
/// attribute.
struct PathStep {
  std::string_view name;
  std::optional<std::string_view> name_attribute;
};

/// Splits "//A/B[@name="v"]/C[@name = "w"]" into its steps. Each step is a name (see
/// `IsXmlName`) with no predicate, or with `[@name="v"]` or `[@name = "v"]` where v holds no
/// double quote. `std::nullopt` for any other text and for more than 1000 steps.
std::optional<std::vector<PathStep>> ParseIndexablePath(std::string_view xpath);

/// The first node, in document order, that `xpath` selects from `context`, evaluated by the
/// XPath engine; a null node when there is none. An expression that does not compile or does
/// not give nodes raises `kErrXMLDomFailure`.
pugi::xml_node SelectFirstByXPath(pugi::xml_node context, std::string_view xpath);

/// Answers indexable whole-document paths from an index built on first use: per first step, the
/// matching elements in document order (one walk over the document); per selection of a path
/// prefix, the children of its elements grouped by name, or by name and "name" attribute, on
/// the first step that asks for that kind. Selections are kept, so a caller that holds one can
/// take a further step with one lookup instead of a new path. The index must be cleared
/// whenever the document changes; clearing starts a new generation, and selections of an older
/// generation are gone.
/// The elements a path prefix selects, in document order.
struct PathSelection;

class PathIndex {
 public:
  using Selection = PathSelection;

  explicit PathIndex(const pugi::xml_document& document);
  ~PathIndex();
  PathIndex(const PathIndex&) = delete;
  PathIndex& operator=(const PathIndex&) = delete;

  /// The first node in document order that XPath would select for `xpath`, a null node when
  /// none matches; `std::nullopt` when the path is not indexable.
  std::optional<pugi::xml_node> SelectFirst(std::string_view xpath);

  /// The selection of an indexable `xpath` (nullptr when no node matches); `std::nullopt` when
  /// the path is not indexable.
  std::optional<Selection*> Select(std::string_view xpath);

  /// The selection of the path of `selection` followed by `step` (nullptr when no node
  /// matches); `std::nullopt` when the longer path would not be indexable.
  std::optional<Selection*> Step(Selection& selection, const PathStep& step);

  /// The first node of a selection in document order.
  static pugi::xml_node First(const Selection& selection);

  /// Unique across documents; changes when the index is cleared.
  std::uint64_t Generation() const { return generation_; }

  /// Drops every selection. Every selection handed out lives in the index, so an empty index
  /// has nothing to drop and clearing it costs nothing.
  void Clear() {
    if (!first_steps_.empty()) DropSelections();
  }

 private:
  void DropSelections();
  Selection* FirstStep(const PathStep& step);
  Selection* NextStep(Selection& selection, const PathStep& step);
  void GroupChildren(Selection& selection, bool by_name_attribute);
  void SortInDocumentOrder(std::vector<pugi::xml_node>& nodes);

  const pugi::xml_document& document_;
  std::unordered_map<std::string, std::unique_ptr<Selection>> first_steps_;
  std::unordered_map<const void*, std::size_t> document_order_;
  std::uint64_t generation_;
};

}  // namespace brix
