// Text helpers: blank trimming, case folding, replacement and UTF-16 conversion and order.
#include "runtime/text.h"

#include <gtest/gtest.h>

#include <string>

namespace brix {
namespace {

TEST(Text, TrimsBlanksOnlyAndFoldsLettersBeyondAscii) {
  EXPECT_EQ(TrimBlanks("  a b  "), "a b");
  EXPECT_EQ(TrimBlanks(" \t\r\n "), "\t\r\n");
  EXPECT_EQ(TrimBlanks("\xC2\xA0x "), "\xC2\xA0x");  // no-break space stays
  EXPECT_EQ(TrimBlanks("   "), "");
  EXPECT_EQ(FoldCase("ĂÂÎȘȚ Abc ŞŢ ŸÀÞ× ŁŃŽ ΑΩДЁ"), "ăâîșț abc şţ ÿàþ× łńž αωдё");
  EXPECT_EQ(UpperAscii("ăbc"), "ăBC");
}

TEST(ReplaceAll, ReplacesLeftToRightInOnePass) {
  EXPECT_EQ(ReplaceAll("aaa", "aa", "b"), "ba");
  EXPECT_EQ(ReplaceAll("a.b.c", ".", ".."), "a..b..c");
  EXPECT_EQ(ReplaceAll("abc", "", "x"), "abc");
}

TEST(Utf16, RoundTripsReplacesInvalidInputAndOrdersByCodeUnits) {
  const std::string text = "Ștefan €\U0001F600";
  EXPECT_EQ(ToUtf16(text), u"Ștefan €\xD83D\xDE00");
  EXPECT_EQ(ToUtf8(ToUtf16(text)), text);
  EXPECT_EQ(ToUtf16("a\xFFz"), u"a\uFFFDz");
  EXPECT_EQ(ToUtf16("\xE2\x82"), u"\uFFFD");        // cut short
  EXPECT_EQ(ToUtf16("\xC0\xAF"), u"\uFFFD\uFFFD");  // overlong
  EXPECT_EQ(ToUtf8(u"x\xD800y"), "x\xEF\xBF\xBDy");
  EXPECT_EQ(ToUtf8(u"\xDC00"), "\xEF\xBF\xBD");
  EXPECT_GT(CompareUtf16Order("\uE000", "\U0001F600"), 0);  // surrogates sort before U+E000..
  EXPECT_LT(CompareUtf16Order("\U0001F600", "\U0001F601"), 0);
  EXPECT_LT(CompareUtf16Order("ab", "abc"), 0);
  EXPECT_GT(CompareUtf16Order("b", "abc"), 0);
}

}  // namespace
}  // namespace brix
