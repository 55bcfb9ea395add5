// The persistence interface of objects that save themselves into an XML property bag.
#pragma once

#include "runtime/object.h"

namespace brix {

class XMLPropBag;

/// An object that writes and reads its own properties through an `XMLPropBag`. `TypeName()`
/// names the element the object is saved under.
class IXMLPropBag : public virtual Object {
 public:
  /// Writes the object's properties, in a fixed order, with `PropertyBag.WriteProperty`.
  virtual void WriteProperties(XMLPropBag& PropertyBag) = 0;
  /// Reads the object's properties back with `PropertyBag.ReadProperty`.
  virtual void ReadProperties(XMLPropBag& PropertyBag) = 0;

  IXMLPropBag* PersistenceInterface() final { return this; }
};

}  // namespace brix
