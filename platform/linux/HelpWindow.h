#pragma once

#include <QWidget>

#include "platform/linux/OwnAccessible.h"

class QLineEdit;
class QTextBrowser;
class QUrl;

namespace platform {

/// The pages of a help in a window of its own, with the way back and forward and a search in the
/// page. Esc closes it.
class HelpWindow : public QWidget, public OwnAccessible {
 public:
  HelpWindow();

  /// Shows a page, which is from now on also where "Home" leads, and comes to the front.
  void Open(const QUrl& page);

  QAccessibleInterface* NewAccessible() override;

 protected:
  void changeEvent(QEvent* event) override;

 private:
  QLayout* MakeButtons();
  void Find(bool fromStart);

  QTextBrowser* pages_;
  QLineEdit* wanted_;
};

}  // namespace platform
