// Random operation sequences on the string builder checked against a plain model of its rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "diagnostics/string_builder.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

constexpr const char* kRange = "-2147220992 CStringBuilder.";

// Two byte buffers, sizes in bytes, written the obvious way: growth, cut and scratch swap.
class Model {
 public:
  std::string SetBufferBump(std::int32_t v) {
    if (v > 0) bump_ = v + (v & 1);
    return "ok";
  }
  std::string SetCapacity(std::int64_t r) {
    if (r <= 0) return "ok";
    capacity_ = (r + bump_ - 1) / bump_ * bump_;
    length_ = std::min(length_, capacity_);
    buffer_.resize(static_cast<std::size_t>(capacity_ / 2), 0);
    scratch_.assign(static_cast<std::size_t>(capacity_ / 2), 0);
    return "ok";
  }
  std::string EnsureCapacity(std::int64_t r) {
    if (r > capacity_) SetCapacity(r);
    return std::to_string(capacity_);
  }
  std::string Chars(std::int64_t p) {
    if (!CharOk(p)) return std::string(kRange) + "Chars: Tried reading character past end of buffer.";
    return std::to_string(buffer_[static_cast<std::size_t>(p)]);
  }
  std::string SetChars(std::int64_t p, char16_t c) {
    if (!CharOk(p)) return std::string(kRange) + "Chars: Tried assigning character past end of buffer.";
    buffer_[static_cast<std::size_t>(p)] = c;
    return "ok";
  }
  std::string Setlength(std::int64_t v) {
    if (v < 0) return "ok";
    if (2 * v > capacity_) SetCapacity(2 * v);
    length_ = 2 * v;
    return "ok";
  }
  std::string Append(const std::u16string& t) {
    if (t.empty()) return "ok";
    EnsureCapacity(length_ + 2 * static_cast<std::int64_t>(t.size()));
    std::copy(t.begin(), t.end(), buffer_.begin() + length_ / 2);
    length_ += 2 * static_cast<std::int64_t>(t.size());
    return "ok";
  }
  std::string Insert(std::int64_t s, const std::u16string& t) {
    const std::string error = std::string(kRange) + "Insert: Argument(s) out of range.";
    if (s < 0 || 2 * s > capacity_) return error;
    if (t.empty()) return "ok";
    if (2 * s > length_) return error;
    EnsureCapacity(length_ + 2 * static_cast<std::int64_t>(t.size()));
    std::vector<char16_t> text(buffer_.begin(), buffer_.begin() + length_ / 2);
    text.insert(text.begin() + s, t.begin(), t.end());
    std::copy(text.begin(), text.end(), scratch_.begin());
    std::swap(buffer_, scratch_);
    length_ += 2 * static_cast<std::int64_t>(t.size());
    return "ok";
  }
  std::string Remove(std::int64_t s, std::int64_t k) {
    if (s < 0 || k < 0 || 2 * (s + k) > length_) {
      return std::string(kRange) + "Remove: Argument(s) out of range.";
    }
    // The tail moves down; the units it leaves behind keep what they held.
    for (std::int64_t i = s; i < length_ / 2 - k; ++i) {
      buffer_[static_cast<std::size_t>(i)] = buffer_[static_cast<std::size_t>(i + k)];
    }
    length_ -= 2 * k;
    return "ok";
  }

  bool CharOk(std::int64_t p) const {
    // Characters compared with bytes: twice the text's length in characters.
    return p >= 0 && p < length_ && p < capacity_ / 2;
  }
  std::int64_t bump_ = 4096, capacity_ = 4096, length_ = 0;
  std::vector<char16_t> buffer_ = std::vector<char16_t>(2048, 0);
  std::vector<char16_t> scratch_ = std::vector<char16_t>(2048, 0);
};

std::u16string RandomText(std::mt19937& rng) {
  std::u16string text(std::uniform_int_distribution<int>(0, 12)(rng), u'a');
  for (char16_t& c : text) c = static_cast<char16_t>(u'a' + rng() % 26);
  return text;
}

// Every state the interface can observe: sizes, the text and every character `Chars` admits.
void ExpectSameState(const Model& model, const StringBuilder& builder, int step) {
  ASSERT_EQ(builder.BufferBump(), model.bump_) << "step " << step;
  ASSERT_EQ(builder.Capacity(), model.capacity_) << "step " << step;
  ASSERT_EQ(builder.length(), model.length_ / 2) << "step " << step;
  ASSERT_EQ(builder.ToString(),
            std::u16string(model.buffer_.begin(), model.buffer_.begin() + model.length_ / 2))
      << "step " << step;
  for (std::int32_t p = 0; model.CharOk(p); ++p) {
    ASSERT_EQ(builder.Chars(p)[0], model.buffer_[static_cast<std::size_t>(p)])
        << "step " << step << " position " << p;
  }
}

// "ok", or the error `action` raised as number, source and description.
std::string Try(const std::function<void()>& action) {
  return test_support::Outcome([&] {
    action();
    return std::string("ok");
  });
}

TEST(StringBuilderModel, RandomOperationsAgreeWithTheModel) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 rng(seed);
    Model model;
    auto builder = StringBuilder::Create();
    auto pick = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    const int bump = pick(1, 40);
    model.SetBufferBump(bump);
    builder->SetBufferBump(bump);
    for (int step = 0; step < 300; ++step) {
      const std::int32_t around_text = pick(-2, static_cast<int>(model.length_ / 2) + 3);
      const std::int32_t any = pick(-3, static_cast<int>(model.capacity_) + 5);
      std::string expected;
      std::string actual;
      switch (pick(0, 9)) {
        case 0: {
          const std::int32_t v = pick(-3, 40);
          expected = model.SetBufferBump(v);
          actual = Try([&] { builder->SetBufferBump(v); });
          break;
        }
        case 1: {
          const std::int32_t v = pick(-5, 120);
          expected = model.SetCapacity(v);
          actual = Try([&] { builder->SetCapacity(v); });
          break;
        }
        case 2:
          expected = model.EnsureCapacity(any);
          actual = test_support::Outcome([&] { return std::to_string(builder->EnsureCapacity(any)); });
          break;
        case 3:
          expected = model.Chars(any / 2);
          actual = test_support::Outcome([&] { return std::to_string(builder->Chars(any / 2)[0]); });
          break;
        case 4: {
          const char16_t c = static_cast<char16_t>(u'A' + pick(0, 25));
          expected = model.SetChars(any / 2, c);
          actual = Try([&] { builder->SetChars(any / 2, std::u16string(1, c)); });
          break;
        }
        case 5:
          expected = model.Setlength(around_text);
          actual = Try([&] { builder->Setlength(around_text); });
          break;
        case 6:
        case 7: {
          const std::u16string text = RandomText(rng);
          expected = model.Append(text);
          actual = Try([&] { builder->Append(text); });
          break;
        }
        case 8: {
          const std::u16string text = RandomText(rng);
          const std::int32_t at = pick(0, 3) == 0 ? any / 2 : around_text;
          expected = model.Insert(at, text);
          actual = Try([&] { builder->Insert(at, text); });
          break;
        }
        default: {
          const std::int32_t count = pick(-1, 4);
          expected = model.Remove(around_text, count);
          actual = Try([&] { builder->Remove(around_text, count); });
          break;
        }
      }
      ASSERT_EQ(actual, expected) << "seed " << seed << " step " << step;
      ASSERT_NO_FATAL_FAILURE(ExpectSameState(model, *builder, step)) << "seed " << seed;
    }
  }
}

}  // namespace
}  // namespace brix
