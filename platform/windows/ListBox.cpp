#include "platform/windows/SystemWindows.h"

#include <algorithm>
#include <vector>

#include "platform/windows/Clipboard.h"
#include "platform/windows/ListText.h"
#include "platform/windows/Widget.h"

namespace platform {

namespace {

class ListBoxWidget : public NativeWidget {
 public:
  ListBoxWidget(Container& parent, const Design& design) : NativeWidget(parent.Native()) {
    TabIndex = design.TabIndex;
    TakesKeyboard = true;
    Create(
        L"LISTBOX",
        LBS_NOINTEGRALHEIGHT | LBS_EXTENDEDSEL | LBS_NOTIFY | WS_VSCROLL | WS_HSCROLL | WS_TABSTOP,
        WS_EX_CLIENTEDGE);
  }

  void Add(std::string_view line) {
    ends_.push_back((ends_.empty() ? 0 : ends_.back()) + line.size());
    text_ += line;
    if (settleScheduled_) return;
    settleScheduled_ = true;
    DoLater([this] { Settle(); });
  }

  int Count() const { return static_cast<int>(ends_.size()); }

  std::string_view Line(int index) const {
    if (index < 0 || index >= Count()) return {};
    const auto line = static_cast<std::size_t>(index);
    const std::size_t begin = line == 0 ? 0 : ends_[line - 1];
    return std::string_view(text_).substr(begin, ends_[line] - begin);
  }

  void RenewFont() override {
    NativeWidget::RenewFont();
    widest_ = 0;
    Measure(0);
  }

 protected:
  bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) override {
    constexpr WPARAM Copy = 3;  // Ctrl+C
    if (message != WM_CHAR || w != Copy) return NativeWidget::OnMessage(message, w, l, result);
    CopySelected();
    return true;
  }

  std::wstring CutTextAt(POINT at) const override {
    const auto hit =
        static_cast<DWORD>(SendMessageW(Window(), LB_ITEMFROMPOINT, 0, MAKELPARAM(at.x, at.y)));
    if (HIWORD(hit) != 0) return {};
    RECT area;
    GetClientRect(Window(), &area);
    std::wstring line = DisplayText(Line(LOWORD(hit)));
    return Fits(line, area.right) ? std::wstring() : line;
  }

 private:
  /// What was added within one procedure reaches the control in one step. Selection and scroll
  /// position stay.
  void Settle() {
    settleScheduled_ = false;
    const auto shown = static_cast<int>(SendMessageW(Window(), LB_GETCOUNT, 0, 0));
    SendMessageW(Window(), WM_SETREDRAW, FALSE, 0);
    for (int i = shown; i < Count(); ++i) {
      SendMessageW(Window(), LB_ADDSTRING, 0,
                   reinterpret_cast<LPARAM>(DisplayText(Line(i)).c_str()));
    }
    SendMessageW(Window(), WM_SETREDRAW, TRUE, 0);
    Measure(shown);
    InvalidateRect(Window(), nullptr, TRUE);
  }

  void Measure(int first) {
    const HDC context = GetDC(Window());
    const HGDIOBJ before = SelectObject(context, Font());
    for (int i = first; i < Count(); ++i) {
      const std::wstring line = DisplayText(Line(i));
      SIZE size{};
      GetTextExtentPoint32W(context, line.c_str(), static_cast<int>(line.size()), &size);
      widest_ = std::max(widest_, static_cast<int>(size.cx));
    }
    SelectObject(context, before);
    ReleaseDC(Window(), context);
    constexpr int Margin = 4;
    SendMessageW(Window(), LB_SETHORIZONTALEXTENT, static_cast<WPARAM>(widest_ + Margin), 0);
  }

  void CopySelected() const {
    std::vector<int> selected(
        static_cast<std::size_t>(SendMessageW(Window(), LB_GETSELCOUNT, 0, 0)));
    SendMessageW(Window(), LB_GETSELITEMS, selected.size(),
                 reinterpret_cast<LPARAM>(selected.data()));
    std::wstring text;
    for (const int line : selected) text += DisplayText(Line(line)) + L"\r\n";
    CopyToClipboard(Window(), text);
  }

  // All lines in one piece.
  std::string text_;
  std::vector<std::size_t> ends_;
  int widest_ = 0;  ///< Of the texts, in pixels.
  bool settleScheduled_ = false;
};

}  // namespace

ListBox::ListBox(Container& parent, const Design& design)
    : Control(parent, design, new ListBoxWidget(parent, design)) {}

void ListBox::AddItem(std::string_view line) { WidgetAs<ListBoxWidget>(*this).Add(line); }
int ListBox::ListCount() const { return WidgetAs<ListBoxWidget>(*this).Count(); }
std::string ListBox::List(int index) const {
  return std::string(WidgetAs<ListBoxWidget>(*this).Line(index));
}

}  // namespace platform
