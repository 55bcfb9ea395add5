// Feeds arbitrary bytes to clsBase64 and to the XML bag's "bin.base64" reader: DecodeB64, Unspan
// and Span never fail on any input (Span only refuses a line length below 1), the bag's reader
// decodes or raises brix::Error, all stay within their arrays, and the round trips hold.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "persistence/bin_base64.h"
#include "persistence/cls_base64.h"
#include "runtime/error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  auto codec = brix::clsBase64::Create();
  const brix::ByteArray in(data, data + size);
  brix::ByteArray decoded, joined, spanned, encoded;
  codec->DecodeB64(in, decoded);
  codec->Unspan(in, joined);
  // The first byte picks the line length, 1 to 256.
  const std::int32_t chars_per_line = size == 0 ? 1 : data[0] + 1;
  codec->Span(chars_per_line, in, spanned);
  codec->Unspan(spanned, joined);
  // Line breaks already in the input may pair with the CR LF that Span adds; without them the
  // round trip is exact.
  bool has_line_break = false;
  for (std::uint8_t byte : in) has_line_break |= byte == '\r' || byte == '\n';
  if (!has_line_break && size < (std::size_t{1} << 24) && joined != in) std::abort();
  codec->EncodeB64(in, encoded);
  codec->DecodeB64(encoded, decoded);
  if (decoded != in) std::abort();
  try {
    brix::DecodeBinBase64(std::string_view(reinterpret_cast<const char*>(data), size));
  } catch (const brix::Error&) {
    // Text that is not Base64 raises the bag's error: that is the expected outcome.
  }
  if (brix::DecodeBinBase64(brix::EncodeBinBase64(in)) != in) std::abort();
  return 0;
}
