// The envelope's compression: zstd frames tied to a key string, so that bytes compressed under
// one key are refused under another. The key identifies; it does not encrypt.
#pragma once

#include <cstddef>
#include <string_view>

#include "runtime/variant.h"

namespace brix {

/// The largest content a compressed array may claim: 256 MiB. Larger claims are refused before
/// anything is allocated.
inline constexpr std::size_t kMaxDecompressedSize = std::size_t{256} << 20;

/// `data` compressed: a four-byte mark "BXZ1", an eight-byte tag of `key`, then one zstd frame
/// with its content size and checksum. Raises 7 when memory runs out.
ByteArray CompressWithKey(const ByteArray& data, std::string_view key);

/// The bytes `CompressWithKey(x, key)` was given. Raises 5 with the reason for bytes without
/// the mark, compressed under another key, claiming more than `kMaxDecompressedSize`, or whose
/// frame does not decode (a wrong checksum included).
ByteArray DecompressWithKey(const ByteArray& data, std::string_view key);

}  // namespace brix
