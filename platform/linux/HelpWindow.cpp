#include "platform/linux/HelpWindow.h"

#include <QAccessibleWidget>
#include <QCoreApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

#include "platform/linux/Foreground.h"

namespace platform {

HelpWindow::HelpWindow() : pages_(new QTextBrowser(this)), wanted_(new QLineEdit(this)) {
  setWindowTitle(QCoreApplication::applicationName() + " Help");
  setWindowIcon(QIcon(":/assets/quillmere.ico"));
  // At a high scale a screen has little room.
  const QSize room = screen()->availableSize() - QSize(1, 2) * fontMetrics().height();
  resize(QSize(720, 560).boundedTo(room));

  constexpr double ReadingSize = 10.5;  // controls are lettered smaller than one likes to read
  QFont font = pages_->font();
  font.setPointSizeF(ReadingSize);
  pages_->setFont(font);
  pages_->setAccessibleName("Help page");
  pages_->setOpenExternalLinks(true);

  auto* layout = new QVBoxLayout(this);
  layout->addLayout(MakeButtons());
  layout->addWidget(pages_);
  pages_->setFocus();

  QObject::connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this,
                   &QWidget::close);
}

QLayout* HelpWindow::MakeButtons() {
  auto* row = new QHBoxLayout;
  const auto add = [&](const char* caption, const QKeySequence& key, auto action) {
    auto* button = new QPushButton(caption, this);
    button->setShortcut(key);
    button->setToolTip(key.toString(QKeySequence::NativeText));
    QObject::connect(button, &QPushButton::clicked, pages_, action);
    row->addWidget(button);
    return button;
  };
  auto* back = add("Back", Qt::ALT | Qt::Key_Left, &QTextBrowser::backward);
  auto* forward = add("Forward", Qt::ALT | Qt::Key_Right, &QTextBrowser::forward);
  auto* home = add("Home", Qt::ALT | Qt::Key_Home, &QTextBrowser::home);
  back->setEnabled(false);
  forward->setEnabled(false);
  QObject::connect(pages_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
  QObject::connect(pages_, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);

  auto* label = new QLabel("&Find in page:", this);
  label->setBuddy(wanted_);
  wanted_->setAccessibleName("Find in page");
  row->addStretch();
  row->addWidget(label);
  row->addWidget(wanted_);
  setTabOrder(home, wanted_);
  QObject::connect(wanted_, &QLineEdit::textEdited, this, [this] { Find(true); });
  QObject::connect(wanted_, &QLineEdit::returnPressed, this, [this] { Find(false); });
  QObject::connect(new QShortcut(QKeySequence::Find, this), &QShortcut::activated, wanted_, [this] {
    wanted_->setFocus();
    wanted_->selectAll();
  });
  QObject::connect(new QShortcut(QKeySequence::FindNext, this), &QShortcut::activated, this,
                   [this] { Find(false); });
  return row;
}

/// Marks the next place that holds the text, from the top again after the last one.
void HelpWindow::Find(bool fromStart) {
  if (fromStart) pages_->moveCursor(QTextCursor::Start);
  if (pages_->find(wanted_->text())) return;
  pages_->moveCursor(QTextCursor::Start);
  pages_->find(wanted_->text());
}

void HelpWindow::Open(const QUrl& page) {
  pages_->setSource(page);
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  ComeForward(*this);
}

QAccessibleInterface* HelpWindow::NewAccessible() {
  return new QAccessibleWidget(this, QAccessible::Window);
}

void HelpWindow::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() != QEvent::PaletteChange || pages_->source().isEmpty()) return;
  // A page takes the colour of its links when it is read.
  const int place = pages_->verticalScrollBar()->value();
  pages_->reload();
  pages_->verticalScrollBar()->setValue(place);
}

}  // namespace platform
