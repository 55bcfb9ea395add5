// zstd frames behind a mark and a key tag.
#include "persistence/keyed_compression.h"

#include <zstd.h>

#include <cstdint>
#include <cstring>
#include <string>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::string_view kMark = "BXZ1";
constexpr std::size_t kHeaderSize = 4 + 8;
constexpr int kLevel = 3;

/// FNV-1a over the key: enough to tell keys apart, not to hide anything.
std::uint64_t KeyTag(std::string_view key) {
  std::uint64_t hash = 14695981039346656037u;
  for (const char c : key) {
    hash ^= static_cast<std::uint8_t>(c);
    hash *= 1099511628211u;
  }
  return hash;
}

[[noreturn]] void Refuse(const std::string& reason) {
  Raise(kErrInvalidProcedureCall, "KeyedCompression", reason);
}

}  // namespace

ByteArray CompressWithKey(const ByteArray& data, std::string_view key) {
  ZSTD_CCtx* context = ZSTD_createCCtx();
  if (!context) RaiseRuntimeError(kErrOutOfMemory);
  ZSTD_CCtx_setParameter(context, ZSTD_c_compressionLevel, kLevel);
  ZSTD_CCtx_setParameter(context, ZSTD_c_checksumFlag, 1);
  ByteArray out(kHeaderSize + ZSTD_compressBound(data.size()));
  std::memcpy(out.data(), kMark.data(), kMark.size());
  const std::uint64_t tag = KeyTag(key);
  std::memcpy(out.data() + kMark.size(), &tag, sizeof tag);
  const std::size_t written = ZSTD_compress2(context, out.data() + kHeaderSize,
                                             out.size() - kHeaderSize, data.data(), data.size());
  ZSTD_freeCCtx(context);
  if (ZSTD_isError(written)) Refuse(std::string("zstd: ") + ZSTD_getErrorName(written));
  out.resize(kHeaderSize + written);
  return out;
}

ByteArray DecompressWithKey(const ByteArray& data, std::string_view key) {
  if (data.size() < kHeaderSize || std::memcmp(data.data(), kMark.data(), kMark.size()) != 0) {
    Refuse("The bytes are not compressed data.");
  }
  std::uint64_t tag;
  std::memcpy(&tag, data.data() + kMark.size(), sizeof tag);
  if (tag != KeyTag(key)) Refuse("The bytes were compressed under another key.");
  const std::uint8_t* frame = data.data() + kHeaderSize;
  const std::size_t frame_size = data.size() - kHeaderSize;
  const unsigned long long claimed = ZSTD_getFrameContentSize(frame, frame_size);
  if (claimed == ZSTD_CONTENTSIZE_ERROR || claimed == ZSTD_CONTENTSIZE_UNKNOWN) {
    Refuse("The compressed frame is damaged.");
  }
  if (claimed > kMaxDecompressedSize) {
    Refuse("The compressed data claims " + std::to_string(claimed) +
           " bytes, more than the 268435456 allowed.");
  }
  ByteArray out(static_cast<std::size_t>(claimed));
  const std::size_t size = ZSTD_decompress(out.data(), out.size(), frame, frame_size);
  if (ZSTD_isError(size) || size != out.size()) {
    Refuse(std::string("The compressed frame is damaged: ") +
           (ZSTD_isError(size) ? ZSTD_getErrorName(size) : "its size is not the one it claims"));
  }
  return out;
}

}  // namespace brix
