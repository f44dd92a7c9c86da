#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>
#include <xcb/xcb.h>

#include <QPointer>
#include <QWidget>

#include "platform/Forms.h"
#include "platform/linux/NormalPlace.h"
#include "platform/linux/OwnAccessible.h"

namespace platform {

// A window's frame counts this much, in twips, whatever the desktop draws around it, so that
// layouts come out the same everywhere.
inline constexpr int FrameWidth = 120;
inline constexpr int FrameHeight = 420;

/// The widget of a window: hands its events to the window's procedures.
class FormWidget : public QWidget, public OwnAccessible {
 public:
  FormWidget(Form& form, const FormDesign& design);

  /// Notes a control's place in the tab order, over all containers of the window.
  void AddTabStop(int index, QWidget* widget);
  /// Shows the window, complete with what it makes when it is shown for the first time. One that
  /// is there already comes to the front.
  void ComeUp();
  /// Whose window it is from the next `ComeUp` on.
  void Owner(FormWidget& owner) { owner_ = &owner; }
  /// Hides the window until it comes up, or is brought back by the user from where it hides.
  void GoAway();
  /// While nothing else would lead back to it, the window hides minimised in the task bar.
  void HideInTaskbar(bool inTaskbar);
  /// The state that the program knows: of a hidden window the one that it went away with.
  Qt::WindowStates State() const;
  /// Neither minimised nor maximised, where the window last was so.
  void BackToNormal();
  /// The program's first window, which is its main one; none before it is made.
  static const QPointer<FormWidget>& Main() { return main_; }
  QAccessibleInterface* NewAccessible() override;
  /// Events that come from now on go nowhere.
  void Forget() { form_ = nullptr; }
  /// The window's age on the pile of popups, from 1; 0 when it is not on it.
  std::uint64_t PileNumber = 0;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  xcb_window_t Id() { return static_cast<xcb_window_t>(winId()); }
  void StateChanged(bool byWindowManager);
  void ApplyTabOrder();
  void PrepareToShow();
  void JoinOwner();
  void StayAway();
  /// On the desktop that the user sees.
  bool IsInSight();
  /// With what window managers take off the screen together with this one, or would.
  void CameBack();
  void StayAboveOwner();

  inline static QPointer<FormWidget> main_;
  Form* form_;
  QAccessible::Role role_;
  bool inTaskbar_;
  bool cameUp_ = false;
  bool isMinimised_ = false;  // beyond doubt, other than what the toolkit tells
  bool hidesInTaskbar_ = false;
  QPointer<FormWidget> owner_;
  std::optional<Qt::WindowStates> wentAs_;    // of a window that is hidden
  std::unique_ptr<NormalPlace> normalPlace_;  // of a window that can be maximised
  std::vector<std::pair<int, QWidget*>> tabStops_;
};

}  // namespace platform
