#include "platform/windows/SystemWindows.h"

#include <algorithm>

#include "platform/windows/Widget.h"

namespace platform {

namespace {

class ComboBoxWidget : public NativeWidget {
 public:
  ComboBoxWidget(Container& parent, const Design& design, const std::vector<std::string>& items)
      : NativeWidget(parent.Native()) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    Create(L"COMBOBOX", CBS_DROPDOWNLIST | CBS_HASSTRINGS | WS_VSCROLL | WS_TABSTOP);
    for (const std::string& item : items) {
      SendMessageW(Window(), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(Wide(item).c_str()));
    }
  }

  /// To the system the height is the one with the list down; the place's is the closed one.
  void Move(const Place& to) override {
    constexpr int MostItems = 10;
    constexpr int Edges = 6;  // pixels
    NativeWidget::Move(to);
    const int closed = ToPixels(to.Height);
    const auto item = static_cast<int>(SendMessageW(Window(), CB_GETITEMHEIGHT, 0, 0));
    SendMessageW(Window(), CB_SETITEMHEIGHT, static_cast<WPARAM>(-1), std::max(1, closed - Edges));
    ::SetWindowPos(Window(), nullptr, 0, 0, ToPixels(to.Width), closed + MostItems * item,
                   SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
  }
};

}  // namespace

ComboBox::ComboBox(Container& parent, const Design& design, const std::vector<std::string>& items)
    : Control(parent, design, new ComboBoxWidget(parent, design, items)) {}

int ComboBox::ListIndex() const {
  return static_cast<int>(SendMessageW(Native()->Window(), CB_GETCURSEL, 0, 0));
}
void ComboBox::ListIndex(int index) {
  SendMessageW(Native()->Window(), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

}  // namespace platform
