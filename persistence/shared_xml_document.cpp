// A DOM document shared by bags: selection, removal without recursion, positions that never dangle.
#include "persistence/shared_xml_document.h"

#include <algorithm>

namespace brix {
namespace {

bool IsInside(pugi::xml_node node, pugi::xml_node subtree) {
  for (; node; node = node.parent()) {
    if (node == subtree) return true;
  }
  return false;
}

}  // namespace

pugi::xml_node SharedDocument::SelectFirst(std::string_view xpath) {
  if (std::optional<pugi::xml_node> indexed = index_.SelectFirst(xpath)) return *indexed;
  return SelectFirstByXPath(dom_, xpath);
}

// The DOM frees a removed node at once, and destroys a subtree recursively, so held positions
// are cleared first and the subtree is taken apart leaf by leaf.
void SharedDocument::Remove(pugi::xml_node node) {
  for (NodeHold* hold : holds_) {
    if (IsInside(hold->node_, node)) hold->node_ = pugi::xml_node();
  }
  pugi::xml_node current = node;
  for (;;) {
    while (pugi::xml_node child = current.first_child()) current = child;
    if (current == node) break;
    pugi::xml_node parent = current.parent();
    parent.remove_child(current);
    current = parent;
  }
  node.parent().remove_child(node);
  Changed();
}

void NodeHold::Set(std::shared_ptr<SharedDocument> owner, pugi::xml_node node) {
  Clear();
  owner_ = std::move(owner);
  node_ = node;
  if (owner_) owner_->holds_.push_back(this);
}

void NodeHold::Clear() {
  if (owner_) std::erase(owner_->holds_, this);
  owner_.reset();
  node_ = pugi::xml_node();
}

}  // namespace brix
