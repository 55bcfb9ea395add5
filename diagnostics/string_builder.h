// A growable UTF-16 text buffer whose sizes are counted in bytes and grow by a fixed quantum.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

namespace brix {

/// Builds UTF-16 text in a buffer that grows by whole multiples of `BufferBump` bytes, so that
/// appending many short strings copies little. Sizes are kept in bytes (two per character); the
/// interface mixes units on purpose: `BufferBump`, `Capacity` and `EnsureCapacity` count bytes,
/// `length`, `Chars`, `Insert` and `Remove` count characters (UTF-16 code units).
///
/// Range errors are raised with number `kErrStringBuilder` (0x80040200), a source naming the
/// member ("CStringBuilder.Chars", "CStringBuilder.Insert", "CStringBuilder.Remove") and a fixed
/// description. A byte size that does not fit 32 bits raises the overflow error 6. A failed
/// operation changes nothing.
///
/// Bytes past the length keep whatever was written there earlier: shortening through
/// `Setlength` and lengthening again brings the old text back, and `Chars` may read and write
/// them.
class StringBuilder {
 public:
  static std::shared_ptr<StringBuilder> Create();

  StringBuilder(const StringBuilder&) = delete;
  StringBuilder& operator=(const StringBuilder&) = delete;

  /// Growth quantum in bytes, 4096 at first; always even.
  std::int32_t BufferBump() const { return bump_; }
  /// Ignored unless `value` > 0; an odd value is rounded up to the next even number (2147483647
  /// therefore raises 6). Does not touch the capacity.
  void SetBufferBump(std::int32_t value);

  /// Size of the buffer in bytes, 4096 at first; a multiple of the bump in force when it was
  /// last set.
  std::int32_t Capacity() const { return capacity_; }
  /// Ignored unless `value` > 0. Rounds `value` up to a multiple of `BufferBump` and resizes the
  /// buffer to it, keeping its contents; a smaller capacity cuts the text. Raises 6 when the
  /// rounded size does not fit 32 bits.
  void SetCapacity(std::int32_t value);

  /// The one-character string at character `position`. Any position below twice the length
  /// passes (the check compares characters with bytes, deliberately), so the upper half reads
  /// code units past the end of the text; a position outside the buffer itself, or negative,
  /// raises "Tried reading character past end of buffer.".
  std::u16string Chars(std::int32_t position = 0) const;
  /// Writes the first code unit of `value` (U+0000 when `value` is empty) at character
  /// `position`; the range check is the getter's, raising "Tried assigning character past end
  /// of buffer.". The length does not change.
  void SetChars(std::int32_t position, std::u16string_view value);

  /// Length of the text in characters.
  std::int32_t length() const { return length_ / 2; }
  /// Ignored if negative. Grows the capacity to 2 x `value` bytes when needed, then sets the
  /// length without clearing or padding anything. Raises 6 when 2 x `value` does not fit 32 bits.
  void Setlength(std::int32_t value);

  /// Appends `text`; an empty text changes nothing. Raises 6 when the new length in bytes does
  /// not fit 32 bits.
  StringBuilder& Append(std::u16string_view text) {
    // Inline: hosts append many short strings, and the common case is one copy.
    if (text.size() > static_cast<std::size_t>(capacity_ - length_) / 2) return AppendGrowing(text);
    std::memcpy(buffer_.data.get() + length_ / 2, text.data(), text.size() * sizeof(char16_t));
    length_ += static_cast<std::int32_t>(text.size() * sizeof(char16_t));
    return *this;
  }

  /// Sets the capacity to `new_capacity` bytes (rounded up as `SetCapacity` does) when it
  /// exceeds the current one; never shrinks. Returns the capacity in bytes.
  std::int32_t EnsureCapacity(std::int32_t new_capacity);

  /// Inserts `text` before character `start_index`. The range check accepts any start whose
  /// byte offset lies within the capacity (not the length); an empty text then changes nothing,
  /// and a non-empty one refuses a start past the end of the text, since there is no tail to
  /// move. Both refusals raise "Argument(s) out of range." with source "CStringBuilder.Insert".
  StringBuilder& Insert(std::int32_t start_index, std::u16string_view text);

  /// Removes `count` characters from character `start_index`. A negative start or count, or a
  /// range reaching past the end of the text, raises "Argument(s) out of range." with source
  /// "CStringBuilder.Remove".
  StringBuilder& Remove(std::int32_t start_index, std::int32_t count = 1);

  /// The text of the first length bytes.
  std::u16string ToString() const { return std::u16string(buffer_.data.get(), length_ / 2); }

 private:
  StringBuilder();

  // Checks a character position for `Chars`: below twice the length, inside the buffer.
  bool CharInRange(std::int32_t position) const;
  // Append when the text does not fit the capacity: grows it first.
  StringBuilder& AppendGrowing(std::u16string_view text);

  // Code units in memory from malloc: growing can extend the block in place instead of
  // copying the text and touching fresh pages each time.
  struct Units {
    struct Free {
      void operator()(char16_t* units) const { std::free(units); }
    };
    std::unique_ptr<char16_t[], Free> data;
    std::size_t room = 0;
    // Makes room for at least `units` (doubling), keeping the contents; std::bad_alloc when
    // the memory is not there.
    void Reserve(std::size_t units);
  };

  std::int32_t bump_ = 4096;
  std::int32_t capacity_ = 4096;
  std::int32_t length_ = 0;
  // Capacity / 2 code units are in use; the room behind them may be larger.
  Units buffer_;
  // The second buffer of Insert. Until Insert writes it after the last change of capacity it
  // stands for a zeroed buffer, so a builder that never inserts never fills it.
  Units scratch_;
  bool scratch_written_ = false;
};

}  // namespace brix
