// Where each key of a keyed collection stands: an open-addressing table of key hashes and
// positions, the keys themselves kept by the collection.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brix {

class KeyPositions {
 public:
  using Keys = std::vector<std::optional<std::string>>;
  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  static std::size_t Hash(std::string_view folded_key);

  /// The position whose key in `keys` is `folded_key` (hashed `hash`), or `kNone`.
  std::size_t Find(std::size_t hash, std::string_view folded_key, const Keys& keys) const;

  /// Makes room for `count` keys in all.
  void Reserve(std::size_t count);

  /// Makes room for one more key, so that the next `Add` cannot fail.
  void ReserveOneMore();

  /// Records that the key hashed `hash` stands at `position`; room was reserved.
  void Add(std::size_t hash, std::size_t position);

  /// Records every key of `keys` again, after positions moved; `keys` holds no more keys than
  /// were recorded, so the table has room and nothing is allocated.
  void Rebuild(const Keys& keys);

  void Clear();

 private:
  struct Slot {
    std::size_t hash = 0;
    std::size_t position = kNone;  // kNone: empty
  };
  void Place(const Slot& slot);
  void Resize(std::size_t slot_count);

  std::vector<Slot> slots_;  // a power of two in size, at most half used
  std::size_t used_ = 0;
};

}  // namespace brix
