#include "platform/common/PopupPile.h"

#include <algorithm>

namespace platform {

bool Area::Contains(const Area& other) const {
  return Left <= other.Left && Top <= other.Top && other.Left + other.Width <= Left + Width &&
         other.Top + other.Height <= Top + Height;
}

PopupPile::Number PopupPile::Add(const Area& place) {
  piles_[place].OnScreen.emplace(++last_, false);
  places_.emplace(last_, place);
  return last_;
}

bool PopupPile::Remove(Number popup) {
  const auto place = places_.find(popup);
  if (place == places_.end()) return false;
  const auto pile = piles_.find(place->second);
  const auto found = pile->second.OnScreen.find(popup);
  const bool wasOnScreen = found->second;
  if (wasOnScreen) --pile->second.Shown;
  pile->second.OnScreen.erase(found);
  if (pile->second.OnScreen.empty()) piles_.erase(pile);
  places_.erase(place);
  return wasOnScreen;
}

PopupPile::Changes PopupPile::Arrange(const std::function<Area(Number)>& whereIsIt) {
  Changes changes;
  for (auto& [place, pile] : piles_) Arrange(pile, whereIsIt, changes);
  arranged_ = last_;
  std::sort(changes.Show.begin(), changes.Show.end());
  return changes;
}

void PopupPile::Arrange(Pile& pile, const std::function<Area(Number)>& whereIsIt,
                        Changes& changes) const {
  std::vector<Area> over;  // those on the screen already
  std::size_t under = pile.Shown;
  int kept = 0;
  for (auto each = pile.OnScreen.rbegin(); each != pile.OnScreen.rend(); ++each) {
    auto& [popup, isOnScreen] = *each;
    const bool isFull = kept >= MostAtOnePlace;
    const bool isNew = popup > arranged_;
    if (isOnScreen) {
      --under;
      const Area area = whereIsIt(popup);
      const bool isCovered = std::any_of(
          over.begin(), over.end(), [&area](const Area& other) { return other.Contains(area); });
      if (isFull && isCovered) {
        changes.Hide.push_back(popup);
        isOnScreen = false;
        --pile.Shown;
        continue;
      }
      over.push_back(area);
    } else if (!isFull && (isNew || over.empty())) {
      // None that comes up late has to go below another one.
      changes.Show.push_back(popup);
      isOnScreen = true;
      ++pile.Shown;
    } else if (isNew || under > 0) {
      continue;
    } else {
      return;  // all below wait too
    }
    ++kept;
  }
}

}  // namespace platform
