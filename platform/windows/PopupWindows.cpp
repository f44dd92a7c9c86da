#include "platform/windows/SystemWindows.h"

#include "platform/windows/PopupWindows.h"

#include <unordered_map>

#include "platform/common/PopupPile.h"
#include "platform/windows/EventLoop.h"
#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

Area ToArea(const Place& place) { return {place.Left, place.Top, place.Width, place.Height}; }

class PopupWindows {
 public:
  void Add(FormWidget& window) {
    if (window.PileNumber != 0) return;
    window.PileNumber = pile_.Add(ToArea(window.At()));
    windows_.emplace(window.PileNumber, &window);
    ArrangeSoon();
  }

  void Remove(FormWidget& window) {
    if (window.PileNumber == 0) return;
    windows_.erase(window.PileNumber);
    if (pile_.Remove(window.PileNumber)) ArrangeSoon();
    window.PileNumber = 0;
  }

 private:
  /// What happens to many windows within one procedure is one arrangement afterwards.
  void ArrangeSoon() {
    if (arranging_) return;
    arranging_ = true;
    Later([this] { Arrange(); });
  }

  void Arrange() {
    arranging_ = false;
    const auto whereIsIt = [this](PopupPile::Number popup) {
      return ToArea(windows_.at(popup)->At());
    };
    const PopupPile::Changes changes = pile_.Arrange(whereIsIt);
    for (const PopupPile::Number popup : changes.Hide) windows_.at(popup)->PutAway();
    for (const PopupPile::Number popup : changes.Show) windows_.at(popup)->ComeUp();
  }

  PopupPile pile_;
  std::unordered_map<PopupPile::Number, FormWidget*> windows_;
  bool arranging_ = false;
};

PopupWindows& Popups() {
  static auto& popups = *new PopupWindows;  // as the windows in it, never freed
  return popups;
}

}  // namespace

void PutOnPile(FormWidget& window) { Popups().Add(window); }
void TakeOffPile(FormWidget& window) { Popups().Remove(window); }

}  // namespace platform
