#pragma once

#include <QApplication>
#include <QMessageBox>
#include <QTimer>

/// While it lives, every message box is answered with Yes.
class Answers {
 public:
  Answers() {
    timer_.callOnTimeout([this] {
      auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
      if (box == nullptr) return;
      ++Asked;
      box->done(QMessageBox::Yes);
    });
    timer_.start(1);
  }

  int Asked = 0;

 private:
  QTimer timer_;
};
