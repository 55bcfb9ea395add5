// Drives the string builder with operations read from the input: any sequence of sizes,
// positions and texts must work or raise brix::Error, never read or write outside its buffers.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>

#include "diagnostics/string_builder.h"
#include "runtime/error.h"

namespace {

/// Reads the input front to back; past its end every read gives zeros.
class Input {
 public:
  Input(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}
  bool Done() const { return at_ >= size_; }
  std::uint8_t Byte() { return at_ < size_ ? data_[at_++] : 0; }
  std::int32_t Number() {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) value = value << 8 | Byte();
    return static_cast<std::int32_t>(value);
  }
  std::u16string Text() {
    std::u16string text(Byte() % 40, u'\0');
    for (char16_t& unit : text) unit = static_cast<char16_t>(Byte() << 8 | Byte());
    return text;
  }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::size_t at_ = 0;
};

// Sizes are kept to a megabyte so that the fuzzer looks for faults, not for memory to exhaust.
std::int32_t Size(Input& in) { return in.Number() % (1 << 20); }

void Step(brix::StringBuilder& builder, Input& in) {
  switch (in.Byte() % 10) {
    case 0:
      builder.SetBufferBump(Size(in));
      break;
    case 1:
      builder.SetCapacity(Size(in));
      break;
    case 2:
      builder.EnsureCapacity(Size(in));
      break;
    case 3:
      builder.Setlength(Size(in));
      break;
    case 4:
      builder.Append(in.Text());
      break;
    case 5: {
      std::int32_t at = in.Number();
      builder.Insert(at, in.Text());
      break;
    }
    case 6: {
      std::int32_t at = in.Number();
      builder.Remove(at, in.Number());
      break;
    }
    case 7:
      builder.Chars(in.Number());
      break;
    case 8: {
      std::int32_t at = in.Number();
      builder.SetChars(at, in.Text());
      break;
    }
    default:
      builder.ToString();
      break;
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Input in(data, size);
  auto builder = brix::StringBuilder::Create();
  while (!in.Done()) {
    try {
      Step(*builder, in);
    } catch (const brix::Error&) {
      // Out-of-range arguments raise the builder's own error: an expected outcome.
    }
  }
  return 0;
}
