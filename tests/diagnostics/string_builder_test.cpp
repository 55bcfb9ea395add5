// The string builder's sizes, rounding, kept bytes, buffer swap, range errors and overflow.
#include "diagnostics/string_builder.h"

#include <gtest/gtest.h>

#include <functional>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using Action = std::function<void(StringBuilder&)>;

std::shared_ptr<StringBuilder> WithText(std::u16string_view text) {
  auto builder = StringBuilder::Create();
  builder->Append(text);
  return builder;
}

TEST(StringBuilder, RoundsSizesToTheBump) {
  // clang-format off
  struct Case { Action action; std::int32_t bump, capacity, length; };
  const Case cases[] = {
      {[](StringBuilder&) {},                                            4096, 4096, 0},
      {[](StringBuilder& b) { b.SetBufferBump(7); },                     8,    4096, 0},
      {[](StringBuilder& b) { b.SetBufferBump(0); b.SetBufferBump(-5); }, 4096, 4096, 0},
      {[](StringBuilder& b) { b.SetCapacity(100); b.SetCapacity(0); },   4096, 4096, 0},
      {[](StringBuilder& b) { b.SetBufferBump(10); b.SetCapacity(30); }, 10,   30,   0},
      {[](StringBuilder& b) { EXPECT_EQ(b.EnsureCapacity(5000), 8192); }, 4096, 8192, 0},
      {[](StringBuilder& b) { EXPECT_EQ(b.EnsureCapacity(10), 4096); },  4096, 4096, 0},
      {[](StringBuilder& b) { b.SetBufferBump(6); b.SetCapacity(6); b.Append(u"abcd"); },
                                                                         6,    12,   4},
      {[](StringBuilder& b) { b.SetBufferBump(4); b.SetCapacity(4); b.Setlength(3); },
                                                                         4,    8,    3},
      {[](StringBuilder& b) { b.Setlength(-1); },                        4096, 4096, 0},
  };
  // clang-format on
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    auto builder = StringBuilder::Create();
    cases[i].action(*builder);
    EXPECT_EQ(builder->BufferBump(), cases[i].bump) << "row " << i;
    EXPECT_EQ(builder->Capacity(), cases[i].capacity) << "row " << i;
    EXPECT_EQ(builder->length(), cases[i].length) << "row " << i;
  }
}

TEST(StringBuilder, KeepsTheBytesPastTheLengthButNotPastACut) {
  auto builder = WithText(u"abcdef");
  builder->Setlength(2);
  EXPECT_EQ(builder->ToString(), u"ab");
  EXPECT_EQ(builder->Chars(3), u"d");  // position 3 < 4 bytes: read past the text
  builder->SetChars(2, u"XY");
  builder->Setlength(6);
  EXPECT_EQ(builder->ToString(), u"abXdef");

  builder = WithText(std::u16string(3000, u'x'));
  builder->SetBufferBump(1000);
  builder->SetCapacity(2000);
  EXPECT_EQ(builder->Capacity(), 2000);
  EXPECT_EQ(builder->length(), 1000);
  builder->Setlength(1001);
  EXPECT_EQ(builder->Chars(1000), std::u16string(1, u'\0'));
}

TEST(StringBuilder, InsertSwapsBuffersSoTheOldScratchShowsPastTheEnd) {
  auto builder = WithText(u"abcdef");
  builder->Insert(3, u"X").Append(u"!").Remove(0);  // the text now lives in the scratch buffer
  EXPECT_EQ(builder->ToString(), u"bcXdef!");
  builder->Setlength(3);
  builder->Insert(0, u"__");  // written over the first buffer, which still holds abcdef
  builder->Setlength(7);
  EXPECT_EQ(builder->ToString(), std::u16string(u"__bcXf\0", 7));
}

TEST(StringBuilder, RaisesRangeErrorsAndChangesNothing) {
  const char* kRead = "Tried reading character past end of buffer.";
  const char* kRange = "Argument(s) out of range.";
  // clang-format off
  struct Case { Action action; const char* source; const char* description; };
  const Case cases[] = {
      {[](StringBuilder& b) { b.Chars(6); },                "CStringBuilder.Chars",  kRead},
      {[](StringBuilder& b) { b.Chars(-1); },               "CStringBuilder.Chars",  kRead},
      {[](StringBuilder& b) { b.SetChars(6, u"z"); },       "CStringBuilder.Chars",
                                                  "Tried assigning character past end of buffer."},
      {[](StringBuilder& b) { b.Insert(-1, u"z"); },        "CStringBuilder.Insert", kRange},
      {[](StringBuilder& b) { b.Insert(2049, u""); },       "CStringBuilder.Insert", kRange},
      {[](StringBuilder& b) { b.Insert(4, u"z"); },         "CStringBuilder.Insert", kRange},
      {[](StringBuilder& b) { b.Insert(0x40000000, u"z"); }, "CStringBuilder.Insert", kRange},
      {[](StringBuilder& b) { b.Remove(1, 3); },            "CStringBuilder.Remove", kRange},
      {[](StringBuilder& b) { b.Remove(3); },               "CStringBuilder.Remove", kRange},
      {[](StringBuilder& b) { b.Remove(2, -1); },           "CStringBuilder.Remove", kRange},
      {[](StringBuilder& b) { b.Remove(0, 0x40000000); },   "CStringBuilder.Remove", kRange},
  };
  // clang-format on
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    auto builder = WithText(u"abc");
    EXPECT_TRUE(test_support::RaisesError([&] { cases[i].action(*builder); }, -2147220992,
                                          cases[i].source, cases[i].description))
        << "row " << i;
    EXPECT_EQ(builder->ToString(), u"abc") << "row " << i;
  }
  // The edges that pass: the last lax position, a start at the capacity with no text, a start
  // at the end, a range ending at the end.
  auto builder = WithText(u"abc");
  EXPECT_EQ(builder->Chars(5), std::u16string(1, u'\0'));
  builder->Insert(2048, u"").Insert(3, u"d").Remove(1, 3);
  EXPECT_EQ(builder->ToString(), u"a");
}

TEST(StringBuilder, SizesBeyond32BitsOverflowAndChangeNothing) {
  const Action cases[] = {
      [](StringBuilder& b) { b.SetBufferBump(2147483647); },
      [](StringBuilder& b) { b.SetCapacity(2147483647); },
      [](StringBuilder& b) { b.EnsureCapacity(2147483647); },
      [](StringBuilder& b) { b.Setlength(0x40000000); },
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) {
    auto builder = WithText(u"abc");
    EXPECT_TRUE(test_support::RaisesRuntimeError([&] { cases[i](*builder); }, kErrOverflow))
        << "row " << i;
    EXPECT_EQ(builder->BufferBump(), 4096) << "row " << i;
    EXPECT_EQ(builder->Capacity(), 4096) << "row " << i;
    EXPECT_EQ(builder->length(), 3) << "row " << i;
  }
}

}  // namespace
}  // namespace brix
