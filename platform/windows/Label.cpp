#include "platform/windows/SystemWindows.h"

#include <algorithm>

#include "platform/windows/FormWidget.h"
#include "platform/windows/ListText.h"
#include "platform/windows/Resources.h"

namespace platform {

namespace {

class LabelWidget : public NativeWidget {
 public:
  LabelWidget(Container& parent, const Design& design, Label& owner)
      : NativeWidget(parent.Native()), owner_(owner) {
    TabIndex = design.TabIndex;
    Create(L"STATIC", SS_LEFT | SS_NOPREFIX | SS_NOTIFY);
  }

  /// How the text is drawn, in the system's terms.
  UINT Drawing = DT_NOPREFIX;

  void SetCaption(std::string_view text) {
    text_ = DisplayLines(text);
    SetWindowTextW(Window(), text_.c_str());
    Move(At());
    InvalidateRect(Window(), nullptr, TRUE);
  }

  std::string Text() const { return Narrow(text_); }

  void FitToCaption() {
    const RECT area = CaptionArea();
    Move({At().Left, At().Top, ToTwips(area.right), ToTwips(area.bottom)});
  }

  void BecomeLink() { TakesKeyboard = true; }

  bool Press() override {
    if (TakesKeyboard && owner_.Click) owner_.Click();
    return TakesKeyboard;
  }

 protected:
  void OnCommand(UINT code) override {
    if (code == STN_CLICKED && owner_.Click) owner_.Click();
  }

  bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) override {
    switch (message) {
      case WM_PAINT:
        Paint();
        return true;
      case WM_WINDOWPOSCHANGING:
        LeaveRoom(*reinterpret_cast<WINDOWPOS*>(l));
        return false;
      case WM_SETFOCUS:
      case WM_KILLFOCUS:
        InvalidateRect(Window(), nullptr, TRUE);
        return false;
      case WM_SETCURSOR:
        if (!TakesKeyboard) return false;
        SetCursor(PointerForScale("hand.cur", Dpi()));
        result = TRUE;
        return true;
      case WM_CHAR:
        return w == VK_SPACE && Press();
      default:
        return NativeWidget::OnMessage(message, w, l, result);
    }
  }

 private:
  RECT CaptionArea() const {
    const HDC context = GetDC(Window());
    const HGDIOBJ before = SelectObject(context, Font());
    RECT area{};
    DrawTextW(context, text_.c_str(), -1, &area, Drawing | DT_CALCRECT);
    SelectObject(context, before);
    ReleaseDC(Window(), context);
    return area;
  }

  /// At a larger scale a font can be wider than the place of its text.
  void LeaveRoom(WINDOWPOS& position) const {
    if ((position.flags & SWP_NOSIZE) != 0 || Drawing != DT_NOPREFIX) return;
    position.cx = std::max<int>(position.cx, CaptionArea().right);
  }

  void Paint() {
    PAINTSTRUCT paint;
    const HDC context = BeginPaint(Window(), &paint);
    RECT area;
    GetClientRect(Window(), &area);
    const HGDIOBJ before = SelectObject(context, Font());
    Colour(context);
    FillRect(context, &area, Brush());
    SetBkMode(context, TRANSPARENT);
    DrawTextW(context, text_.c_str(), -1, &area, Drawing);
    if (GetFocus() == Window()) DrawFocusRect(context, &area);
    SelectObject(context, before);
    EndPaint(Window(), &paint);
  }

  Label& owner_;
  std::wstring text_;
};

LabelWidget& WidgetOfLabel(const Label& label) { return WidgetAs<LabelWidget>(label); }

}  // namespace

Label::Label(Container& parent, const Design& design)
    : Control(parent, design, new LabelWidget(parent, design, *this)) {
  Caption(design.Caption);
}

std::string Label::Caption() const { return WidgetOfLabel(*this).Text(); }
void Label::Caption(std::string_view text) { WidgetOfLabel(*this).SetCaption(text); }

void Label::Centered() { WidgetOfLabel(*this).Drawing |= DT_CENTER; }

/// As text boxes break lines: a word that is too long for a line goes on in the next one.
void Label::WordWrap() { WidgetOfLabel(*this).Drawing |= DT_WORDBREAK | DT_EDITCONTROL; }

void Label::AutoSize() { WidgetOfLabel(*this).FitToCaption(); }
void Label::Link() { WidgetOfLabel(*this).BecomeLink(); }

}  // namespace platform
