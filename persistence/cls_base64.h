// clsBase64: byte arrays to and from Base64 text held as byte arrays, and its line breaking.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "runtime/object.h"
#include "runtime/variant.h"

namespace brix {

/// Base64 with the standard alphabet ("A"-"Z", "a"-"z", "0"-"9", "+", "/") and "=" padding, on
/// byte arrays: the text is one byte per character. Inputs are read through const references,
/// results replace the output array (its old content is dropped); the same array may be passed
/// as input and output. Empty input gives an empty output array from every operation.
/// Encoding and decoding run vectorised (AVX2) where the CPU has it, else scalar, with the
/// same bytes either way.
class clsBase64 : public Object {
 public:
  static std::shared_ptr<clsBase64> Create();
  clsBase64(const clsBase64&) = delete;
  clsBase64& operator=(const clsBase64&) = delete;

  std::string TypeName() const override { return "clsBase64"; }

  /// Builds the translation tables. They are fixed and built with the program, so calling it
  /// changes nothing; it stays callable as it was published.
  void Class_Initialize();

  /// `DataOut` = the Base64 characters of `DataIn`: 4 x ceil(n / 3) bytes, a last group of 2
  /// bytes ending in one "=", of 1 byte in two; no line breaks (`Span` adds them).
  void EncodeB64(const ByteArray& DataIn, ByteArray& DataOut);

  /// `ByteArray` = `StringIn` in the system's 8-bit code page, Windows-1250 (one byte per
  /// character; characters it cannot hold become "?", see `ToAnsiBytes`).
  void Str2ByteArray(const std::string& StringIn, brix::ByteArray& ByteArray);

  /// `OutArray` = `InArray` in lines of `CharsPerLine` bytes, each followed by CR LF. The array
  /// holds n + 2 x lines bytes, lines being n / `CharsPerLine` worked out in single precision
  /// and rounded up when not whole; copying stops when the array is full. Up to 2^24 bytes the
  /// count is exact, and `Unspan` gives back any input without CR LF pairs (any Base64 text).
  /// Beyond, single precision can count too few lines, and what does not fit is dropped from
  /// the end (for 2^24 + 1 bytes in lines of 16, the last CR LF), or too many, and the bytes
  /// left over at the end stay 0.
  /// `CharsPerLine` below 1 raises 5 "Invalid procedure call or argument" and leaves `OutArray`.
  void Span(std::int32_t CharsPerLine, const ByteArray& InArray, ByteArray& OutArray);

  /// `DataOut` = the bytes of the Base64 text `DataIn`. The array holds floor(3n / 4) - p bytes
  /// (p = 1 when the text ends in "=", 2 when in "=="; never below 0), the exact size for any
  /// padded or unpadded text. Each group of 4 characters gives 3 bytes, 1 when its third is
  /// "=", else 2 when its fourth is "="; a last group of 2 or 3 characters (unpadded text) gives
  /// 1 or 2 bytes, of 1 character none. No character is rejected: one outside the alphabet
  /// counts as 255, "=" as 64, in the bit arithmetic, and each byte keeps the low 8 bits. Groups
  /// that give fewer bytes than counted ("=" inside the text) leave the last bytes 0; bytes
  /// beyond the array's size are not written. Line breaks must be removed first (`Unspan`).
  void DecodeB64(const ByteArray& DataIn, ByteArray& DataOut);

  /// `ArrayOut` = `ArrayIn` without its CR LF pairs, found left to right in one pass: a lone CR
  /// or LF stays, and so does the CR LF of "\r\r\n\n". Every other byte is kept as it is (the
  /// code page reads each byte back as itself).
  void Unspan(const ByteArray& ArrayIn, ByteArray& ArrayOut);

 private:
  clsBase64() = default;
};

}  // namespace brix
