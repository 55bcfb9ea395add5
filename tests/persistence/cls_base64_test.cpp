// clsBase64: the RFC 4648 vectors, sizing and tail rules, tolerant decoding, line breaking and
// joining, the code page, and arrays passed as input and output at once.
#include "persistence/cls_base64.h"

#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <string>
#include <vector>

#include "runtime/error_numbers.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

ByteArray Bytes(std::string_view text) { return ByteArray(text.begin(), text.end()); }
std::string Text(const ByteArray& bytes) { return std::string(bytes.begin(), bytes.end()); }

// An output array that already holds other bytes, as a host reusing its buffer has.
ByteArray Stale() { return ByteArray(11, 0xEE); }

ByteArray RandomBytes(std::mt19937& random, std::size_t size) {
  ByteArray bytes(size);
  for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
  return bytes;
}

TEST(ClsBase64, EncodesAndDecodesTheRfc4648Vectors) {
  const std::vector<std::pair<std::string, std::string>> vectors = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"fooba", "Zm9vYmE="},
      {"foobar", "Zm9vYmFy"},
      {"Man", "TWFu"},
      {std::string("\xFF\xFE\x00\x80", 4), "//4AgA=="}};
  auto codec = clsBase64::Create();
  for (const auto& [plain, encoded] : vectors) {
    SCOPED_TRACE(encoded);
    ByteArray out = Stale();
    codec->EncodeB64(Bytes(plain), out);
    EXPECT_EQ(Text(out), encoded);
    out = Stale();
    codec->DecodeB64(Bytes(encoded), out);
    EXPECT_EQ(Text(out), plain);
  }
}

TEST(ClsBase64, DecodesTolerantlyWithinTheCountedSize) {
  // {text, bytes}: the size is floor(3n / 4) less the trailing "=" count; nothing is rejected.
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"TQ", "M"},  // unpadded groups give the bytes their characters fill
      {"TWE", "Ma"},
      {"T", ""},
      {"TWFuT", "Man"},
      {"=", ""},  // more "=" than counted bytes: empty, not negative
      {"==", ""},
      // "=" as 64: the third value decides one byte, (64 << 2 | 64 >> 4) & 255.
      {"====", std::string("\x04", 1)},
      // A group ending early inside the text leaves the last counted bytes 0.
      {"TQ==TWFu", std::string("MMan\0\0", 6)},
      // Outside the alphabet counts as 255 and each byte keeps its low 8 bits.
      {"****", "\xFF\xFF\xFF"},
      {"A\x80==", "\x0F"},
      // Counted 1 byte, the group gives 2: the second is not written.
      {"ABC==", std::string("\0", 1)},
      // Line breaks are not skipped: they enter the arithmetic like any other byte.
      {"TW\r\nFu", "M\x7F\xFF\x16"},
  };
  auto codec = clsBase64::Create();
  for (const auto& [text, bytes] : cases) {
    SCOPED_TRACE(text);
    ByteArray out = Stale();
    codec->DecodeB64(Bytes(text), out);
    EXPECT_EQ(Text(out), bytes);
  }
}

TEST(ClsBase64, SpansIntoLinesEndingInCrLf) {
  struct Case {
    std::int32_t chars_per_line;
    std::string in, out;
  };
  const std::string hundred(100, 'x');
  const std::vector<Case> cases = {
      {76, hundred, std::string(76, 'x') + "\r\n" + std::string(24, 'x') + "\r\n"},
      {4, "abcdefgh", "abcd\r\nefgh\r\n"},
      {3, "abcdefg", "abc\r\ndef\r\ng\r\n"},
      {10, "abc", "abc\r\n"},
      {1, "ab", "a\r\nb\r\n"},
      {5, "", ""},
  };
  auto codec = clsBase64::Create();
  for (const Case& c : cases) {
    SCOPED_TRACE(c.in + " / " + std::to_string(c.chars_per_line));
    ByteArray out = Stale();
    codec->Span(c.chars_per_line, Bytes(c.in), out);
    EXPECT_EQ(Text(out), c.out);
  }
}

TEST(ClsBase64, SpanRefusesLinesShorterThanOneCharacter) {
  auto codec = clsBase64::Create();
  for (std::int32_t chars_per_line : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    ByteArray out = Bytes("kept");
    EXPECT_TRUE(test_support::RaisesRuntimeError(
        [&] { codec->Span(chars_per_line, Bytes("abc"), out); }, kErrInvalidProcedureCall));
    EXPECT_EQ(Text(out), "kept");
  }
}

TEST(ClsBase64, SpanCountsLinesInSinglePrecisionAndStopsWhenFull) {
  // 2^24 + 1 bytes in lines of 16: single precision sees 2^20 whole lines, one fewer than the
  // bytes need, so the last line (one byte) loses its CR LF and nothing else.
  const std::size_t n = (std::size_t{1} << 24) + 1;
  ByteArray in(n, 'q');
  in.back() = 'z';
  auto codec = clsBase64::Create();
  ByteArray out;
  codec->Span(16, in, out);
  ASSERT_EQ(out.size(), n + 2 * (std::size_t{1} << 20));
  EXPECT_EQ(Text(ByteArray(out.end() - 4, out.end())), "q\r\nz");
  codec->Unspan(out, out);
  EXPECT_EQ(out, in);
}

TEST(ClsBase64, UnspanRemovesOnlyCrLfPairsInOnePass) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"ab\r\ncd\r\n", "abcd"},
      {"a\rb\nc", "a\rb\nc"},
      {"\n\r", "\n\r"},
      {"\r\r\n\n", "\r\n"},  // the pair the removal forms is not removed again
      {"\r\n\r\n", ""},
      {"x\r", "x\r"},
      {std::string("\x81\xFF\r\n\0\x98", 6), std::string("\x81\xFF\0\x98", 4)},
      {"", ""},
  };
  auto codec = clsBase64::Create();
  for (const auto& [in, expected] : cases) {
    SCOPED_TRACE(testing::PrintToString(in));
    ByteArray out = Stale();
    codec->Unspan(Bytes(in), out);
    EXPECT_EQ(Text(out), expected);
  }
}

TEST(ClsBase64, RoundTripsThroughEncodeSpanUnspanDecode) {
  std::mt19937 random(20261124);
  auto codec = clsBase64::Create();
  for (std::size_t size = 0; size < 400; size += 1 + size / 8) {
    const ByteArray in = RandomBytes(random, size);
    const auto chars_per_line = static_cast<std::int32_t>(1 + random() % 80);
    SCOPED_TRACE(std::to_string(size) + " / " + std::to_string(chars_per_line));
    ByteArray text, spanned, joined, out;
    codec->EncodeB64(in, text);
    EXPECT_EQ(text.size(), (size + 2) / 3 * 4);
    codec->Span(chars_per_line, text, spanned);
    codec->Unspan(spanned, joined);
    EXPECT_EQ(joined, text);
    codec->DecodeB64(joined, out);
    EXPECT_EQ(out, in);
  }
}

TEST(ClsBase64, TakesTheSameArrayAsInputAndOutput) {
  auto codec = clsBase64::Create();
  ByteArray array = Bytes("foobar!");
  codec->EncodeB64(array, array);
  EXPECT_EQ(Text(array), "Zm9vYmFyIQ==");
  codec->Span(5, array, array);
  EXPECT_EQ(Text(array), "Zm9vY\r\nmFyIQ\r\n==\r\n");
  codec->Unspan(array, array);
  EXPECT_EQ(Text(array), "Zm9vYmFyIQ==");
  codec->DecodeB64(array, array);
  EXPECT_EQ(Text(array), "foobar!");
}

TEST(ClsBase64, Str2ByteArrayUsesWindows1250) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"Man", "Man"},
      {"", ""},
      // Romanian letters of the code page, the cedilla forms among them.
      {"ăâîşţĂŞ", "\xE3\xE2\xEE\xBA\xFE\xC3\xAA"},
      // The comma-below forms are not in the code page.
      {"șț", "??"},
      {"€ Łź", "\x80 \xA3\x9F"},
      // The unassigned bytes read back as themselves.
      {"\xC2\x81\xC2\x98", "\x81\x98"},
      // One "?" per character: a character beyond the BMP is one, not two.
      {"日本😀", "???"},
      {"a\xFF", "a?"},  // invalid UTF-8
  };
  auto codec = clsBase64::Create();
  for (const auto& [text, bytes] : cases) {
    SCOPED_TRACE(text);
    ByteArray out = Stale();
    codec->Str2ByteArray(text, out);
    EXPECT_EQ(Text(out), bytes);
  }
}

}  // namespace
}  // namespace brix
