#include "platform/windows/SystemWindows.h"

#include "platform/windows/FormWidget.h"

namespace platform {

namespace {

class ButtonWidget : public NativeWidget {
 public:
  ButtonWidget(Container& parent, const Design& design, CommandButton& owner)
      : NativeWidget(parent.Native()), owner_(owner) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    Caption = Wide(design.Caption);
    Create(L"BUTTON", BS_PUSHBUTTON | BS_NOTIFY | WS_TABSTOP);
  }

  bool Press() override {
    SendMessageW(Window(), BM_CLICK, 0, 0);
    return true;
  }

 protected:
  void OnCommand(UINT code) override {
    switch (code) {
      case BN_SETFOCUS:
        SendMessageW(Window(), BM_SETSTYLE, BS_DEFPUSHBUTTON, TRUE);
        break;
      case BN_KILLFOCUS:
        SendMessageW(Window(), BM_SETSTYLE, BS_PUSHBUTTON, TRUE);
        break;
      case BN_CLICKED:
        if (owner_.Click) owner_.Click();
        break;
      default:
        break;
    }
  }

 private:
  CommandButton& owner_;
};

class CheckBoxWidget : public NativeWidget {
 public:
  CheckBoxWidget(Container& parent, const Design& design, CheckBox& owner)
      : NativeWidget(parent.Native()), owner_(owner) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    Caption = Wide(design.Caption);
    Create(L"BUTTON", BS_AUTOCHECKBOX | BS_NOTIFY | WS_TABSTOP);
  }

 protected:
  void OnCommand(UINT code) override {
    if (code == BN_CLICKED && owner_.Click) owner_.Click();
  }

 private:
  CheckBox& owner_;
};

}  // namespace

CommandButton::CommandButton(Container& parent, const Design& design)
    : Control(parent, design, new ButtonWidget(parent, design, *this)) {}

void CommandButton::Cancel() { Native()->Top().CancelButton = Native(); }

CheckBox::CheckBox(Container& parent, const Design& design)
    : Control(parent, design, new CheckBoxWidget(parent, design, *this)) {}

int CheckBox::Value() const {
  return SendMessageW(Native()->Window(), BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0;
}

void CheckBox::Value(int value) {
  const int wanted = value == 1 ? 1 : 0;
  if (wanted == Value()) return;
  SendMessageW(Native()->Window(), BM_SETCHECK,
               static_cast<WPARAM>(wanted == 1 ? BST_CHECKED : BST_UNCHECKED), 0);
  if (Click) Click();
}

}  // namespace platform
