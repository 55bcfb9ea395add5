// The runtime's property bag: named variant values carried through a byte array, and the
// persistence of objects that write and read themselves through a bag.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

class PropertyBag;

/// An object that persists itself through a property bag: `WriteProperties` writes its values,
/// `ReadProperties` reads them back into a new instance. `PersistentClassName` names the class
/// in the bytes; the class must be registered (`RegisterPersistableClass`) to be read back.
class Persistable : public virtual Object {
 public:
  virtual std::string PersistentClassName() const = 0;
  virtual void WriteProperties(PropertyBag& PropBag) = 0;
  virtual void ReadProperties(PropertyBag& PropBag) = 0;
};

/// Makes the class `class_name` readable from a bag: `create` gives a new, empty instance.
/// Registering a name again replaces its factory.
void RegisterPersistableClass(std::string class_name,
                              std::function<std::shared_ptr<Persistable>()> create);

/// What one read from a bag may build (`SetContents`, or one `ReadProperty` with the objects it
/// reads in turn): every value, array item and entry counts one value, and the memory counts
/// each value's own size, its text or bytes, and each entry's bookkeeping. Both are checked
/// before anything is allocated, so a few bytes that claim millions of values are refused at
/// once (error 5, naming the bound).
struct PropertyBagLimits {
  std::int64_t MaxValues = 4'000'000;
  std::int64_t MaxBytes = std::int64_t{256} << 20;
};

class DecodeBudget;

/// A keyed store of named variant values. Names are matched without regard to letter case. Every
/// kind of value is carried unchanged: Empty, Null, Integer, Long, Single, Double, Currency,
/// Date, String, Boolean, Byte, error values, byte arrays, variant arrays (with their lower
/// bound, nested arrays included), Nothing and persistable objects (written through their
/// `WriteProperties` into a nested bag, read back as a new instance of their registered class).
///
/// `Contents` is the bag as bytes in the format of docs/property_bag_format.md; `SetContents`
/// checks every length and count against the bytes present and refuses damaged or hostile bytes
/// with error 5 and a description that says what is wrong and at which byte.
class PropertyBag : public Object {
 public:
  static std::shared_ptr<PropertyBag> Create();
  PropertyBag(const PropertyBag&) = delete;
  PropertyBag& operator=(const PropertyBag&) = delete;
  ~PropertyBag() override;

  std::string TypeName() const override { return "PropertyBag"; }

  /// Stores `Value` under `DataName`, replacing what the name held. A value equal to
  /// `DefaultValue` (same kind and equal by the variant comparison) is not stored, and removes
  /// what the name held, so that reading gives that default back. An object that is not
  /// persistable raises 330; an array holding one too.
  void WriteProperty(std::string_view DataName, const Variant& Value,
                     const Variant& DefaultValue = Variant::Missing());

  /// The value stored under `DataName`, or `DefaultValue` when none is. Without a default and
  /// without a stored value raises 327 "Data value named 'DataName' not found".
  Variant ReadProperty(std::string_view DataName,
                       const Variant& DefaultValue = Variant::Missing()) const;

  /// The names stored, in the order they were first written.
  std::vector<std::string> Names() const;

  /// The bag as bytes.
  ByteArray Contents() const;
  /// Replaces the bag by the one `bytes` hold; damaged bytes raise 5 and leave the bag as it was.
  void SetContents(const ByteArray& bytes);

  /// The bounds of each read from this bag (see `PropertyBagLimits` for the defaults).
  const PropertyBagLimits& DecodeLimits() const { return limits_; }
  void SetDecodeLimits(const PropertyBagLimits& value) { limits_ = value; }

 private:
  friend class DecodeBudget;

  PropertyBag();

  struct Entries;
  std::unique_ptr<Entries> entries_;
  PropertyBagLimits limits_;
  // Set while an object read from another bag reads itself from this one: its reads count
  // against that read's budget.
  DecodeBudget* lent_budget_ = nullptr;
};

}  // namespace brix
