#include "platform/SharedText.h"

#include <cstddef>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace platform {

namespace {

constexpr std::size_t RoomOfBlock = 4080;  // a page with what the allocator adds

constexpr std::size_t Aligned(std::size_t bytes) { return (bytes + 3) / 4 * 4; }

}  // namespace

/// Its texts follow it.
struct SharedText::Block {
  std::uint32_t Users;
  std::uint32_t Used;

  static Block* Make(std::size_t bytes) {
    return new (::operator new(bytes)) Block{0, static_cast<std::uint32_t>(sizeof(Block))};
  }

  Place* Add(std::string_view text) {
    char* const at = reinterpret_cast<char*>(this) + Used;
    auto* const place = new (at) Place{Used, static_cast<std::uint32_t>(text.size())};
    std::memcpy(place + 1, text.data(), text.size());
    Used += static_cast<std::uint32_t>(Aligned(sizeof(Place) + text.size()));
    ++Users;
    return place;
  }
};

const SharedText::Place* SharedText::Put(std::string_view text) {
  if (text.empty()) return nullptr;
  if (text.size() > std::numeric_limits<std::uint32_t>::max() / 2) {
    throw std::length_error("text too long");
  }
  const std::size_t room = Aligned(sizeof(Place) + text.size());
  // A long one for itself, so that it goes when its own last user goes.
  if (room > RoomOfBlock / 4) return Block::Make(sizeof(Block) + room)->Add(text);

  static Block* open = nullptr;  // counts as a user of its own
  if (open != nullptr && open->Users == 1) open->Used = sizeof(Block);
  if (open == nullptr || open->Used + room > RoomOfBlock) {
    Block* const next = Block::Make(RoomOfBlock);
    ++next->Users;
    if (open != nullptr && --open->Users == 0) ::operator delete(open);
    open = next;
  }
  return open->Add(text);
}

void SharedText::Free(const Place* place) { ::operator delete(&UsersOf(place)); }

}  // namespace platform
