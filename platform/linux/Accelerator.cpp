#include <functional>
#include <utility>

#include <QKeySequence>
#include <QShortcut>

#include "platform/Forms.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

Qt::Key Key(int code) {
  switch (code) {
    case vbKeyTab:
      return Qt::Key_Tab;
    case vbKeyPageUp:
      return Qt::Key_PageUp;
    case vbKeyPageDown:
      return Qt::Key_PageDown;
    case vbKeyF1:
      return Qt::Key_F1;
    default:
      return static_cast<Qt::Key>(code);  // a letter is its capital
  }
}

}  // namespace

void Form::Accelerator(int KeyCode, int Shift, std::function<void()> Pressed) {
  Qt::KeyboardModifiers shift;
  shift.setFlag(Qt::ShiftModifier, (Shift & vbShiftMask) != 0);
  shift.setFlag(Qt::ControlModifier, (Shift & vbCtrlMask) != 0);
  const QKeySequence keys(QKeyCombination(shift, Key(KeyCode)));
  QWidget* window = Widget(*this);
  QObject::connect(new QShortcut(keys, window), &QShortcut::activated,
                   [window, pressed = std::move(Pressed)] {
                     // Who uses keys is shown where the keyboard is, as after the Tab key.
                     window->setAttribute(Qt::WA_KeyboardFocusChange);
                     pressed();
                   });
}

}  // namespace platform
