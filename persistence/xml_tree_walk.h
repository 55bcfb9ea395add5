// Walks a DOM subtree in document order without recursion, so depth is bounded by memory only.
#pragma once

#include <pugixml.hpp>

namespace brix {

/// The node after `node` in document order within the subtree of `root`, or a null node at the
/// end. `leave` is called with each node whose children have all been visited, `root` included.
template <class Leave>
pugi::xml_node NextInDocumentOrder(pugi::xml_node node, pugi::xml_node root, Leave&& leave) {
  if (pugi::xml_node child = node.first_child()) return child;
  while (node != root) {
    if (pugi::xml_node sibling = node.next_sibling()) return sibling;
    node = node.parent();
    leave(node);
  }
  return pugi::xml_node();
}

inline pugi::xml_node NextInDocumentOrder(pugi::xml_node node, pugi::xml_node root) {
  return NextInDocumentOrder(node, root, [](pugi::xml_node) {});
}

}  // namespace brix
