#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <unordered_map>
#include <vector>

namespace platform {

/// An upright rectangle, in any unit.
struct Area {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
  auto operator<=>(const Area&) const = default;
  bool Contains(const Area& other) const;
};

/// Which popups are on the screen. They come without being asked for, in any number and mostly at
/// one place, and thousands at once would stall the desktop: of those that asked for the same place
/// only the newest few are shown, the others wait below them and need be no windows yet. All that
/// decides whether one waits is what was asked for, never where it came to lie, so two looks at a
/// pile agree.
class PopupPile {
 public:
  /// A popup's age, from 1.
  using Number = std::uint64_t;

  /// So many at one place are on the screen from the start: none has to be waited for when the
  /// newest of them close one after the other.
  static constexpr int MostAtOnePlace = 16;

  /// A popup that is newer than all others and asks for this place. It waits.
  Number Add(const Area& place);
  /// Returns whether it was on the screen, so that others may have to come up.
  bool Remove(Number popup);

  struct Changes {
    std::vector<Number> Hide;
    std::vector<Number>
        Show;  ///< Oldest first: shown in this order, each lies over those before it.
  };
  /// What is to be done now, and counts as done. One that was moved away from under the newer ones
  /// stays on the screen: `whereIsIt` tells of those that are there.
  Changes Arrange(const std::function<Area(Number)>& whereIsIt);

 private:
  struct Pile {
    std::map<Number, bool> OnScreen;  // every popup of the place
    std::size_t Shown = 0;            // how many are on the screen
  };
  void Arrange(Pile& pile, const std::function<Area(Number)>& whereIsIt, Changes& changes) const;

  std::map<Area, Pile> piles_;
  std::unordered_map<Number, Area> places_;
  Number last_ = 0;
  Number arranged_ = 0;  // the newest one of the last arrangement
};

}  // namespace platform
