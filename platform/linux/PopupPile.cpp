#include "platform/linux/PopupPile.h"

#include <algorithm>
#include <map>
#include <vector>

#include <QCoreApplication>
#include <QRect>
#include <QRegion>

#include "platform/linux/FormWidget.h"

namespace platform {

namespace {

/// So many at one place are on the screen from the start: none has to be waited for when the newest
/// of them close one after the other.
constexpr int MostAtOnePlace = 16;

class PopupPile {
 public:
  void Add(FormWidget& window) {
    if (window.PileNumber != 0) return;
    window.PileNumber = ++last_;
    windows_.emplace(window.PileNumber, &window);
    ArrangeSoon();
  }

  void Remove(FormWidget& window) {
    if (window.PileNumber == 0) return;
    windows_.erase(window.PileNumber);
    window.PileNumber = 0;
    if (window.isVisible()) ArrangeSoon();
  }

  /// What happens to many windows within one procedure is one arrangement afterwards.
  void ArrangeSoon() {
    if (arranging_) return;
    arranging_ = true;
    QMetaObject::invokeMethod(qApp, [this] { Arrange(); }, Qt::QueuedConnection);
  }

 private:
  struct Place {
    QRect Area;
    int Shown;
  };

  void Arrange() {
    arranging_ = false;
    std::vector<Place> places;
    std::vector<FormWidget*> coming;  // newest first
    for (auto each = windows_.rbegin(); each != windows_.rend(); ++each) {
      FormWidget* const window = each->second;
      const int above = CountAbove(places, window->geometry());
      const bool isNew = window->PileNumber > arranged_;
      const bool shows = above == 0 || (above < MostAtOnePlace && (isNew || window->isVisible()));
      if (!shows) {
        if (window->isVisible()) window->hide();
        continue;
      }
      Note(places, window->geometry());
      if (!window->isVisible()) coming.push_back(window);
    }
    arranged_ = last_;
    Show(coming);
  }

  static int CountAbove(const std::vector<Place>& places, const QRect& area) {
    int count = 0;
    for (const Place& place : places) {
      if (place.Area.contains(area)) count += place.Shown;
    }
    return count;
  }

  static void Note(std::vector<Place>& places, const QRect& area) {
    const auto known = std::find_if(places.begin(), places.end(),
                                    [&area](const Place& place) { return place.Area == area; });
    if (known == places.end()) {
      places.push_back({area, 1});
    } else {
      known->Shown += 1;
    }
  }

  void Show(const std::vector<FormWidget*>& coming) {
    if (coming.empty()) return;
    const std::uint64_t oldest = coming.back()->PileNumber;
    std::for_each(coming.rbegin(), coming.rend(), [](FormWidget* window) { window->ComeUp(); });
    // A window that comes up late stays under the newer ones that were there before it.
    QRegion area;
    for (const FormWidget* window : coming) area += window->geometry();
    for (auto each = windows_.upper_bound(oldest); each != windows_.end(); ++each) {
      FormWidget& window = *each->second;
      const bool stayed = std::find(coming.begin(), coming.end(), &window) == coming.end();
      if (stayed && window.isVisible() && area.intersects(window.geometry())) window.raise();
    }
  }

  std::map<std::uint64_t, FormWidget*> windows_;  // oldest first
  std::uint64_t last_ = 0;
  std::uint64_t arranged_ = 0;  // the newest window of the last arrangement
  bool arranging_ = false;
};

PopupPile& Pile() {
  static auto& pile = *new PopupPile;  // as the windows in it, never freed
  return pile;
}

}  // namespace

void PutOnPile(FormWidget& window) { Pile().Add(window); }
void TakeOffPile(FormWidget& window) { Pile().Remove(window); }
void MovedOnPile(const FormWidget& window) {
  if (window.PileNumber != 0 && window.isVisible()) Pile().ArrangeSoon();
}

}  // namespace platform
