#pragma once

#include <QPoint>

namespace platform {

/// While it lives, the next menu opens at this place of the screen: a key has asked for it, and the
/// pointer may be anywhere.
class MenuPlace {
 public:
  explicit MenuPlace(const QPoint& place);
  MenuPlace(const MenuPlace&) = delete;
  MenuPlace& operator=(const MenuPlace&) = delete;
  ~MenuPlace();

  /// Where the menu that is about to open belongs: such a place, else the pointer's.
  static QPoint Take();
};

}  // namespace platform
