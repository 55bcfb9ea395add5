// The text of "bin.base64" typed values: line layout, tolerant decoding, refused text.
#include "persistence/bin_base64.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "persistence_test_support.h"

namespace brix {
namespace {

using test_support::ExpectError;
using test_support::kBagSource;

ByteArray Bytes(std::string_view text) { return ByteArray(text.begin(), text.end()); }

TEST(BinBase64, EncodesWithPaddingAndA72CharacterLineLayout) {
  EXPECT_EQ(EncodeBinBase64({}), "");
  EXPECT_EQ(EncodeBinBase64({0}), "AA==");
  EXPECT_EQ(EncodeBinBase64({0, 0}), "AAA=");
  EXPECT_EQ(EncodeBinBase64({1, 2, 3}), "AQID");
  EXPECT_EQ(EncodeBinBase64({0xFB, 0xFF}), "+/8=");
  EXPECT_EQ(EncodeBinBase64(ByteArray(54, 0)), std::string(72, 'A'));
  EXPECT_EQ(EncodeBinBase64(ByteArray(55, 0)), std::string(72, 'A') + "\nAA==");
  EXPECT_EQ(EncodeBinBase64(ByteArray(108, 0)), std::string(72, 'A') + "\n" + std::string(72, 'A'));
}

TEST(BinBase64, DecodingSkipsWhitespaceAndAcceptsMissingPadding) {
  EXPECT_EQ(DecodeBinBase64("\nYmF\r\t z  ZTY0\nIHRlc3Q=\n"), Bytes("base64 test"));
  EXPECT_EQ(DecodeBinBase64("AQI"), (ByteArray{1, 2}));
  EXPECT_EQ(DecodeBinBase64("AQ"), (ByteArray{1}));
  EXPECT_EQ(DecodeBinBase64("AQ= =\r\n"), (ByteArray{1}));
  EXPECT_EQ(DecodeBinBase64(" "), ByteArray{});
}

TEST(BinBase64, RoundTripsEveryLength) {
  std::mt19937 random(7);
  for (std::size_t length = 0; length < 300; ++length) {
    ByteArray bytes(length);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random());
    EXPECT_EQ(DecodeBinBase64(EncodeBinBase64(bytes)), bytes) << length;
  }
}

TEST(BinBase64, RefusesOtherCharactersAndBrokenGroups) {
  const std::vector<std::pair<std::string, std::string>> cases = {
      {"AQ*D", "the character 0x2A at position 3 is not allowed."},
      {"AQ\xC3\xA9", "the character 0xC3 at position 3 is not allowed."},
      {"AQIDB", "the last group has a single character."},
      {"AQ==AQ", "data follows the padding at position 5."},
      {"AQ=", "the padding does not complete the last group."},
      {"AQID====", "the padding does not complete the last group."},
  };
  for (const auto& [text, reason] : cases) {
    ExpectError([&] { DecodeBinBase64(text); }, kErrXMLDomFailure, kBagSource,
                "Invalid Base64 text: " + reason);
  }
}

}  // namespace
}  // namespace brix
