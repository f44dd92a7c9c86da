#include "platform/windows/SystemWindows.h"

#include "platform/windows/ListText.h"
#include "platform/windows/Widget.h"

namespace platform {

namespace {

class TextBoxWidget : public NativeWidget {
 public:
  TextBoxWidget(Container& parent, const Design& design, TextBox& owner, TextBox::Kind kind)
      : NativeWidget(parent.Native()), HasLines(kind == TextBox::Kind::MultiLine), owner_(owner) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    const DWORD lines = ES_MULTILINE | ES_AUTOVSCROLL | WS_VSCROLL | WS_HSCROLL;
    Create(L"EDIT", ES_AUTOHSCROLL | WS_TABSTOP | (HasLines ? lines : 0), WS_EX_CLIENTEDGE);
    constexpr WPARAM AsMuchAsFits = 0;
    SendMessageW(Window(), EM_SETLIMITTEXT, AsMuchAsFits, 0);
  }

  const bool HasLines;

  std::wstring Text() const {
    std::wstring text(static_cast<std::size_t>(GetWindowTextLengthW(Window())) + 1, L'\0');
    const int length = GetWindowTextW(Window(), text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
  }

 protected:
  std::wstring CutTextAt(POINT) const override {
    if (HasLines) return {};
    RECT area{};
    SendMessageW(Window(), EM_GETRECT, 0, reinterpret_cast<LPARAM>(&area));
    std::wstring text = Text();
    return Fits(text, area.right - area.left) ? std::wstring() : text;
  }

  bool OnMessage(UINT message, WPARAM w, LPARAM, LRESULT& result) override {
    constexpr WPARAM SelectAll = 1;  // Ctrl+A
    if (message != WM_CHAR) return false;
    if (w == SelectAll) {
      SendMessageW(Window(), EM_SETSEL, 0, -1);
      return true;
    }
    if (!HasLines && owner_.KeyPress) owner_.KeyPress(static_cast<int>(w));
    result = 0;
    return !HasLines && (w == VK_RETURN || w == VK_ESCAPE);  // the system would only beep
  }

 private:
  TextBox& owner_;
};

}  // namespace

TextBox::TextBox(Container& parent, const Design& design, Kind kind)
    : Control(parent, design, new TextBoxWidget(parent, design, *this, kind)) {}

std::string TextBox::Text() const { return Narrow(WidgetAs<TextBoxWidget>(*this).Text()); }

void TextBox::Text(std::string_view text) {
  const bool hasLines = WidgetAs<TextBoxWidget>(*this).HasLines;
  SetWindowTextW(Native()->Window(), (hasLines ? DisplayLines(text) : Wide(text)).c_str());
}

void TextBox::SelectAll() { SendMessageW(Native()->Window(), EM_SETSEL, 0, -1); }

void TextBox::Locked(bool readOnly) {
  SendMessageW(Native()->Window(), EM_SETREADONLY, readOnly ? TRUE : FALSE, 0);
}

}  // namespace platform
