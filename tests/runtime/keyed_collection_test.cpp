// The platform collection: positions, case-insensitive keys, removal and its errors.
#include "runtime/keyed_collection.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/runtime/runtime_test_support.h"

namespace brix {
namespace {

using test_support::ExpectRuntimeError;
using test_support::kInvalidProcedureCall;

constexpr const char* kSubscriptOutOfRange = "Subscript out of range";
constexpr const char* kDuplicateKey =
    "This key is already associated with an element of this collection";

KeyedCollection<std::string> Letters() {
  KeyedCollection<std::string> c;
  c.Add("a", "KeyA");
  c.Add("b");
  c.Add("c", "KeyC");
  c.Add("d", "1");  // a key that looks like a position
  return c;
}

std::vector<std::string> Items(const KeyedCollection<std::string>& c) {
  return {c.begin(), c.end()};
}

TEST(KeyedCollection, FindsItemsByOneBasedPositionAndByKey) {
  KeyedCollection<std::string> c = Letters();
  EXPECT_EQ(c.Count(), 4);
  EXPECT_EQ(c.ItemAt(1), "a");
  EXPECT_EQ(c.Item(Variant(2)), "b");
  EXPECT_EQ(c.Item(Variant(std::int16_t{3})), "c");
  EXPECT_EQ(c.Item(Variant("keya")), "a");
  EXPECT_EQ(c.ItemByKey("KEYC"), "c");
  EXPECT_EQ(c.Item(Variant("1")), "d");  // text is always a key
  EXPECT_EQ(c.Item(Variant(1)), "a");
  EXPECT_EQ(c.Item(Variant(1.5)), "b");  // positions round half to even
  EXPECT_EQ(c.Item(Variant(2.5)), "b");
  EXPECT_EQ(c.Item(Variant(Currency{35000})), "d");
  EXPECT_EQ(c.Item(test_support::ObjectWith(Variant("KeyC"))), "c");
  EXPECT_EQ(Items(c), (std::vector<std::string>{"a", "b", "c", "d"}));
  EXPECT_EQ(c.FindKey("nope"), nullptr);
  ASSERT_NE(c.FindKey("kEyA"), nullptr);
  EXPECT_EQ(*c.FindKey("kEyA"), "a");
}

TEST(KeyedCollection, RaisesThePlatformErrors) {
  KeyedCollection<std::string> c = Letters();
  for (double position : {0.0, 0.5, 5.0, -1.0}) {
    SCOPED_TRACE(position);
    ExpectRuntimeError([&] { c.Item(Variant(position)); }, 9, kSubscriptOutOfRange);
    ExpectRuntimeError([&] { c.Remove(Variant(position)); }, 9, kSubscriptOutOfRange);
  }
  ExpectRuntimeError([&] { c.ItemAt(5); }, 9, kSubscriptOutOfRange);
  ExpectRuntimeError([&] { c.Item(Variant()); }, 9, kSubscriptOutOfRange);
  ExpectRuntimeError([&] { c.Item(Variant("2")); }, 5, kInvalidProcedureCall);
  ExpectRuntimeError([&] { c.ItemByKey("missing"); }, 5, kInvalidProcedureCall);
  ExpectRuntimeError([&] { c.Remove(Variant("missing")); }, 5, kInvalidProcedureCall);
  ExpectRuntimeError([&] { c.Add("x", "KEYA"); }, 457, kDuplicateKey);
  EXPECT_EQ(c.Count(), 4);  // a refused item is not added
}

TEST(KeyedCollection, KeysIgnoreLetterCaseOfRomanianLetters) {
  struct Case {
    const char* first;
    const char* second;
  } duplicates[] = {
      {"Ștefan", "ȘTEFAN"}, {"țară", "ȚARĂ"},     {"închis", "ÎNCHIS"},
      {"până", "PÂNĂ"},     {"Şcoală", "şcoală"}, {"Ţară", "ţară"},
  };
  for (const Case& c : duplicates) {
    SCOPED_TRACE(c.first);
    KeyedCollection<int> collection;
    collection.Add(1, c.first);
    ExpectRuntimeError([&] { collection.Add(2, c.second); }, 457, kDuplicateKey);
    EXPECT_EQ(collection.ItemByKey(c.second), 1);
  }
  KeyedCollection<int> distinct;
  distinct.Add(1, "Ștefan");  // comma below
  distinct.Add(2, "Ştefan");  // cedilla: another letter
  distinct.Add(3, "");
  ExpectRuntimeError([&] { distinct.Add(4, ""); }, 457, kDuplicateKey);
  EXPECT_EQ(distinct.Item(Variant("")), 3);
}

TEST(KeyedCollection, RemovalMovesLaterItemsDown) {
  KeyedCollection<std::string> c = Letters();
  c.Remove(Variant(2));
  EXPECT_EQ(Items(c), (std::vector<std::string>{"a", "c", "d"}));
  EXPECT_EQ(c.ItemAt(2), "c");
  EXPECT_EQ(c.ItemByKey("KeyC"), "c");
  EXPECT_EQ(c.Item(Variant("1")), "d");
  c.Remove(Variant("keya"));
  EXPECT_EQ(Items(c), (std::vector<std::string>{"c", "d"}));
  EXPECT_EQ(c.ItemByKey("1"), "d");
  c.Add("a again", "KeyA");  // a removed key can be used again
  EXPECT_EQ(c.ItemAt(3), "a again");
  c.Clear();
  EXPECT_EQ(c.Count(), 0);
  ExpectRuntimeError([&] { c.ItemAt(1); }, 9, kSubscriptOutOfRange);
  c.Add("new", "KeyC");
  EXPECT_EQ(c.ItemByKey("keyc"), "new");
}

}  // namespace
}  // namespace brix
