// Base of every object a variant can refer to: persistable model objects and host objects alike.
#pragma once

#include <optional>
#include <string>

namespace brix {

class Variant;
class IXMLPropBag;

/// An object that a `Variant` can hold by shared reference.
class Object {
 public:
  virtual ~Object() = default;

  /// The object's class name as the platform reports it (the element name it is saved under).
  virtual std::string TypeName() const = 0;

  /// The value of the object's default member, used when the object is compared or converted
  /// to a simple value; `std::nullopt` when it has none (conversions then raise error 438).
  virtual std::optional<Variant> DefaultValue() const;
  /// The object's persistence interface, or nullptr when it saves nothing. Answers what a cast
  /// would, at the cost of one virtual call.
  virtual IXMLPropBag* PersistenceInterface() { return nullptr; }
};

}  // namespace brix
