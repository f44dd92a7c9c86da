#include "platform/windows/SystemWindows.h"

#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

class TabStripWidget : public NativeWidget {
 public:
  TabStripWidget(Container& parent, const Design& design, TabStrip& owner,
                 const std::vector<std::string>& tabs)
      : NativeWidget(parent.Native()), owner_(owner) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    Create(WC_TABCONTROLW, WS_TABSTOP | TCS_FOCUSONBUTTONDOWN);
    for (std::size_t i = 0; i < tabs.size(); ++i) {
      std::wstring title = Wide(tabs[i]);
      TCITEMW item{};
      item.mask = TCIF_TEXT;
      item.pszText = title.data();
      SendMessageW(Window(), TCM_INSERTITEMW, i, reinterpret_cast<LPARAM>(&item));
    }
  }

  /// The pages are the window's own controls, and lie above.
  void Move(const Place& to) override {
    NativeWidget::Move(to);
    ::SetWindowPos(Window(), reinterpret_cast<HWND>(INT_PTR{1}), 0, 0, 0, 0,
                   SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
  }

  /// The keyboard must not stay in a page that goes.
  void Changed() {
    if (IsChild(Top().Window(), GetFocus())) SetFocus(Window());
    if (owner_.Click) owner_.Click();
  }

 protected:
  bool OnNotify(NMHDR& header, LRESULT&) override {
    if (header.code == static_cast<UINT>(TCN_SELCHANGE)) Changed();
    return false;
  }

 private:
  TabStrip& owner_;
};

}  // namespace

TabStrip::TabStrip(Container& parent, const Design& design, const std::vector<std::string>& tabs)
    : Control(parent, design, new TabStripWidget(parent, design, *this, tabs)) {}

int TabStrip::SelectedItem() const {
  return static_cast<int>(SendMessageW(Native()->Window(), TCM_GETCURSEL, 0, 0)) + 1;
}

void TabStrip::SelectedItem(int index) {
  if (index == SelectedItem()) return;
  SendMessageW(Native()->Window(), TCM_SETCURSEL, static_cast<WPARAM>(index - 1), 0);
  WidgetAs<TabStripWidget>(*this).Changed();
}

int TabStrip::Count() const {
  return static_cast<int>(SendMessageW(Native()->Window(), TCM_GETITEMCOUNT, 0, 0));
}

}  // namespace platform
