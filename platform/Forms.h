#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The window framework: windows, controls, timers, menus and the event loop.
//
// A control is a thin handle over the machine's real one; that one is the truth, and reading a
// property asks it. Positions and sizes are twips, 1440 to the inch and 15 to a device independent
// pixel, at every scale; a child's place counts from the top left corner of what holds it, a
// window's includes its frame. Events are the public functions named after them and run on the one
// thread, only while events are handed out.

namespace platform {

class Container;
class Form;
struct NativeWidget;  // what stands behind a control; opaque above the platform

/// Colours are 0xRRGGBB; with the high bit set they are the desktop theme's. A `BackColor` of that
/// kind follows a change of theme.
inline constexpr std::uint32_t vbScrollBars = 0x80000000;
inline constexpr std::uint32_t vbTitleBarText = 0x80000009;

/// Where a control lies, in twips.
struct Place {
  int Left = 0;
  int Top = 0;
  int Width = 0;
  int Height = 0;
};

/// What a window's design says of a control.
struct Design {
  const char* Name;
  const char* Caption = "";
  Place At;
  int TabIndex = -1;
  /// What a screen reader calls a control that has no caption, or one like another's.
  const char* AccessibleName = "";
};

class Control {
 public:
  Control(const Control&) = delete;
  Control& operator=(const Control&) = delete;
  virtual ~Control();

  int Left() const;
  int Top() const;
  int Width() const;
  int Height() const;
  void Left(int twips);
  void Top(int twips);
  void Width(int twips);
  void Height(int twips);
  void Move(const Place& to);
  /// Whether the control shows whenever what holds it does.
  bool Visible() const;
  void Visible(bool visible);
  bool Enabled() const;
  void Enabled(bool enabled);
  std::uint32_t BackColor() const;
  void BackColor(std::uint32_t colour);
  /// The colour of text; in a dark theme a shade of it that can be read.
  void ForeColor(std::uint32_t colour);
  void FontUnderline(bool underline);
  /// Shows while the pointer rests on the control, also on a disabled one; a screen reader tells it
  /// as the control's description.
  void ToolTipText(std::string_view text);
  void SetFocus();
  /// Whether the control has the keyboard while its window has it.
  bool HasFocus() const;
  /// Names the control to `SendMessageA`.
  std::uint32_t hWnd() const { return handle_; }

  NativeWidget* Native() const { return native_; }

 protected:
  Control(Container& parent, const Design& design, NativeWidget* native);
  explicit Control(NativeWidget* native);

 private:
  NativeWidget* native_;
  std::uint32_t handle_;
};

/// A control or window that holds controls.
class Container : public Control {
 protected:
  using Control::Control;
};

class CommandButton : public Control {
 public:
  CommandButton(Container& parent, const Design& design);
  std::function<void()> Click;
  /// Esc presses the button from anywhere in its window.
  void Cancel();
};

class CheckBox : public Control {
 public:
  CheckBox(Container& parent, const Design& design);
  /// 1 checked, 0 unchecked. A change from code runs `Click` like one by the user.
  int Value() const;
  void Value(int value);
  std::function<void()> Click;
};

/// A text of one line that is wider than its box shows as a tooltip. A locked text can be gone
/// through, selected and copied by keyboard as by mouse.
class TextBox : public Control {
 public:
  enum class Kind { OneLine, MultiLine };
  TextBox(Container& parent, const Design& design, Kind kind = Kind::OneLine);
  std::string Text() const;
  void Text(std::string_view text);
  void Locked(bool readOnly);
  /// Of a box of one line.
  void SelectAll();
  /// The key's character code; 13 for Enter.
  std::function<void(int KeyAscii)> KeyPress;
};

class Label : public Control {
 public:
  Label(Container& parent, const Design& design);
  std::string Caption() const;
  void Caption(std::string_view text);
  void Centered();
  void WordWrap();
  /// The label takes the size of its text.
  void AutoSize();
  /// The label is a link: pointing hand, reached and pressed by keyboard too.
  void Link();
  std::function<void()> Click;
};

class ComboBox : public Control {
 public:
  ComboBox(Container& parent, const Design& design, const std::vector<std::string>& items);
  int ListIndex() const;
  void ListIndex(int index);
};

/// An unsorted list of text lines. One that is wider than the list shows as a tooltip.
class ListBox : public Control {
 public:
  ListBox(Container& parent, const Design& design);
  /// Adds a line at the bottom; selection and scroll position stay.
  void AddItem(std::string_view line);
  int ListCount() const;
  std::string List(int index) const;
};

/// A panel.
class PictureBox : public Container {
 public:
  PictureBox(Container& parent, const Design& design);
};

/// A titled frame.
class Frame : public Container {
 public:
  Frame(Container& parent, const Design& design);
};

/// A picture from the program's own data.
class Image : public Control {
 public:
  Image(Container& parent, const Design& design, const std::string& resource);
  /// Handle of the picture, for `NOTIFYICONDATA`.
  std::uint32_t Picture() const { return picture_; }

 private:
  std::uint32_t picture_;
};

/// A straight line from one point to another.
class Line : public Control {
 public:
  Line(Container& parent, const Design& design, std::uint32_t colour);
};

/// A strip of tabs; it shows no pages of its own. A click on a tab takes the keyboard to the strip,
/// as does every change of the selected tab, before `Click`: it must not stay in a page that goes.
class TabStrip : public Control {
 public:
  TabStrip(Container& parent, const Design& design, const std::vector<std::string>& tabs);
  /// Index of the selected tab, from 1.
  int SelectedItem() const;
  void SelectedItem(int index);
  int Count() const;
  std::function<void()> Click;
};

class Timer {
 public:
  Timer(int intervalMilliseconds, bool enabled);
  Timer(const Timer&) = delete;
  Timer& operator=(const Timer&) = delete;
  ~Timer();
  bool Enabled() const;
  void Enabled(bool enabled);
  /// The tick. Ticks that fall due while it runs, at whatever depth, are left out.
  std::function<void()> Tick;

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

/// A pop-up menu.
class Menu {
 public:
  struct Entry {
    const char* Name;
    const char* Caption;  ///< "-" is a separator.
    std::function<void()> Click;
  };
  /// The caption of the menu itself shows nowhere: there is no menu bar.
  Menu(Container& parent, const char* caption, const std::vector<Entry>& entries);
  Menu(const Menu&) = delete;
  Menu& operator=(const Menu&) = delete;
  ~Menu();
  NativeWidget* Native() const { return native_; }

 private:
  NativeWidget* native_;
};

inline constexpr int vbNormalState = 0;
inline constexpr int vbMinimized = 1;
inline constexpr int vbMaximized = 2;

enum class BorderStyle { Sizable, FixedSingle, FixedDialog };

inline constexpr int vbKeyTab = 9;
inline constexpr int vbKeyPageUp = 33;
inline constexpr int vbKeyPageDown = 34;
inline constexpr int vbKeyF = 'F';
inline constexpr int vbKeyF1 = 112;
inline constexpr int vbShiftMask = 1;
inline constexpr int vbCtrlMask = 2;

/// What a window's design says of itself.
struct FormDesign {
  const char* Name;
  const char* Caption;
  int ClientWidth;  ///< Twips, as `ClientHeight`: the room inside the frame.
  int ClientHeight;
  BorderStyle Border = BorderStyle::Sizable;
  bool MinButton = true;
  bool MaxButton = true;
  bool ShowInTaskbar = true;
  bool CenterScreen = true;
  int MinWidth = 0;  ///< Smallest outer size, twips.
  int MinHeight = 0;
  /// The window shows without taking the keyboard focus from where it is; screen readers tell of it
  /// as a notification.
  bool ShowWithoutActivating = false;
};

/// A window. Its frame counts 120 twips in width and 420 in height, whatever the desktop draws.
class Form : public Container {
 public:
  explicit Form(const FormDesign& design);
  ~Form() override;

  /// Raises `Form_Load`, once in the window's life.
  void Load();
  /// Loads the window if need be and shows it, not modally; one that shows already comes to the
  /// front. An owned window without a minimise button stays above its owner, provided that the
  /// owner is on the screen; one with such a button goes its own ways.
  void Show(const Form* owner = nullptr);
  void Hide();
  /// Closes the window for good. A window given to `ShowNew` is then freed, once no procedure of it
  /// is running.
  void Unload();

  std::string Caption() const;
  void Caption(std::string_view text);
  /// 0 normal, 1 minimised, 2 maximised.
  int WindowState() const;
  void WindowState(int state);
  /// 1 twips, 3 pixels; the scale of `Form_MouseMove`. Always twips.
  int ScaleMode() const { return 1; }
  /// Pops a menu up at the pointer, or at the row that has the keyboard where a key asked for the
  /// menu, and returns when it is closed and its entry's `Click` has run.
  void PopupMenu(const Menu& menu);

  /// A key that works anywhere in the window, before the control that has the keyboard gets it.
  void Accelerator(int KeyCode, int Shift, std::function<void()> Pressed);

  virtual void Form_Load() {}
  /// The window is about to be on the screen for the first time. A popup may make its controls
  /// here: one that lies under many newer ones need not get there before it closes.
  virtual void Form_FirstShow() {}
  /// The window has left the screen under many newer ones, for good as it seems: what the last made
  /// may go, and is made anew by another `Form_FirstShow` if the window does come back.
  virtual void Form_PutAway() {}
  /// The window is about to close, by its close box, by `Unload` or by the end of the session.
  virtual void Form_Unload() {}
  /// Size or state changed, or the window shows for the first time.
  virtual void Form_Resize() {}
  /// The pointer moved over the window's own surface, X in twips; or a tray event.
  virtual void Form_MouseMove(float X) { static_cast<void>(X); }

 private:
  struct State;
  friend void ShowNew(std::unique_ptr<Form> form, const Form* owner);
  std::unique_ptr<State> state_;
};

/// Shows a window that nobody owns: the framework keeps it until it closes, then frees it.
void ShowNew(std::unique_ptr<Form> form, const Form* owner = nullptr);

struct ScreenInfo {
  int Width;  ///< Of the primary screen, twips, as `Height`.
  int Height;
  int TwipsPerPixelX;
  int TwipsPerPixelY;
};
ScreenInfo Screen();

/// The yield: everything that is pending is processed, each handler running to its end.
void DoEvents();

inline constexpr int MB_OK = 0;
inline constexpr int MB_YESNO = 4;
inline constexpr int MB_ICONQUESTION = 32;
inline constexpr int MB_ICONINFORMATION = 64;
inline constexpr int IDOK = 1;
inline constexpr int IDYES = 6;
inline constexpr int IDNO = 7;

/// Shows a message box under the application's title and returns the button pressed. Runs events
/// while it is open; the main window and those that it owns wait for the answer. The first button
/// is the default; closing the box by its frame or Esc is "No".
int MsgBox(const std::string& text, int flags);
/// Whether the caller runs inside one, or inside several.
bool InsideMsgBox();

/// Brings the window's thread to the foreground.
int SetForegroundWindow(std::uint32_t window);

/// Activates the top-level window of that title. False when there is none.
bool AppActivate(const std::string& title);

inline constexpr std::int32_t HWND_TOPMOST = -1;

/// Puts a window into the topmost band, at a place and size in pixels, frame included; one of fixed
/// size keeps it. `flags` are 0. Returns 0 when nothing was done.
int SetWindowPos(std::uint32_t window, std::int32_t after, int x, int y, int cx, int cy,
                 std::uint32_t flags);

}  // namespace platform
