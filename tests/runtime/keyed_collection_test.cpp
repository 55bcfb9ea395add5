// The platform collection: positions, case-insensitive keys, removal and its errors.
#include "runtime/keyed_collection.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/expect_error.h"
#include "tests/support/value_object.h"

namespace brix {
namespace {

using test_support::ObjectWith;
using test_support::RaisesRuntimeError;

KeyedCollection<std::string> Letters() {
  KeyedCollection<std::string> c;
  c.Add("a", "KeyA");
  c.Add("b");
  c.Add("c", "KeyC");
  c.Add("d", "1");  // a key that looks like a position
  return c;
}

std::string Joined(const KeyedCollection<std::string>& c) {
  std::string text;
  for (const std::string& item : c) text += item;
  return text;
}

TEST(KeyedCollection, ItemAndRemoveTakeAOneBasedPositionOrAKey) {
  // clang-format off
  struct Case { Variant index; const char* item; std::int32_t error; };
  const Case cases[] = {
      {Variant(2),                 "b", 0},
      {Variant("keya"),            "a", 0},
      {Variant("1"),               "d", 0},  // text is always a key
      {Variant(1.5),               "b", 0},  // positions round half to even
      {Variant(2.5),               "b", 0},
      {ObjectWith(Variant("KeyC")), "c", 0},
      {Variant(0.5),               "",  9},
      {Variant(5),                 "",  9},
      {Variant("2"),               "",  5},
  };
  // clang-format on
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);  // the row
    KeyedCollection<std::string> letters = Letters();
    if (c.error != 0) {
      EXPECT_TRUE(RaisesRuntimeError([&] { letters.Item(c.index); }, c.error));
      EXPECT_TRUE(RaisesRuntimeError([&] { letters.Remove(c.index); }, c.error));
      EXPECT_EQ(Joined(letters), "abcd");
      continue;
    }
    EXPECT_EQ(letters.Item(c.index), c.item);
    letters.Remove(c.index);
    std::string rest = "abcd";
    EXPECT_EQ(Joined(letters), rest.erase(rest.find(c.item), 1));
  }
}

TEST(KeyedCollection, KeysIgnoreLetterCaseAndStayInStepWithPositions) {
  KeyedCollection<std::string> c = Letters();
  EXPECT_EQ(c.FindKey("nope"), nullptr);
  EXPECT_TRUE(RaisesRuntimeError([&] { c.Add("x", "KEYA"); }, 457));
  EXPECT_EQ(c.Count(), 4);  // a refused item is not added
  c.Remove(Variant(2));
  EXPECT_EQ(c.ItemAt(2), "c");
  EXPECT_EQ(*c.FindKey("1"), "d");
  c.Remove(Variant("keya"));
  c.Add("e", "KeyA");  // a removed key can be used again
  EXPECT_EQ(Joined(c), "cde");
  c.Clear();
  c.Add("x", "KeyC");          // Clear forgets the keys too
  c.Add("comma", "Ștefan");    // comma below
  c.Add("cedilla", "Ştefan");  // cedilla: another letter
  c.Add("blank", "");
  for (const char* duplicate : {"ȘTEFAN", "ŞTEFAN", ""}) {
    EXPECT_TRUE(RaisesRuntimeError([&] { c.Add("x", duplicate); }, 457)) << duplicate;
  }
  EXPECT_EQ(c.ItemByKey("ştefan"), "cedilla");
  EXPECT_EQ(c.Item(Variant("")), "blank");
}

TEST(KeyedCollection, ManyKeysStayFindableThroughGrowthRemovalsAndReserve) {
  KeyedCollection<int> c;
  c.Reserve(10);  // a hint below what comes: the table still grows
  for (int i = 0; i < 300; ++i) c.Add(i, "Key" + std::to_string(i));
  for (int i = 0; i < 300; i += 3) c.Remove(Variant("KEY" + std::to_string(i)));
  ASSERT_EQ(c.Count(), 200);
  for (int i = 0; i < 300; ++i) {
    const int* found = c.FindKey("key" + std::to_string(i));
    if (i % 3 == 0) {
      EXPECT_EQ(found, nullptr) << i;
    } else {
      ASSERT_NE(found, nullptr) << i;
      EXPECT_EQ(*found, i);
    }
  }
  EXPECT_EQ(c.ItemAt(1), 1);  // positions close up behind removals
  EXPECT_EQ(c.ItemAt(200), 299);
  EXPECT_TRUE(RaisesRuntimeError([&] { c.Add(0, "KEY299"); }, 457));
}

}  // namespace
}  // namespace brix
