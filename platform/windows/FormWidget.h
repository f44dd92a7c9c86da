#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "platform/windows/EventLoop.h"
#include "platform/windows/Widget.h"

namespace platform {

/// What stands behind a window of the program. One that comes up without being asked for is no
/// window of the system's before it is on the screen: there can be thousands of them, and a process
/// has ten thousand windows at most.
class FormWidget : public NativeWidget {
 public:
  FormWidget(Form& form, const FormDesign& design);
  ~FormWidget() override;

  FormWidget& Top() override { return *this; }
  const FormDesign& Design() const { return design_; }
  /// The program's own object is about to go.
  void Forget() { form_ = nullptr; }

  /// The outer size counts the contract's frame, the place the whole screen's corner.
  void Move(const Place& to) override;
  const std::wstring& Title() const { return title_; }
  void Title(const std::wstring& title);
  void Topmost();
  int WindowState() const;
  void WindowState(int state);

  /// Shows the window, complete with what it makes when it is shown for the first time. One that
  /// is there already comes to the front.
  void ComeUp();
  void GoAway();
  /// Off the screen, and no window of the system's any more.
  void PutAway();
  bool IsOnScreen() const { return Window() != nullptr && IsWindowVisible(Window()); }
  /// The window that it belongs to, for questions; and, unless it goes its own ways, stays above.
  void BelongTo(FormWidget* owner);
  const FormWidget* BelongsTo() const { return belongsTo_; }

  // The keyboard.
  void AddTabStop(NativeWidget& widget);
  void RemoveTabStop(NativeWidget& widget);
  const std::vector<NativeWidget*>& TabStops() const { return tabStops_; }
  void FocusNext(bool backwards);
  /// The control that has the keyboard, or had it when the window lost it.
  HWND Keyboard() const;
  struct Accelerator {
    int Key;
    int Shift;
    std::function<void()> Pressed;
  };
  std::vector<Accelerator> Accelerators;
  /// A widget is about to be hidden or disabled: the keyboard must not stay in it.
  void KeyboardLeaves(NativeWidget& widget);
  void KeyboardReturns(NativeWidget& widget);
  /// Shown again, it starts with the keyboard at its first control.
  void ForgetKeyboard();
  /// What Esc presses.
  NativeWidget* CancelButton = nullptr;

  /// Procedures of this window, or of a control in it, that are on the stack.
  int ProceduresRunning = 0;
  /// The window's age on the pile of popups, from 1; 0 when it is not on it.
  std::uint64_t PileNumber = 0;

  /// The program's first window, which is its main one; none before it is made.
  static FormWidget* Main() { return main_; }
  static const std::vector<FormWidget*>& All() { return all_; }

 protected:
  bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) override;

 private:
  void Realise();
  DWORD Style() const;
  DWORD ExtendedStyle() const;
  /// The outer rectangle of a place, in pixels of the screen.
  RECT Outer(const Place& place) const;
  void Moved();
  void LimitSize(MINMAXINFO& limits) const;
  void ChangeScale(const RECT& suggested);
  void KeepKeyboard(bool active);

  inline static FormWidget* main_ = nullptr;
  inline static std::vector<FormWidget*> all_;
  Form* form_ = nullptr;
  FormDesign design_;
  std::wstring title_;
  FormWidget* belongsTo_ = nullptr;
  bool topmost_ = false;
  bool cameUp_ = false;
  std::vector<NativeWidget*> tabStops_;
  HWND lastKeyboard_ = nullptr;   ///< Where the keyboard was when the window lost it.
  NativeWidget* left_ = nullptr;  ///< What the keyboard was in when it was hidden.
};

/// For the length of one procedure of a window: it is not freed meanwhile.
class ProcedureRuns {
 public:
  explicit ProcedureRuns(FormWidget& form) : form_(form) { ++form_.ProceduresRunning; }
  ProcedureRuns(const ProcedureRuns&) = delete;
  ProcedureRuns& operator=(const ProcedureRuns&) = delete;
  ~ProcedureRuns() { --form_.ProceduresRunning; }

 private:
  Running running_;
  FormWidget& form_;
};

}  // namespace platform
