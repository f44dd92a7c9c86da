#pragma once

#include <QObject>
#include <QRect>
#include <QTimer>

class QWidget;

namespace platform {

/// Where a window last lay for a moment while it was neither maximised nor minimised. Window
/// managers forget that a window was maximised, or where it lay before, when it leaves the screen:
/// xfwm4 4.18, metacity 3.46, IceWM 3.3 and fluxbox 1.3 each in its own way, and the toolkit
/// (Qt 6.4.2) with them.
class NormalPlace : public QObject {
 public:
  explicit NormalPlace(QWidget& window);
  /// Brings the window to its normal state and place; one that is hidden, when it is shown.
  void Restore();
  /// For a window that is not on the screen.
  void PrepareToShow();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void Look();
  bool IsOnScreen() const;

  QWidget& window_;
  QRect place_;
  QTimer moment_;
  int corrections_ = 0;  // how many more may be needed after a `Restore`
};

}  // namespace platform
