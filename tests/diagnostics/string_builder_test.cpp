// The string builder's sizes, rounding, lax character access, range errors and overflow.
#include "diagnostics/string_builder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

using test_support::RaisesError;
using test_support::RaisesRuntimeError;
using Builder = std::shared_ptr<StringBuilder>;

Builder WithText(std::u16string_view text) {
  Builder builder = StringBuilder::Create();
  builder->Append(text);
  return builder;
}

TEST(StringBuilder, StartsEmptyWithOnePageOfCapacity) {
  Builder builder = StringBuilder::Create();
  EXPECT_EQ(builder->Capacity(), 4096);
  EXPECT_EQ(builder->BufferBump(), 4096);
  EXPECT_EQ(builder->length(), 0);
  EXPECT_EQ(builder->ToString(), u"");
}

TEST(StringBuilder, RoundsSizesToTheBump) {
  // clang-format off
  struct Case { const char* what; std::function<void(StringBuilder&)> action;
                std::int32_t bump, capacity, length; std::u16string text; };
  const Case cases[] = {
      {"odd bump rounds up",      [](StringBuilder& b) { b.SetBufferBump(7); },    8, 4096, 0, u""},
      {"zero bump ignored",       [](StringBuilder& b) { b.SetBufferBump(0); },    4096, 4096, 0, u""},
      {"negative bump ignored",   [](StringBuilder& b) { b.SetBufferBump(-5); },   4096, 4096, 0, u""},
      {"capacity rounds up",      [](StringBuilder& b) { b.SetCapacity(100); },    4096, 4096, 0, u""},
      {"exact multiple kept",     [](StringBuilder& b) { b.SetBufferBump(10); b.SetCapacity(30); },
                                  10, 30, 0, u""},
      {"capacity may shrink",     [](StringBuilder& b) { b.SetBufferBump(2); b.SetCapacity(3); },
                                  2, 4, 0, u""},
      {"zero capacity ignored",   [](StringBuilder& b) { b.SetCapacity(0); },      4096, 4096, 0, u""},
      {"ensure rounds up",        [](StringBuilder& b) { EXPECT_EQ(b.EnsureCapacity(5000), 8192); },
                                  4096, 8192, 0, u""},
      {"ensure never shrinks",    [](StringBuilder& b) { EXPECT_EQ(b.EnsureCapacity(10), 4096); },
                                  4096, 4096, 0, u""},
      {"append grows by bumps",   [](StringBuilder& b) { b.SetBufferBump(6); b.SetCapacity(6);
                                                         b.Append(u"abcd"); },
                                  6, 12, 4, u"abcd"},
      {"length grows capacity",   [](StringBuilder& b) { b.SetBufferBump(4); b.SetCapacity(4);
                                                         b.Setlength(3); },
                                  4, 8, 3, std::u16string(3, u'\0')},
      {"negative length ignored", [](StringBuilder& b) { b.Append(u"ab"); b.Setlength(-1); },
                                  4096, 4096, 2, u"ab"},
  };
  // clang-format on
  for (const Case& c : cases) {
    Builder builder = StringBuilder::Create();
    c.action(*builder);
    EXPECT_EQ(builder->BufferBump(), c.bump) << c.what;
    EXPECT_EQ(builder->Capacity(), c.capacity) << c.what;
    EXPECT_EQ(builder->length(), c.length) << c.what;
    EXPECT_EQ(builder->ToString(), c.text) << c.what;
  }
}

TEST(StringBuilder, ShrinkingTheCapacityCutsTheText) {
  Builder builder = WithText(std::u16string(3000, u'x'));
  builder->SetBufferBump(1000);
  builder->SetCapacity(2000);
  EXPECT_EQ(builder->Capacity(), 2000);
  EXPECT_EQ(builder->length(), 1000);
  // The cut bytes are gone: growing again brings back zeros, not the old text.
  builder->Setlength(1001);
  EXPECT_EQ(builder->Chars(1000), std::u16string(1, u'\0'));
}

TEST(StringBuilder, ShorterLengthKeepsTheBytesBehindIt) {
  Builder builder = WithText(u"abcdef");
  builder->Setlength(2);
  EXPECT_EQ(builder->ToString(), u"ab");
  builder->Setlength(6);
  EXPECT_EQ(builder->ToString(), u"abcdef");
}

TEST(StringBuilder, ChainsEditsInOrder) {
  Builder builder = StringBuilder::Create();
  builder->Append(u"held").Insert(0, u"the ").Append(u" text").Remove(4, 5).Insert(4, u"new ");
  EXPECT_EQ(builder->ToString(), u"the new text");
  builder->Remove(0);
  EXPECT_EQ(builder->ToString(), u"he new text");
}

TEST(StringBuilder, InsertSwapsBuffersSoTheOldScratchShowsPastTheEnd) {
  Builder builder = WithText(u"abcdef");
  builder->Insert(3, u"X");  // the text now lives in the former scratch buffer
  EXPECT_EQ(builder->ToString(), u"abcXdef");
  builder->Setlength(8);
  EXPECT_EQ(builder->Chars(7), std::u16string(1, u'\0'));
  builder->Setlength(3);
  builder->Insert(0, u"__");  // written over the first buffer, which still holds abcdef
  builder->Setlength(7);
  EXPECT_EQ(builder->ToString(), std::u16string(u"__abcf\0", 7));
}

TEST(StringBuilder, CharsReachesPastTheTextUpToTwiceItsLength) {
  Builder builder = WithText(u"abcdef");
  builder->Setlength(3);
  EXPECT_EQ(builder->Chars(0), u"a");
  EXPECT_EQ(builder->Chars(4), u"e");  // accepted: 4 < 6 bytes
  builder->SetChars(5, u"XY");         // writes X past the end, length unchanged
  EXPECT_EQ(builder->length(), 3);
  builder->SetChars(1, u"");
  builder->Setlength(6);
  EXPECT_EQ(builder->ToString(), std::u16string(u"a\0cdeX", 6));
}

TEST(StringBuilder, RaisesRangeErrorsAndChangesNothing) {
  constexpr const char* kRange = "Argument(s) out of range.";
  // clang-format off
  struct Case { const char* what; std::function<void(StringBuilder&)> action;
                const char* source; const char* description; };
  const Case cases[] = {
      {"read at twice the length", [](StringBuilder& b) { b.Chars(6); },
       "CStringBuilder.Chars", "Tried reading character past end of buffer."},
      {"read before the start",    [](StringBuilder& b) { b.Chars(-1); },
       "CStringBuilder.Chars", "Tried reading character past end of buffer."},
      {"write at twice the length", [](StringBuilder& b) { b.SetChars(6, u"z"); },
       "CStringBuilder.Chars", "Tried assigning character past end of buffer."},
      {"insert before the start",  [](StringBuilder& b) { b.Insert(-1, u"z"); },
       "CStringBuilder.Insert", kRange},
      {"insert past the capacity", [](StringBuilder& b) { b.Insert(2049, u""); },
       "CStringBuilder.Insert", kRange},
      {"insert past the text",     [](StringBuilder& b) { b.Insert(4, u"z"); },
       "CStringBuilder.Insert", kRange},
      {"insert doubling past 32 bits", [](StringBuilder& b) { b.Insert(0x40000000, u"z"); },
       "CStringBuilder.Insert", kRange},
      {"remove one past the end",  [](StringBuilder& b) { b.Remove(1, 3); },
       "CStringBuilder.Remove", kRange},
      {"remove at the end",        [](StringBuilder& b) { b.Remove(3); },
       "CStringBuilder.Remove", kRange},
      {"remove negative count",    [](StringBuilder& b) { b.Remove(2, -1); },
       "CStringBuilder.Remove", kRange},
      {"remove doubling past 32 bits", [](StringBuilder& b) { b.Remove(0, 0x40000000); },
       "CStringBuilder.Remove", kRange},
  };
  // clang-format on
  for (const Case& c : cases) {
    Builder builder = WithText(u"abc");
    EXPECT_TRUE(RaisesError([&] { c.action(*builder); }, kErrStringBuilder, c.source,
                            c.description))
        << c.what;
    EXPECT_EQ(builder->ToString(), u"abc") << c.what;
    EXPECT_EQ(builder->Capacity(), 4096) << c.what;
  }
  EXPECT_EQ(kErrStringBuilder, -2147220992);
}

TEST(StringBuilder, AcceptsTheLimitsOfTheRanges) {
  Builder builder = WithText(u"abc");
  EXPECT_EQ(builder->Chars(5), std::u16string(1, u'\0'));  // last position that passes
  builder->Insert(2048, u"");                                // start at the capacity, empty text
  builder->Insert(3, u"d");                                  // start at the end
  builder->Remove(1, 3);                                     // range ending at the end
  EXPECT_EQ(builder->ToString(), u"a");
}

TEST(StringBuilder, CharsNeverLeavesTheBuffer) {
  Builder builder = StringBuilder::Create();
  builder->SetBufferBump(8);
  builder->SetCapacity(8);
  builder->Append(u"abcd");  // full: twice the length would reach 4 characters past the end
  EXPECT_EQ(builder->Chars(3), u"d");
  EXPECT_TRUE(RaisesError([&] { builder->Chars(4); }, kErrStringBuilder, "CStringBuilder.Chars",
                          "Tried reading character past end of buffer."));
}

TEST(StringBuilder, SizesBeyond32BitsOverflow) {
  // clang-format off
  struct Case { const char* what; std::function<void(StringBuilder&)> action; };
  const Case cases[] = {
      {"bump rounded past 32 bits",     [](StringBuilder& b) { b.SetBufferBump(2147483647); }},
      {"capacity rounded past 32 bits", [](StringBuilder& b) { b.SetCapacity(2147483647); }},
      {"ensure rounded past 32 bits",   [](StringBuilder& b) { b.EnsureCapacity(2147483647); }},
      {"length doubled past 32 bits",   [](StringBuilder& b) { b.Setlength(0x40000000); }},
  };
  // clang-format on
  for (const Case& c : cases) {
    Builder builder = WithText(u"abc");
    EXPECT_TRUE(RaisesRuntimeError([&] { c.action(*builder); }, kErrOverflow)) << c.what;
    EXPECT_EQ(builder->BufferBump(), 4096) << c.what;
    EXPECT_EQ(builder->Capacity(), 4096) << c.what;
    EXPECT_EQ(builder->length(), 3) << c.what;
  }
}

}  // namespace
}  // namespace brix
