// The string builder: byte-counted UTF-16 buffer with quantum growth and a scratch buffer.
#include "diagnostics/string_builder.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <new>
#include <utility>

#include "runtime/error.h"
#include "runtime/error_numbers.h"

namespace brix {
namespace {

constexpr std::int64_t kMaxLong = std::numeric_limits<std::int32_t>::max();
constexpr const char* kOutOfRange = "Argument(s) out of range.";

// A byte size as a Long; sizes past 32 bits raise the overflow error.
std::int32_t CheckedSize(std::int64_t bytes) {
  if (bytes > kMaxLong) RaiseRuntimeError(kErrOverflow);
  return static_cast<std::int32_t>(bytes);
}

[[noreturn]] void RaiseRange(const char* source, const char* description) {
  Raise(kErrStringBuilder, source, description);
}

}  // namespace

void StringBuilder::Units::Reserve(std::size_t units) {
  if (units <= room) return;
  const std::size_t grown = std::max(units, 2 * room);
  void* moved = std::realloc(data.get(), grown * sizeof(char16_t));
  if (!moved) throw std::bad_alloc();
  (void)data.release();
  data.reset(static_cast<char16_t*>(moved));
  room = grown;
}

StringBuilder::StringBuilder() {
  buffer_.Reserve(static_cast<std::size_t>(capacity_ / 2));
  std::memset(buffer_.data.get(), 0, static_cast<std::size_t>(capacity_));
}

std::shared_ptr<StringBuilder> StringBuilder::Create() {
  return std::shared_ptr<StringBuilder>(new StringBuilder());
}

void StringBuilder::SetBufferBump(std::int32_t value) {
  if (value <= 0) return;
  bump_ = CheckedSize((static_cast<std::int64_t>(value) + 1) / 2 * 2);
}

void StringBuilder::SetCapacity(std::int32_t value) {
  if (value <= 0) return;
  const std::int64_t rounded = (static_cast<std::int64_t>(value) + bump_ - 1) / bump_ * bump_;
  const std::int32_t capacity = CheckedSize(rounded);
  // The capacity grows by bumps, but the memory behind it doubles, so that growing a long text
  // bump by bump does not copy it over and over.
  buffer_.Reserve(static_cast<std::size_t>(capacity / 2));
  // Units gained read as zeros, also where a smaller capacity had cut the text before.
  if (capacity > capacity_) {
    std::memset(buffer_.data.get() + capacity_ / 2, 0,
                static_cast<std::size_t>(capacity - capacity_));
  }
  capacity_ = capacity;
  if (length_ > capacity_) length_ = capacity_;
  // The scratch buffer is sized again without keeping anything.
  scratch_written_ = false;
}

bool StringBuilder::CharInRange(std::int32_t position) const {
  // Hosts rely on the position being compared with the length in bytes, which lets positions
  // past the text through; the buffer's own size still bounds the access.
  return position >= 0 && position < length_ && position < capacity_ / 2;
}

std::u16string StringBuilder::Chars(std::int32_t position) const {
  if (!CharInRange(position)) {
    RaiseRange("CStringBuilder.Chars", "Tried reading character past end of buffer.");
  }
  return std::u16string(1, buffer_.data[static_cast<std::size_t>(position)]);
}

void StringBuilder::SetChars(std::int32_t position, std::u16string_view value) {
  if (!CharInRange(position)) {
    RaiseRange("CStringBuilder.Chars", "Tried assigning character past end of buffer.");
  }
  buffer_.data[static_cast<std::size_t>(position)] = value.empty() ? u'\0' : value.front();
}

void StringBuilder::Setlength(std::int32_t value) {
  if (value < 0) return;
  const std::int32_t bytes = CheckedSize(2 * static_cast<std::int64_t>(value));
  if (bytes > capacity_) SetCapacity(bytes);
  length_ = bytes;
}

StringBuilder& StringBuilder::AppendGrowing(std::u16string_view text) {
  const std::int32_t needed = CheckedSize(length_ + 2 * static_cast<std::int64_t>(text.size()));
  SetCapacity(needed);
  return Append(text);
}

std::int32_t StringBuilder::EnsureCapacity(std::int32_t new_capacity) {
  if (new_capacity > capacity_) SetCapacity(new_capacity);
  return capacity_;
}

StringBuilder& StringBuilder::Insert(std::int32_t start_index, std::u16string_view text) {
  const std::int64_t start = 2 * static_cast<std::int64_t>(start_index);
  // The check is against the capacity, not the length, so an empty text may be "inserted"
  // past the end of the text without complaint.
  if (start < 0 || start > capacity_) RaiseRange("CStringBuilder.Insert", kOutOfRange);
  if (text.empty()) return *this;
  // A start past the text would leave a tail of negative size to move.
  if (start > length_) RaiseRange("CStringBuilder.Insert", kOutOfRange);
  const std::int64_t needed = length_ + 2 * static_cast<std::int64_t>(text.size());
  EnsureCapacity(CheckedSize(needed));
  if (!scratch_written_) {
    scratch_.Reserve(static_cast<std::size_t>(capacity_ / 2));
    std::memset(scratch_.data.get(), 0, static_cast<std::size_t>(capacity_));
  }
  char16_t* from = buffer_.data.get();
  char16_t* to = scratch_.data.get();
  const std::size_t head = static_cast<std::size_t>(start / 2);
  const std::size_t tail = static_cast<std::size_t>(length_ / 2) - head;
  std::memcpy(to, from, head * sizeof(char16_t));
  std::memcpy(to + head, text.data(), text.size() * sizeof(char16_t));
  std::memcpy(to + head + text.size(), from + head, tail * sizeof(char16_t));
  // The buffers change roles instead of copying the result back; the former buffer, now the
  // scratch, holds a whole capacity of written units.
  std::swap(buffer_, scratch_);
  scratch_written_ = true;
  length_ = static_cast<std::int32_t>(needed);
  return *this;
}

StringBuilder& StringBuilder::Remove(std::int32_t start_index, std::int32_t count) {
  const std::int64_t start = 2 * static_cast<std::int64_t>(start_index);
  const std::int64_t bytes = 2 * static_cast<std::int64_t>(count);
  // Doubling in 64 bits cannot overflow, and a start or count that doubles past 32 bits can
  // never lie inside the text, so one test against the length covers both.
  if (start < 0 || bytes < 0 || start + bytes > length_) {
    RaiseRange("CStringBuilder.Remove", kOutOfRange);
  }
  const std::size_t from = static_cast<std::size_t>((start + bytes) / 2);
  const std::size_t to = static_cast<std::size_t>(start / 2);
  std::memmove(buffer_.data.get() + to, buffer_.data.get() + from,
               (static_cast<std::size_t>(length_ / 2) - from) * sizeof(char16_t));
  length_ -= static_cast<std::int32_t>(bytes);
  return *this;
}

}  // namespace brix
