// A DOM document shared by a bag and the nested bags positioned in it.
#pragma once

#include <cstdint>
#include <memory>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "persistence/xml_path_index.h"

namespace brix {

class NodeHold;

/// The document of one or more bags, with its selection index. Every change to the tree goes
/// through `Changed` or `Remove`, which drop the index.
class SharedDocument {
 public:
  SharedDocument() = default;
  SharedDocument(const SharedDocument&) = delete;
  SharedDocument& operator=(const SharedDocument&) = delete;

  pugi::xml_document& Dom() { return dom_; }
  const pugi::xml_document& Dom() const { return dom_; }

  /// The first node in document order that the whole-document `xpath` selects, or a null node.
  /// The bag's own path forms are answered from the index, anything else by the XPath engine.
  pugi::xml_node SelectFirst(std::string_view xpath);

  /// The selection index of the document, for callers that keep selections between steps.
  PathIndex& Index() { return index_; }

  /// Records a change of the tree.
  void Changed() {
    index_.Clear();
    ++version_;
  }

  /// Counts the changes of the tree: what was read from it holds while the version stays.
  std::uint64_t Version() const { return version_; }

  /// Removes `node` and its subtree, deepest nodes first so that no recursion is needed. A bag
  /// positioned inside the removed subtree loses its position.
  void Remove(pugi::xml_node node);

  /// The text the document was read from, when its reader keeps it for the document's life
  /// (`XMLPropBag::SetContentsForReading`); empty otherwise. It tells the lines of elements.
  std::string_view SourceText() const { return source_text_; }
  /// Keeps `parsed`, the text the parser read; `converted` holds it when it was converted.
  void KeepSourceText(std::string_view parsed, std::string converted) {
    converted_source_ = std::move(converted);
    source_text_ = converted_source_.empty() ? parsed : std::string_view(converted_source_);
  }

 private:
  friend class NodeHold;

  pugi::xml_document dom_;
  PathIndex index_{dom_};
  std::vector<NodeHold*> holds_;
  std::uint64_t version_ = 0;
  std::string_view source_text_;
  std::string converted_source_;
};

/// A bag's current node. It keeps the node's document alive (setting a bag's contents replaces
/// its document, not the node) and is cleared when the node is removed from the tree.
class NodeHold {
 public:
  NodeHold() = default;
  ~NodeHold() { Clear(); }
  NodeHold(const NodeHold&) = delete;
  NodeHold& operator=(const NodeHold&) = delete;

  void Set(std::shared_ptr<SharedDocument> owner, pugi::xml_node node);
  void Clear();

  /// The node, or a null node when there is none.
  pugi::xml_node Node() const { return node_; }
  /// The document the node belongs to (kept even after the node was removed).
  const std::shared_ptr<SharedDocument>& Owner() const { return owner_; }

 private:
  friend class SharedDocument;

  std::shared_ptr<SharedDocument> owner_;
  pugi::xml_node node_;
};

}  // namespace brix
