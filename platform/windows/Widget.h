#pragma once

#include "platform/windows/SystemWindows.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Forms.h"
#include "platform/windows/Text.h"

// What the controls share: the window of the system behind each of them, its place in twips, its
// way from a message to the control's event.

namespace platform {

class FormWidget;

/// A window of the system that stands behind a control or is a window of the program. Its place is
/// kept in twips, so that it comes out the same at every scale and on every monitor.
struct NativeWidget {
  explicit NativeWidget(NativeWidget* parent) : parent_(parent) {}
  NativeWidget(const NativeWidget&) = delete;
  NativeWidget& operator=(const NativeWidget&) = delete;
  virtual ~NativeWidget();

  HWND Window() const { return window_; }
  NativeWidget* Parent() const { return parent_; }
  /// The window that it lies in, or is.
  virtual FormWidget& Top() { return parent_->Top(); }
  const FormWidget& Top() const { return const_cast<NativeWidget*>(this)->Top(); }

  /// To the nearest pixel of the monitor that the window is on, and back.
  int ToPixels(int twips) const;
  int ToTwips(int pixels) const;
  /// Pixels a dot of a screen without scaling takes.
  int Dpi() const;

  const Place& At() const { return at_; }
  virtual void Move(const Place& to);
  /// The place that the system has given it.
  void NotePlace(const Place& place) { at_ = place; }
  virtual void Show(bool visible);
  bool Visible() const { return visible_; }
  void Enable(bool enabled);
  /// Whether it, and all that holds it, shows and can be used.
  bool IsReachable() const;

  /// Colours are 0xRRGGBB or the theme's.
  void BackColor(std::uint32_t colour);
  void ForeColor(std::uint32_t colour) { fore_ = colour; }
  COLORREF Background() const;
  void Underline(bool underline);
  HFONT Font() const;
  /// Gives the window the face that its scale asks for.
  virtual void RenewFont();

  /// Where the Tab key finds it; -1 nowhere.
  int TabIndex = -1;
  /// The keyboard can be in it.
  bool TakesKeyboard = false;
  /// The window's text, with "&" before the letter that is pressed with Alt.
  std::wstring Caption;

  /// Enter, or Alt with the caption's letter. False when that means nothing to it.
  virtual bool Press() { return false; }

 protected:
  /// Makes the system's window, of that class, in its parent's. A style needs no WS_CHILD.
  void Create(const wchar_t* windowClass, DWORD style, DWORD extendedStyle = 0);
  /// Gives the system's window back.
  void Discard();
  /// Messages of `window`, made by the caller, come to this widget.
  void Adopt(HWND window);
  /// A message to the window before the system's own procedure for it. True when it is dealt with.
  virtual bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result);
  /// The text under the pointer where the widget cuts it off; shown whole as a tooltip.
  virtual std::wstring CutTextAt(POINT) const { return {}; }
  /// Whether so many pixels hold a text.
  bool Fits(const std::wstring& text, int pixels) const;
  /// What the control tells of itself to what holds it.
  virtual void OnCommand(UINT) {}
  virtual bool OnNotify(NMHDR&, LRESULT&) { return false; }

  /// The background, and the colours of text on it.
  HBRUSH Brush();
  LRESULT Colour(HDC context);

  /// Does it before the next event, unless the widget is gone by then.
  void DoLater(std::function<void()> action) const;

  /// Whether the widget paints a background of its own for what lies on it.
  bool paintsBack_ = false;

 private:
  static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM w, LPARAM l);
  void TellCutText(LPARAM pointer);
  bool Reflect(UINT message, WPARAM w, LPARAM l, LRESULT& result);

  NativeWidget* parent_;
  std::shared_ptr<bool> lives_ = std::make_shared<bool>(true);
  std::wstring cutText_;  ///< What the tooltip shows.
  HWND window_ = nullptr;
  Place at_;
  bool visible_ = true;
  bool underlined_ = false;
  std::optional<std::uint32_t> back_;
  std::optional<std::uint32_t> fore_;
  HBRUSH brush_ = nullptr;
  COLORREF brushColour_ = 0;
};

/// The widget behind a window of the system; null for a window of somebody else's.
NativeWidget* WidgetOf(HWND window);

inline NativeWidget& Widget(const Control& control) { return *control.Native(); }
template <typename Kind>
Kind& WidgetAs(const Control& control) {
  return static_cast<Kind&>(*control.Native());
}

/// The control that `Control::hWnd` numbered, or none.
Control* ControlByHandle(std::uint32_t handle);

/// A number for what the program names to the platform.
std::uint32_t NextHandle();

/// The program's own module, which holds its resources.
HINSTANCE Module();

/// A colour of the contract as the system counts it.
COLORREF SystemColour(std::uint32_t colour);

/// What a control is called that has no caption, or not enough of one.
void NameForReaders(HWND window, const std::string& name);
/// What more there is to say of it.
void DescribeForReaders(HWND window, const std::string& text);

}  // namespace platform
