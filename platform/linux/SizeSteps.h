#pragma once

#include <QObject>

namespace platform {

/// For as long as it lives, what window managers are told of the sizes that a window can have makes
/// sense on a scaled screen too. There the toolkit (Qt 6.4 to 6.8) always tells of steps, counted
/// from a width and height of less than none where it has not been told of another: fluxbox 1.3
/// makes such a window 65,534 pixels wide.
class SizeSteps : public QObject {
 public:
  SizeSteps();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
};

}  // namespace platform
