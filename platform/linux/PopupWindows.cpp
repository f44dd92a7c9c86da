#include "platform/linux/PopupWindows.h"

#include <chrono>
#include <unordered_map>

#include <QCoreApplication>
#include <QRect>
#include <QTimer>
#include <QWindow>

#include "platform/common/PopupPile.h"
#include "platform/linux/FormWidget.h"

namespace platform {

namespace {

using std::chrono_literals::operator""ms;

Area ToArea(const QRect& rectangle) {
  return {rectangle.x(), rectangle.y(), rectangle.width(), rectangle.height()};
}

/// Once its window manager has done with it.
void AcceptKeyboardSoon(const FormWidget& window) {
  QTimer::singleShot(500ms, &window, [&window] {
    if (!window.isVisible()) return;
    if (!window.windowHandle()->isExposed()) return AcceptKeyboardSoon(window);
    window.windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus, false);
  });
}

/// IceWM 3.3 and fluxbox 1.3 give the keyboard to every window that comes up, unless it takes none.
void ShowWithoutKeyboard(FormWidget& window) {
  window.winId();  // makes the native window
  window.windowHandle()->setFlag(Qt::WindowDoesNotAcceptFocus);
  window.ComeUp();
  AcceptKeyboardSoon(window);
}

class PopupWindows {
 public:
  void Add(FormWidget& window) {
    if (window.PileNumber != 0) return;
    window.PileNumber = pile_.Add(ToArea({window.pos(), window.size()}));
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
    QMetaObject::invokeMethod(qApp, [this] { Arrange(); }, Qt::QueuedConnection);
  }

  void Arrange() {
    arranging_ = false;
    const auto whereIsIt = [this](PopupPile::Number popup) {
      return ToArea(windows_.at(popup)->frameGeometry());
    };
    const PopupPile::Changes changes = pile_.Arrange(whereIsIt);
    for (const PopupPile::Number popup : changes.Hide) windows_.at(popup)->hide();
    for (const PopupPile::Number popup : changes.Show) ShowWithoutKeyboard(*windows_.at(popup));
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
