#pragma once

#include <concepts>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace platform {

/// A text whose copies share one place: hundreds of thousands of rows hold the same file names,
/// sizes and dates, and each row is held by more than one table. It is never changed; another text
/// takes its place. Texts made one after the other lie side by side. For one thread alone.
class SharedText {
 public:
  SharedText() = default;
  SharedText(const SharedText& other) : place_(other.place_) {
    if (place_ != nullptr) ++UsersOf(place_);
  }
  SharedText(SharedText&& other) noexcept : place_(other.place_) { other.place_ = nullptr; }

  template <typename Text>
    requires(std::convertible_to<const Text&, std::string_view> &&
             !std::same_as<std::remove_cvref_t<Text>, SharedText>)
  SharedText(const Text& text) : place_(Put(text)) {}

  ~SharedText() {
    if (place_ != nullptr && --UsersOf(place_) == 0) Free(place_);
  }

  SharedText& operator=(const SharedText& other) {
    if (place_ != other.place_) *this = SharedText(other);
    return *this;
  }
  SharedText& operator=(SharedText&& other) noexcept {
    const Place* const before = place_;
    place_ = other.place_;
    other.place_ = before;
    return *this;
  }

  operator std::string_view() const {
    if (place_ == nullptr) return {};
    return {reinterpret_cast<const char*>(place_ + 1), place_->Size};
  }
  std::size_t size() const { return place_ == nullptr ? 0 : place_->Size; }
  bool empty() const { return place_ == nullptr; }

  template <typename Text>
    requires std::convertible_to<const Text&, std::string_view>
  friend bool operator==(const SharedText& one, const Text& other) {
    return static_cast<std::string_view>(one) == static_cast<std::string_view>(other);
  }

 private:
  /// Stands before a text's bytes, in a block with other texts.
  struct Place {
    std::uint32_t FromBlock;  ///< Bytes from the block's beginning to this.
    std::uint32_t Size;
  };
  struct Block;

  /// How many hold a text of the block; the first number in it.
  static std::uint32_t& UsersOf(const Place* place) {
    auto* const bytes = reinterpret_cast<char*>(const_cast<Place*>(place));
    return *reinterpret_cast<std::uint32_t*>(bytes - place->FromBlock);
  }
  static const Place* Put(std::string_view text);
  static void Free(const Place* place);

  const Place* place_ = nullptr;  ///< None for an empty text.
};

}  // namespace platform
