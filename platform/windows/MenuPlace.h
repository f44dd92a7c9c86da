#pragma once

#include "platform/windows/SystemWindows.h"

namespace platform {

/// For its length a menu opens there and not at the pointer; in pixels of the screen.
class MenuPlace {
 public:
  explicit MenuPlace(POINT at);
  MenuPlace(const MenuPlace&) = delete;
  MenuPlace& operator=(const MenuPlace&) = delete;
  ~MenuPlace();

  /// Where a menu that is asked for now opens.
  static POINT Now();
};

}  // namespace platform
