// The runtime property bag: every kind of value through its bytes, defaults, names, objects, and
// damaged bytes refused with error 5 at their place.
#include "runtime/property_bag.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::Outcome;

/// A persistable pair of values, nested objects included.
class Pair : public Persistable {
 public:
  static std::shared_ptr<Pair> Create() { return std::make_shared<Pair>(); }
  std::string TypeName() const override { return "Pair"; }
  std::string PersistentClassName() const override { return "TestPair"; }
  void WriteProperties(PropertyBag& bag) override {
    bag.WriteProperty("First", first);
    bag.WriteProperty("Second", second);
  }
  void ReadProperties(PropertyBag& bag) override {
    first = bag.ReadProperty("First");
    second = bag.ReadProperty("Second");
  }
  Variant first, second;
};

const bool kPairRegistered = [] {
  RegisterPersistableClass("TestPair", [] { return Pair::Create(); });
  return true;
}();

/// The kind and the exact value: numbers by their bits, arrays item by item, objects by class
/// and content.
std::string Exact(const Variant& value) {
  std::string text = std::to_string(value.Type()) + ":";
  if (value.IsByteArray())
    return text + std::string(value.AsByteArray().begin(), value.AsByteArray().end());
  if (value.IsArray()) {
    const VariantArray& array = value.AsVariantArray();
    text += "lb" + std::to_string(array.lower_bound) + "[";
    for (const Variant& item : array.items) text += Exact(item) + ",";
    return text + "]";
  }
  switch (value.Type()) {
    case vbEmpty:
    case vbNull:
      return text;
    case vbSingle: {
      float f = value.AsSingle();
      std::uint32_t bits;
      std::memcpy(&bits, &f, 4);
      return text + std::to_string(bits);
    }
    case vbDouble:
    case vbDate: {
      double d = value.NumericValue();
      std::uint64_t bits;
      std::memcpy(&bits, &d, 8);
      return text + std::to_string(bits);
    }
    case vbCurrency:
      return text + std::to_string(value.AsCurrency().scaled);
    case vbString:
      return text + value.AsString();
    case vbError:
      return text + std::to_string(value.AsError().code);
    case vbObject: {
      auto pair = std::dynamic_pointer_cast<Pair>(value.AsObject());
      if (!value.AsObject()) return text + "Nothing";
      return text + (pair ? "Pair(" + Exact(pair->first) + "|" + Exact(pair->second) + ")" : "?");
    }
    default:
      return text + std::to_string(value.NumericValue());
  }
}

Variant NestedPair() {
  auto inner = Pair::Create();
  inner->first = Variant("inner ț");
  inner->second = Variant::Nothing();
  auto outer = Pair::Create();
  outer->first = Variant(inner);
  outer->second =
      Variant(VariantArray{{Variant(1), Variant(VariantArray{{Variant("deep")}, 5})}, -2});
  return Variant(outer);
}

TEST(PropertyBag, CarriesEveryKindOfValueUnchangedThroughItsBytes) {
  const std::vector<Variant> values = {Variant(),
                                       Variant::Null(),
                                       Variant(std::int16_t{-32768}),
                                       Variant(std::int32_t{-2147483647 - 1}),
                                       Variant(0.1f),
                                       Variant(-0.0),
                                       Variant(1e308),
                                       Variant(Currency{-922337203685477580}),
                                       Variant(Date{45000.75}),
                                       Variant(""),
                                       Variant("Parola ăîșț 日本 \x01 <>&\""),
                                       Variant(true),
                                       Variant(false),
                                       Variant(std::uint8_t{255}),
                                       Variant(ErrorValue{-2147352572}),
                                       Variant(ByteArray{}),
                                       Variant(ByteArray{0, 255, 10, 13}),
                                       Variant(VariantArray{}),
                                       Variant::Nothing(),
                                       NestedPair()};
  auto bag = PropertyBag::Create();
  for (std::size_t i = 0; i < values.size(); ++i)
    bag->WriteProperty("v" + std::to_string(i), values[i]);
  auto copy = PropertyBag::Create();
  copy->SetContents(bag->Contents());
  for (std::size_t i = 0; i < values.size(); ++i) {
    EXPECT_EQ(Exact(copy->ReadProperty("V" + std::to_string(i))), Exact(values[i])) << i;
  }
  EXPECT_EQ(copy->Contents(), bag->Contents());
}

TEST(PropertyBag, DefaultsNamesAndTheLastWrite) {
  auto bag = PropertyBag::Create();
  bag->WriteProperty("Name", Variant("first"));
  bag->WriteProperty("NAME", Variant("last"));          // names ignore letter case
  bag->WriteProperty("Count", Variant(3), Variant(3));  // equal to its default: not stored
  bag->WriteProperty("Kind", Variant(std::int16_t{3}), Variant(3));  // another kind: stored
  bag->WriteProperty("Gone", Variant("x"));
  bag->WriteProperty("Gone", Variant(""), Variant(""));  // back to its default: removed
  EXPECT_EQ(bag->Names(), (std::vector<std::string>{"Name", "Kind"}));
  EXPECT_EQ(bag->ReadProperty("name").AsString(), "last");
  EXPECT_EQ(bag->ReadProperty("Count", Variant(3)).AsLong(), 3);
  EXPECT_EQ(bag->ReadProperty("Gone", Variant("d")).AsString(), "d");
  EXPECT_EQ(Outcome([&] { return bag->ReadProperty("Count"), std::string(); }),
            "327 PropertyBag: Data value named 'Count' not found");
  struct Plain : Object {
    std::string TypeName() const override { return "Plain"; }
  };
  EXPECT_EQ(Outcome([&] {
              return bag->WriteProperty("O", Variant(std::make_shared<Plain>())), std::string();
            }),
            "330 PropertyBag: Illegal parameter. Can't write object because it does not support "
            "persistence.");
}

TEST(PropertyBag, RefusesDamagedBytesAtTheirPlaceAndKeepsItsValues) {
  const std::string damaged = "5 PropertyBag: The property bag's bytes are damaged: ";
  auto with = [](std::string tail) {
    std::string bytes = "BXPB\x01" + tail;
    return ByteArray(bytes.begin(), bytes.end());
  };
  // clang-format off
  const std::vector<std::pair<ByteArray, std::string>> cases = {
      {ByteArray{},                          "they are not a property bag at byte 0."},
      {ByteArray{'X', 'M', 'L', '!', 1, 0},  "they are not a property bag at byte 4."},
      {with(""),                             "they end early at byte 5."},
      {with(std::string("\x02\x01", 2)),     "a count exceeds the bytes that follow at byte 6."},
      {with(std::string("\x01\x01" "a\x63", 4)), "an unknown kind of value at byte 9."},
      {with(std::string("\x01\x01" "a\x08\xFF\xFF\xFF\xFF\x0F", 9)), "a count exceeds the bytes that follow at byte 14."},
      {with(std::string("\x01\x01" "a\x03\x01", 5)), "a length exceeds the bytes that follow at byte 9."},
      {with(std::string("\x00\x00", 2)),     "bytes follow the last value at byte 6."},
      {with(std::string("\x01\x01" "a\x08\x80\x80\x80\x80\x80\x80\x80\x80\x80\x80", 14)), "a length runs too long at byte 19."},
  };
  // clang-format on
  auto bag = PropertyBag::Create();
  bag->WriteProperty("Kept", Variant(1));
  for (const auto& [bytes, reason] : cases) {
    EXPECT_EQ(Outcome([&] { return bag->SetContents(bytes), std::string(); }), damaged + reason);
    EXPECT_EQ(bag->ReadProperty("Kept").AsLong(), 1);
  }
  // Every cut of good bytes loads or is refused; nesting past 64 levels is refused.
  auto full = PropertyBag::Create();
  full->WriteProperty("p", NestedPair());
  const ByteArray good = full->Contents();
  for (std::size_t size = 0; size < good.size(); ++size) {
    EXPECT_NE(
        Outcome([&] {
          return PropertyBag::Create()->SetContents(ByteArray(good.begin(), good.begin() + size)),
                 std::string("loaded");
        }),
        "loaded")
        << size;
  }
  std::string deep =
      "\x01\x01"
      "a";
  for (int level = 0; level < 70; ++level) deep += std::string("\x8C\0\0\0\0\x01", 6);
  deep += '\0';
  EXPECT_EQ(Outcome([&] { return bag->SetContents(with(deep)), std::string(); }),
            damaged + "values nest too deeply at byte 398.");
}

// What a read builds is held to the bag's limits, counted before it is allocated: values
// (array items and the entries of nested objects included) and memory.
TEST(PropertyBag, ReadsBuildNoMoreThanTheirLimits) {
  auto empties = [](std::size_t count) {
    return Variant(VariantArray{std::vector<Variant>(count), 0});
  };
  const std::string refused = "5 PropertyBag: Reading the property bag would build more than ";
  const std::string raise = "; SetDecodeLimits raises the bound.";
  const std::int64_t mb = 1 << 20;
  auto pair = Pair::Create();
  pair->first = empties(9);
  const Variant object(std::static_pointer_cast<Object>(pair));
  struct Case {
    const char* what;
    Variant value;
    PropertyBagLimits limits;
    std::string expected;
  };
  // clang-format off
  const std::vector<Case> cases = {
      {"items at the bound",      empties(9),         {10, mb},   "read"},
      {"items past the bound",    empties(10),        {10, mb},   refused + "10 values" + raise},
      {"text at the bound",       Variant(std::string(1000, 'x')), {10, 1200}, "read"},
      {"an entry past the bound", Variant(std::string(1000, 'x')), {10, 1100}, refused + "1100 bytes of memory" + raise},
      // The object and its two entries, then First (an array of 9) and Second as it reads them.
      {"an object's reads at the bound",   object, {14, mb}, "read"},
      {"an object's reads past the bound", object, {13, mb}, refused + "13 values" + raise},
      {"the defaults",            empties(4'000'000),  {},        refused + "4000000 values" + raise},
  };
  // clang-format on
  for (const Case& c : cases) {
    auto writer = PropertyBag::Create();
    writer->WriteProperty("a", c.value);
    auto reader = PropertyBag::Create();
    reader->SetDecodeLimits(c.limits);
    EXPECT_EQ(Outcome([&] {
                reader->SetContents(writer->Contents());
                return reader->ReadProperty("a"), std::string("read");
              }),
              c.expected)
        << c.what;
  }
}

}  // namespace
}  // namespace brix
