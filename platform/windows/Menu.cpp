#include "platform/windows/SystemWindows.h"

#include <string_view>

#include "platform/windows/FormWidget.h"
#include "platform/windows/MenuPlace.h"
#include "platform/windows/MenuWidget.h"

namespace platform {

MenuWidget::MenuWidget(const std::vector<Menu::Entry>& entries)
    : NativeWidget(nullptr), Entries(entries), Popup(CreatePopupMenu()) {
  UINT_PTR number = 0;
  for (const Menu::Entry& entry : entries) {
    ++number;
    if (std::string_view(entry.Caption) == "-") {
      AppendMenuW(Popup, MF_SEPARATOR, number, nullptr);
    } else {
      AppendMenuW(Popup, MF_STRING, number, Wide(entry.Caption).c_str());
    }
  }
}

Menu::Menu(Container&, const char*, const std::vector<Entry>& entries)
    : native_(new MenuWidget(entries)) {}

Menu::~Menu() { delete native_; }

void Form::PopupMenu(const Menu& menu) {
  auto& popup = *static_cast<MenuWidget*>(menu.Native());
  const HWND window = WidgetAs<FormWidget>(*this).Window();
  if (popup.IsOpen) return;  // the tray can ask for it while it is open
  const POINT place = MenuPlace::Now();
  popup.IsOpen = true;
  const int chosen = TrackPopupMenuEx(popup.Popup, TPM_RETURNCMD | TPM_RIGHTBUTTON, place.x,
                                      place.y, window, nullptr);
  popup.IsOpen = false;
  PostMessageW(window, WM_NULL, 0, 0);  // or the next menu of the tray closes at once
  if (chosen <= 0) return;
  const Menu::Entry& entry = popup.Entries[static_cast<std::size_t>(chosen - 1)];
  if (entry.Click) entry.Click();
}

}  // namespace platform
