#include "platform/linux/NormalPlace.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace platform {

NormalPlace::NormalPlace(QWidget& window) : window_(window) {
  constexpr int Moment = 250;  // milliseconds
  moment_.setInterval(Moment);
  moment_.setSingleShot(true);
  connect(&moment_, &QTimer::timeout, this, &NormalPlace::Look);
  window.installEventFilter(this);
}

bool NormalPlace::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::Move:
    case QEvent::Resize:
    case QEvent::Show:
    case QEvent::WindowStateChange:
      if (corrections_ == 0) moment_.start();
      return false;
    default:
      return false;
  }
}

void NormalPlace::Restore() {
  constexpr int MostCorrections = 2;
  window_.setWindowState(Qt::WindowNoState);
  corrections_ = MostCorrections;
  moment_.start();
}

void NormalPlace::PrepareToShow() {
  if (place_.isValid()) window_.setGeometry(place_);
}

void NormalPlace::Look() {
  const bool isNormal = window_.windowState() == Qt::WindowNoState;
  if (corrections_ == 0) {
    if (IsOnScreen() && isNormal) place_ = window_.geometry();
    return;
  }
  --corrections_;
  if (IsOnScreen() && place_.isValid() && !(isNormal && window_.geometry() == place_)) {
    window_.setWindowState(Qt::WindowNoState);
    window_.setGeometry(place_);
  }
  moment_.start();
}

bool NormalPlace::IsOnScreen() const {
  return window_.isVisible() && !window_.isMinimized() && window_.windowHandle()->isExposed();
}

}  // namespace platform
