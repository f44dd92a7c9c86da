#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include <QPointer>
#include <QWidget>

#include "platform/Forms.h"
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
  /// The program's first window, which is its main one; none before it is made.
  static const QPointer<FormWidget>& Main() { return main_; }
  QAccessibleInterface* NewAccessible() override;
  /// Events that come from now on go nowhere.
  void Forget() { form_ = nullptr; }
  Form* Owner() const { return form_; }
  /// The window's age on the pile of popups, from 1; 0 when it is not on it.
  std::uint64_t PileNumber = 0;

 protected:
  void closeEvent(QCloseEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void changeEvent(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;

 private:
  void ApplyTabOrder();
  /// Windows that window managers minimise together with this one.
  void BringOwnedBack() const;

  inline static QPointer<FormWidget> main_;
  Form* form_;
  QAccessible::Role role_;
  bool inTaskbar_;
  bool cameUp_ = false;
  std::vector<std::pair<int, QWidget*>> tabStops_;
};

}  // namespace platform
