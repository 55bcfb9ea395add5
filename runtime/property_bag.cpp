// The property bag: each value is encoded when written (objects persist themselves then) and kept
// as bytes, so that Contents is a concatenation and SetContents one checked walk over the bytes.
#include "runtime/property_bag.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <map>
#include <mutex>
#include <optional>

#include "runtime/error.h"
#include "runtime/error_numbers.h"
#include "runtime/keyed_collection.h"

namespace brix {
namespace {

constexpr std::string_view kMagic = "BXPB";
constexpr std::uint8_t kFormatVersion = 1;
constexpr int kMaxDepth = 64;  // nested objects and arrays

constexpr std::int32_t kErrDataValueNotFound = 327;
constexpr std::int32_t kErrNotPersistable = 330;
constexpr std::int32_t kErrCannotCreateObject = 429;
constexpr std::string_view kSource = "PropertyBag";

// Value tags: the variant type codes, and these for the kinds that have none of their own.
enum Tag : std::uint8_t {
  kEmpty = 0,
  kNull = 1,
  kInteger = 2,
  kLong = 3,
  kSingle = 4,
  kDouble = 5,
  kCurrency = 6,
  kDate = 7,
  kString = 8,
  kObject = 9,
  kError = 10,
  kBoolean = 11,
  kByte = 17,
  kByteArray = 0x91,
  kVariantArray = 0x8C,
};

std::map<std::string, std::function<std::shared_ptr<Persistable>()>>& Registry() {
  static std::map<std::string, std::function<std::shared_ptr<Persistable>()>> registry;
  return registry;
}
std::mutex& RegistryMutex() {
  static std::mutex mutex;
  return mutex;
}

// ---- writing ----

void PutVarint(std::string& out, std::uint64_t value) {
  while (value >= 0x80) {
    out += static_cast<char>(value | 0x80);
    value >>= 7;
  }
  out += static_cast<char>(value);
}

template <class T>
void PutFixed(std::string& out, T value) {
  char bytes[sizeof(T)];
  std::memcpy(bytes, &value, sizeof(T));
  if constexpr (std::endian::native == std::endian::big) std::reverse(bytes, bytes + sizeof(T));
  out.append(bytes, sizeof(T));
}

void PutString(std::string& out, std::string_view text) {
  PutVarint(out, text.size());
  out += text;
}

}  // namespace

/// The stored entries: names as written, values as encoded bytes, looked up by folded name.
// The bag's entries: each name as first written with its encoded value, in writing order, keyed
// by the name (letter case ignored).
struct PropertyBag::Entries {
  KeyedCollection<std::pair<std::string, std::string>> items;

  void Put(std::string_view name, std::string value) {
    if (auto* held = items.FindKey(name)) {
      held->second = std::move(value);
    } else {
      items.Add({std::string(name), std::move(value)}, name);
    }
  }
  void Remove(std::string_view name) {
    if (items.FindKey(name)) items.Remove(Variant(name));
  }
  const std::string* Find(std::string_view name) const {
    const auto* held = std::as_const(items).FindKey(name);
    return held ? &held->second : nullptr;
  }
  void Encode(std::string& out) const {
    PutVarint(out, static_cast<std::size_t>(items.Count()));
    for (const auto& [name, value] : items) {
      PutString(out, name);
      out += value;
    }
  }
};

namespace {

void EncodeValue(std::string& out, const Variant& value, int depth);

void EncodeObject(std::string& out, const Variant& value, int depth) {
  out += static_cast<char>(kObject);
  const Variant::ObjectRef& object = value.AsObject();
  if (!object) {
    PutString(out, "");  // Nothing
    return;
  }
  auto persistable = std::dynamic_pointer_cast<Persistable>(object);
  if (!persistable) {
    Raise(kErrNotPersistable, std::string(kSource),
          "Illegal parameter. Can't write object because it does not support persistence.");
  }
  if (depth >= kMaxDepth)
    Raise(kErrInvalidProcedureCall, std::string(kSource), "Objects nest too deeply.");
  const std::string class_name = persistable->PersistentClassName();
  if (class_name.empty())
    Raise(kErrNotPersistable, std::string(kSource), "A persistable class needs a name.");
  PutString(out, class_name);
  auto nested = PropertyBag::Create();
  persistable->WriteProperties(*nested);
  const ByteArray bytes = nested->Contents();
  out.append(reinterpret_cast<const char*>(bytes.data()) + kMagic.size() + 1,
             bytes.size() - kMagic.size() - 1);
}

void EncodeValue(std::string& out, const Variant& value, int depth) {
  if (value.IsByteArray()) {
    out += static_cast<char>(kByteArray);
    const ByteArray& bytes = value.AsByteArray();
    PutString(out, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    return;
  }
  if (value.IsArray()) {
    if (depth >= kMaxDepth)
      Raise(kErrInvalidProcedureCall, std::string(kSource), "Arrays nest too deeply.");
    const VariantArray& array = value.AsVariantArray();
    out += static_cast<char>(kVariantArray);
    PutFixed(out, array.lower_bound);
    PutVarint(out, array.items.size());
    for (const Variant& item : array.items) EncodeValue(out, item, depth + 1);
    return;
  }
  switch (value.Type()) {
    case vbEmpty:
      out += static_cast<char>(kEmpty);
      return;
    case vbNull:
      out += static_cast<char>(kNull);
      return;
    case vbInteger:
      out += static_cast<char>(kInteger);
      PutFixed(out, value.AsInteger());
      return;
    case vbLong:
      out += static_cast<char>(kLong);
      PutFixed(out, value.AsLong());
      return;
    case vbSingle:
      out += static_cast<char>(kSingle);
      PutFixed(out, value.AsSingle());
      return;
    case vbDouble:
      out += static_cast<char>(kDouble);
      PutFixed(out, value.AsDouble());
      return;
    case vbCurrency:
      out += static_cast<char>(kCurrency);
      PutFixed(out, value.AsCurrency().scaled);
      return;
    case vbDate:
      out += static_cast<char>(kDate);
      PutFixed(out, value.AsDate().serial);
      return;
    case vbString:
      out += static_cast<char>(kString);
      PutString(out, value.AsString());
      return;
    case vbError:
      out += static_cast<char>(kError);
      PutFixed(out, value.AsError().code);
      return;
    case vbBoolean:
      out += static_cast<char>(kBoolean);
      out += static_cast<char>(value.AsBoolean());
      return;
    case vbByte:
      out += static_cast<char>(kByte);
      out += static_cast<char>(value.AsByte());
      return;
    default:
      EncodeObject(out, value, depth);
      return;
  }
}

// ---- reading ----

/// Reads the bytes front to back; every read is checked against what is left.
class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  std::size_t Position() const { return at_; }
  bool AtEnd() const { return at_ == bytes_.size(); }
  std::size_t Left() const { return bytes_.size() - at_; }

  [[noreturn]] void Damaged(const std::string& what) const {
    Raise(
        kErrInvalidProcedureCall, std::string(kSource),
        "The property bag's bytes are damaged: " + what + " at byte " + std::to_string(at_) + ".");
  }
  std::uint8_t Byte() {
    if (AtEnd()) Damaged("they end early");
    return static_cast<std::uint8_t>(bytes_[at_++]);
  }
  std::uint64_t Varint() {
    std::uint64_t value = 0;
    for (int shift = 0; shift < 64; shift += 7) {
      const std::uint8_t byte = Byte();
      value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
      if (!(byte & 0x80)) return value;
    }
    Damaged("a length runs too long");
  }
  /// A count of items that each take at least `least` bytes: never more than the bytes left allow.
  std::size_t Count(std::size_t least) {
    const std::uint64_t count = Varint();
    if (count > Left() / least) Damaged("a count exceeds the bytes that follow");
    return static_cast<std::size_t>(count);
  }
  std::string_view Bytes(std::size_t size) {
    if (size > Left()) Damaged("a length exceeds the bytes that follow");
    const std::string_view part = bytes_.substr(at_, size);
    at_ += size;
    return part;
  }
  std::string_view String() { return Bytes(Count(1)); }
  std::string_view Slice(std::size_t from, std::size_t to) const {
    return bytes_.substr(from, to - from);
  }
  template <class T>
  T Fixed() {
    char bytes[sizeof(T)];
    std::memcpy(bytes, Bytes(sizeof(T)).data(), sizeof(T));
    if constexpr (std::endian::native == std::endian::big) std::reverse(bytes, bytes + sizeof(T));
    T value;
    std::memcpy(&value, bytes, sizeof(T));
    return value;
  }

 private:
  std::string_view bytes_;
  std::size_t at_ = 0;
};

}  // namespace

/// What one read has built so far, against its bag's limits.
class DecodeBudget {
 public:
  explicit DecodeBudget(const PropertyBagLimits& limits) : limits_(limits) {}

  /// The budget for a read from `bag`: the one lent to it, else `own` (a fresh one).
  static DecodeBudget& For(const PropertyBag& bag, std::optional<DecodeBudget>& own) {
    if (bag.lent_budget_) return *bag.lent_budget_;
    return own.emplace(bag.limits_);
  }

  /// Counts `values` more values taking `bytes` more memory; past a bound raises 5.
  void Take(std::uint64_t values, std::uint64_t bytes) {
    if (values > Left(limits_.MaxValues, values_)) {
      Refuse(std::to_string(limits_.MaxValues) + " values");
    }
    if (bytes > Left(limits_.MaxBytes, bytes_)) {
      Refuse(std::to_string(limits_.MaxBytes) + " bytes of memory");
    }
    values_ += values;
    bytes_ += bytes;
  }

  /// Lends this budget to `bag` while the returned guard lives.
  struct Loan {
    PropertyBag& bag;
    ~Loan() { bag.lent_budget_ = nullptr; }
  };
  Loan LendTo(PropertyBag& bag) {
    bag.lent_budget_ = this;
    return Loan{bag};
  }

 private:
  static std::uint64_t Left(std::int64_t bound, std::uint64_t used) {
    const auto limit = static_cast<std::uint64_t>(std::max<std::int64_t>(bound, 0));
    return limit > used ? limit - used : 0;
  }
  [[noreturn]] static void Refuse(const std::string& bound) {
    Raise(kErrInvalidProcedureCall, std::string(kSource),
          "Reading the property bag would build more than " + bound +
              "; SetDecodeLimits raises the bound.");
  }

  PropertyBagLimits limits_;
  std::uint64_t values_ = 0;
  std::uint64_t bytes_ = 0;
};

namespace {

/// The memory a stored entry takes beside its name and value bytes: the pair of strings, the
/// index node and its folded key.
constexpr std::uint64_t kEntryOverhead = 128;

void SkipValue(Reader& in, int depth);

void SkipEntries(Reader& in, int depth) {
  for (std::size_t n = in.Count(2); n > 0; --n) {
    in.String();
    SkipValue(in, depth);
  }
}

/// Checks one value's bytes without building it.
void SkipValue(Reader& in, int depth) {
  if (depth > kMaxDepth) in.Damaged("values nest too deeply");
  switch (in.Byte()) {
    case kEmpty:
    case kNull:
      return;
    case kInteger:
      in.Bytes(2);
      return;
    case kLong:
    case kSingle:
    case kError:
      in.Bytes(4);
      return;
    case kDouble:
    case kCurrency:
    case kDate:
      in.Bytes(8);
      return;
    case kBoolean:
    case kByte:
      in.Bytes(1);
      return;
    case kString:
    case kByteArray:
      in.String();
      return;
    case kVariantArray:
      in.Bytes(4);
      for (std::size_t n = in.Count(1); n > 0; --n) SkipValue(in, depth + 1);
      return;
    case kObject:
      if (!in.String().empty()) SkipEntries(in, depth + 1);
      return;
    default:
      in.Damaged("an unknown kind of value");
  }
}

ByteArray BagBytes(std::string_view entries) {
  ByteArray bytes(kMagic.begin(), kMagic.end());
  bytes.push_back(kFormatVersion);
  bytes.insert(bytes.end(), entries.begin(), entries.end());
  return bytes;
}

Variant DecodeValue(Reader& in, DecodeBudget& budget);

Variant DecodeObject(Reader& in, DecodeBudget& budget) {
  const std::string class_name(in.String());
  if (class_name.empty()) return Variant::Nothing();
  std::function<std::shared_ptr<Persistable>()> create;
  {
    std::lock_guard lock(RegistryMutex());
    auto found = Registry().find(class_name);
    if (found != Registry().end()) create = found->second;
  }
  if (!create) {
    Raise(kErrCannotCreateObject, std::string(kSource),
          "ActiveX component can't create object: the class '" + class_name +
              "' of a stored object is not registered.");
  }
  const std::size_t start = in.Position();
  SkipEntries(in, 1);
  auto nested = PropertyBag::Create();
  const auto loan = budget.LendTo(*nested);
  nested->SetContents(BagBytes(in.Slice(start, in.Position())));
  std::shared_ptr<Persistable> object = create();
  object->ReadProperties(*nested);
  return Variant(std::static_pointer_cast<Object>(object));
}

/// Builds a value from bytes that were checked when they came in. The value itself was counted
/// by the caller; what it holds is counted here, before it is allocated.
Variant DecodeValue(Reader& in, DecodeBudget& budget) {
  switch (in.Byte()) {
    case kEmpty:
      return Variant();
    case kNull:
      return Variant::Null();
    case kInteger:
      return Variant(in.Fixed<std::int16_t>());
    case kLong:
      return Variant(in.Fixed<std::int32_t>());
    case kSingle:
      return Variant(in.Fixed<float>());
    case kDouble:
      return Variant(in.Fixed<double>());
    case kCurrency:
      return Variant(Currency{in.Fixed<std::int64_t>()});
    case kDate:
      return Variant(Date{in.Fixed<double>()});
    case kString: {
      const std::string_view text = in.String();
      budget.Take(0, text.size());
      return Variant(std::string(text));
    }
    case kError:
      return Variant(ErrorValue{in.Fixed<std::int32_t>()});
    case kBoolean:
      return Variant(in.Byte() != 0);
    case kByte:
      return Variant(in.Byte());
    case kByteArray: {
      const std::string_view bytes = in.String();
      budget.Take(0, bytes.size());
      return Variant(ByteArray(bytes.begin(), bytes.end()));
    }
    case kVariantArray: {
      VariantArray array;
      array.lower_bound = in.Fixed<std::int32_t>();
      const std::size_t count = in.Count(1);
      budget.Take(count, count * sizeof(Variant));
      array.items.reserve(count);
      for (std::size_t n = count; n > 0; --n) array.items.push_back(DecodeValue(in, budget));
      return Variant(std::move(array));
    }
    case kObject:
      return DecodeObject(in, budget);
    default:
      in.Damaged("an unknown kind of value");
  }
}

/// Equal for the purpose of leaving a value out: the same kind, and equal by the variant
/// comparison (a comparison that raises counts as not equal).
bool SameAsDefault(const Variant& value, const Variant& default_value) {
  if (default_value.IsMissing() || value.Type() != default_value.Type()) return false;
  if (value.IsObject() || value.IsArray()) return false;
  try {
    return VarEqual(value, default_value);
  } catch (const Error&) {
    return false;
  }
}

}  // namespace

void RegisterPersistableClass(std::string class_name,
                              std::function<std::shared_ptr<Persistable>()> create) {
  std::lock_guard lock(RegistryMutex());
  Registry()[std::move(class_name)] = std::move(create);
}

PropertyBag::PropertyBag() : entries_(std::make_unique<Entries>()) {}
PropertyBag::~PropertyBag() = default;

std::shared_ptr<PropertyBag> PropertyBag::Create() {
  return std::shared_ptr<PropertyBag>(new PropertyBag());
}

void PropertyBag::WriteProperty(std::string_view DataName, const Variant& Value,
                                const Variant& DefaultValue) {
  if (SameAsDefault(Value, DefaultValue)) {
    entries_->Remove(DataName);
    return;
  }
  std::string encoded;
  EncodeValue(encoded, Value, 0);
  entries_->Put(DataName, std::move(encoded));
}

Variant PropertyBag::ReadProperty(std::string_view DataName, const Variant& DefaultValue) const {
  const std::string* encoded = entries_->Find(DataName);
  if (!encoded) {
    if (!DefaultValue.IsMissing()) return DefaultValue;
    Raise(kErrDataValueNotFound, std::string(kSource),
          "Data value named '" + std::string(DataName) + "' not found");
  }
  std::optional<DecodeBudget> own;
  DecodeBudget& budget = DecodeBudget::For(*this, own);
  budget.Take(1, sizeof(Variant));
  Reader in(*encoded);
  return DecodeValue(in, budget);
}

std::vector<std::string> PropertyBag::Names() const {
  std::vector<std::string> names;
  for (const auto& [name, value] : entries_->items) names.push_back(name);
  return names;
}

ByteArray PropertyBag::Contents() const {
  std::string entries;
  entries_->Encode(entries);
  return BagBytes(entries);
}

void PropertyBag::SetContents(const ByteArray& bytes) {
  Reader in(std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
  if (in.Bytes(std::min(kMagic.size(), in.Left())) != kMagic)
    in.Damaged("they are not a property bag");
  if (in.Byte() != kFormatVersion) in.Damaged("the format version is unknown");
  std::optional<DecodeBudget> own;
  DecodeBudget& budget = DecodeBudget::For(*this, own);
  auto entries = std::make_unique<Entries>();
  for (std::size_t n = in.Count(2); n > 0; --n) {
    const std::string_view name = in.String();
    const std::size_t start = in.Position();
    SkipValue(in, 0);
    const std::string_view value = in.Slice(start, in.Position());
    budget.Take(1, kEntryOverhead + 2 * name.size() + value.size());
    entries->Put(name, std::string(value));
  }
  if (!in.AtEnd()) in.Damaged("bytes follow the last value");
  entries_ = std::move(entries);
}

}  // namespace brix
