#pragma once

#include <vector>

#include "platform/windows/Widget.h"

namespace platform {

struct MenuWidget : NativeWidget {
  explicit MenuWidget(const std::vector<Menu::Entry>& entries);
  ~MenuWidget() override { DestroyMenu(Popup); }

  const std::vector<Menu::Entry> Entries;  ///< Numbered from 1 in the system's menu.
  const HMENU Popup;
  bool IsOpen = false;
};

}  // namespace platform
