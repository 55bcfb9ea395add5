// Random operation sequences on the string builder checked against a plain model of its rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <vector>

#include "diagnostics/string_builder.h"
#include "tests/support/expect_error.h"

namespace brix {
namespace {

const std::string kRange = "-2147220992 CStringBuilder.";

// Two buffers of code units, sizes in bytes, every rule written the obvious way.
struct Model {
  std::int64_t bump = 4096, capacity = 4096, length = 0;
  std::vector<char16_t> buffer = std::vector<char16_t>(2048), scratch = buffer;

  void SetCapacity(std::int64_t r) {
    if (r <= 0) return;
    capacity = (r + bump - 1) / bump * bump;
    length = std::min(length, capacity);
    buffer.resize(capacity / 2);
    scratch.assign(capacity / 2, 0);
  }
  void Ensure(std::int64_t r) {
    if (r > capacity) SetCapacity(r);
  }
  // Characters compared with bytes: up to twice the text, inside the buffer.
  bool CharOk(std::int64_t p) const { return p >= 0 && p < length && p < capacity / 2; }
  void Append(const std::u16string& t) {
    if (t.empty()) return;
    Ensure(length + 2 * std::int64_t(t.size()));
    std::copy(t.begin(), t.end(), buffer.begin() + length / 2);
    length += 2 * std::int64_t(t.size());
  }
  std::string Insert(std::int64_t s, const std::u16string& t) {
    if (s < 0 || 2 * s > capacity || (!t.empty() && 2 * s > length)) {
      return kRange + "Insert: Argument(s) out of range.";
    }
    if (t.empty()) return "ok";
    Ensure(length + 2 * std::int64_t(t.size()));
    std::vector<char16_t> text(buffer.begin(), buffer.begin() + length / 2);
    text.insert(text.begin() + s, t.begin(), t.end());
    std::copy(text.begin(), text.end(), scratch.begin());
    std::swap(buffer, scratch);
    length += 2 * std::int64_t(t.size());
    return "ok";
  }
  std::string Remove(std::int64_t s, std::int64_t k) {
    if (s < 0 || k < 0 || 2 * (s + k) > length) return kRange + "Remove: Argument(s) out of range.";
    // The tail moves down; the units it leaves behind keep what they held.
    std::copy(buffer.begin() + s + k, buffer.begin() + length / 2, buffer.begin() + s);
    length -= 2 * k;
    return "ok";
  }
};

std::string Try(const std::function<void()>& action) {
  return test_support::Outcome([&] {
    action();
    return std::string("ok");
  });
}

TEST(StringBuilderModel, RandomOperationsAgreeWithTheModel) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    std::mt19937 rng(seed);
    auto pick = [&](int low, int high) { return std::uniform_int_distribution(low, high)(rng); };
    Model m;
    auto b = StringBuilder::Create();
    m.bump = pick(1, 20) * 2;
    b->SetBufferBump(static_cast<std::int32_t>(m.bump));
    for (int step = 0; step < 300; ++step) {
      const int near_end = pick(-2, static_cast<int>(m.length / 2) + 3);
      const int any = pick(-3, static_cast<int>(m.capacity) + 5);
      std::u16string text(pick(0, 12), u'a');
      for (char16_t& c : text) c = static_cast<char16_t>(u'a' + pick(0, 25));
      std::string expected = "ok", actual;
      switch (pick(0, 9)) {
        case 0:
          if (near_end > 0) m.bump = near_end + (near_end & 1);
          actual = Try([&] { b->SetBufferBump(near_end); });
          break;
        case 1:
          m.SetCapacity(any / 4);
          actual = Try([&] { b->SetCapacity(any / 4); });
          break;
        case 2:
          m.Ensure(any);
          expected = std::to_string(m.capacity);
          actual = test_support::Outcome([&] { return std::to_string(b->EnsureCapacity(any)); });
          break;
        case 3:
          expected = m.CharOk(any / 2)
                         ? std::string(1, char(m.buffer[any / 2]))
                         : kRange + "Chars: Tried reading character past end of buffer.";
          actual =
              test_support::Outcome([&] { return std::string(1, char(b->Chars(any / 2)[0])); });
          break;
        case 4:
          if (m.CharOk(any / 2))
            m.buffer[any / 2] = text.empty() ? 0 : text[0];
          else
            expected = kRange + "Chars: Tried assigning character past end of buffer.";
          actual = Try([&] { b->SetChars(any / 2, text); });
          break;
        case 5:
          if (near_end >= 0) {
            m.Ensure(2 * near_end);
            m.length = 2 * near_end;
          }
          actual = Try([&] { b->Setlength(near_end); });
          break;
        case 6:
        case 7:
          m.Append(text);
          actual = Try([&] { b->Append(text); });
          break;
        case 8: {
          const int at = pick(0, 3) == 0 ? any / 2 : near_end;
          expected = m.Insert(at, text);
          actual = Try([&] { b->Insert(at, text); });
          break;
        }
        default: {
          const int count = pick(-1, 4);
          expected = m.Remove(near_end, count);
          actual = Try([&] { b->Remove(near_end, count); });
        }
      }
      ASSERT_EQ(actual, expected) << "seed " << seed << " step " << step;
      ASSERT_EQ(b->BufferBump(), m.bump) << "seed " << seed << " step " << step;
      ASSERT_EQ(b->Capacity(), m.capacity) << "seed " << seed << " step " << step;
      ASSERT_EQ(b->length(), m.length / 2) << "seed " << seed << " step " << step;
      for (std::int32_t p = 0; m.CharOk(p); ++p) {
        ASSERT_EQ(b->Chars(p)[0], m.buffer[p]) << "seed " << seed << " step " << step;
      }
    }
  }
}

}  // namespace
}  // namespace brix
