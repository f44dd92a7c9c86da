#include "platform/linux/LinesEdit.h"

#include <algorithm>
#include <vector>

#include <QMimeData>
#include <QMouseEvent>
#include <QTextBlock>

#include "platform/linux/FocusFrame.h"

namespace platform {

namespace {

constexpr int MostInBlock = 5000;
constexpr int GoesOn = 1;  // state of a block whose line goes on in the next one

}  // namespace

LinesEdit::LinesEdit(QWidget* parent) : QPlainTextEdit(parent) {
  setLineWrapMode(NoWrap);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  setTabChangesFocus(true);
}

void LinesEdit::Lock(bool readOnly) {
  setReadOnly(readOnly);
  if (readOnly) setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

void LinesEdit::SetLines(const QString& text) {
  QString blocks;
  blocks.reserve(text.size() + text.size() / MostInBlock);
  std::vector<int> goingOn;
  int block = 0;
  int length = 0;
  for (const QChar character : text) {
    const bool endsLine = character == u'\n';
    if (length >= MostInBlock && !endsLine && !character.isLowSurrogate()) {
      goingOn.push_back(block++);
      blocks += u'\n';
      length = 0;
    }
    blocks += character;
    ++length;
    if (!endsLine) continue;
    ++block;
    length = 0;
  }
  setPlainText(blocks);
  for (const int each : goingOn) document()->findBlockByNumber(each).setUserState(GoesOn);
}

QString LinesEdit::Lines() const { return Between(0, document()->characterCount() - 1); }

bool LinesEdit::event(QEvent* event) {
  const bool taken = QPlainTextEdit::event(event);
  ShowFocusOnFrame(*this, *event);
  return taken;
}

void LinesEdit::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && event->modifiers() != Qt::ShiftModifier) {
    setTextCursor(cursorForPosition(event->position().toPoint()));
  }
  QPlainTextEdit::mousePressEvent(event);
}

QMimeData* LinesEdit::createMimeDataFromSelection() const {
  auto* lines = new QMimeData;
  lines->setText(Between(textCursor().selectionStart(), textCursor().selectionEnd()));
  return lines;
}

QString LinesEdit::Between(int begin, int end) const {
  QString text;
  QTextBlock block = document()->findBlock(begin);
  for (; block.isValid() && block.position() < end; block = block.next()) {
    const int first = std::max(0, begin - block.position());
    text += block.text().mid(first, end - block.position() - first);
    const bool isWhole = block.position() + block.length() <= end;
    if (isWhole && block.userState() != GoesOn) text += u'\n';
  }
  return text;
}

}  // namespace platform
