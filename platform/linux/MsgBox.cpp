#include <QCoreApplication>
#include <QMessageBox>

#include "platform/Forms.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/Widgets.h"

namespace platform {

static int openBoxes = 0;

bool InsideMsgBox() { return openBoxes > 0; }

int MsgBox(const std::string& text, int flags) {
  QWidget* parent = FormWidget::Main();
  QMessageBox box(parent);
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setText(FromText(text));
  box.setIcon(flags & MB_ICONQUESTION      ? QMessageBox::Question
              : flags & MB_ICONINFORMATION ? QMessageBox::Information
                                           : QMessageBox::NoIcon);
  if (flags & MB_YESNO) {
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setEscapeButton(QMessageBox::No);
  }
  // The main window and those that it owns are blocked. Popups can be used, and what they open.
  if (parent) box.setWindowModality(Qt::WindowModal);
  ++openBoxes;
  const int answer = box.exec();
  --openBoxes;
  switch (answer) {
    case QMessageBox::Yes:
      return IDYES;
    case QMessageBox::No:
      return IDNO;
    default:
      return IDOK;
  }
}

}  // namespace platform
