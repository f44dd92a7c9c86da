#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QStyleOptionFrame>

#include "platform/Forms.h"
#include "platform/linux/CutText.h"
#include "platform/linux/LinesEdit.h"
#include "platform/linux/ListText.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

class LineEdit : public QLineEdit {
 public:
  LineEdit(QWidget* parent, TextBox& owner) : QLineEdit(parent), owner_(owner) {
    connect(this, &QLineEdit::cursorPositionChanged, this, [this] { update(); });
  }

 protected:
  bool event(QEvent* event) override {
    if (event->type() != QEvent::ToolTip || !toolTip().isEmpty()) return QLineEdit::event(event);
    ShowWholeText(IsCut() ? displayText() : QString(), static_cast<QHelpEvent*>(event)->globalPos(),
                  *this, rect());
    return true;
  }

  /// The toolkit shows no caret in a text that is locked.
  void paintEvent(QPaintEvent* event) override {
    QLineEdit::paintEvent(event);
    if (!isReadOnly() || !hasFocus()) return;
    const QRect around = cursorRect();
    QPainter(this).fillRect(around.center().x(), around.top(), 1, around.height(),
                            palette().text());
  }

  void keyPressEvent(QKeyEvent* event) override {
    constexpr int Enter = 13;
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const int code = isEnter ? Enter : event->text().isEmpty() ? 0 : event->text().at(0).unicode();
    if (code != 0 && owner_.KeyPress) owner_.KeyPress(code);
    QLineEdit::keyPressEvent(event);
  }

 private:
  bool IsCut() const {
    constexpr int Margin = 2;  // the toolkit's, at either side of the text
    QStyleOptionFrame option;
    initStyleOption(&option);
    const QRect room = style()->subElementRect(QStyle::SE_LineEditContents, &option, this);
    return fontMetrics().horizontalAdvance(displayText()) > room.width() - 2 * Margin;
  }

  TextBox& owner_;
};

NativeWidget* NewTextBox(Container& parent, TextBox& owner, TextBox::Kind kind) {
  if (kind == TextBox::Kind::OneLine) return Native(new LineEdit(Widget(parent), owner));
  return Native(new LinesEdit(Widget(parent)));
}

}  // namespace

TextBox::TextBox(Container& parent, const Design& design, Kind kind)
    : Control(parent, design, NewTextBox(parent, *this, kind)) {}

std::string TextBox::Text() const {
  if (const auto* line = dynamic_cast<QLineEdit*>(Widget(*this))) return ToText(line->text());
  return ToText(static_cast<LinesEdit*>(Widget(*this))->Lines());
}

void TextBox::Text(std::string_view text) {
  if (auto* line = dynamic_cast<QLineEdit*>(Widget(*this))) {
    line->setText(FromText(text));
    line->setCursorPosition(0);
  } else {
    static_cast<LinesEdit*>(Widget(*this))->SetLines(DisplayLines(text));
  }
}

void TextBox::Locked(bool readOnly) {
  if (auto* line = dynamic_cast<QLineEdit*>(Widget(*this))) {
    line->setReadOnly(readOnly);
  } else {
    static_cast<LinesEdit*>(Widget(*this))->Lock(readOnly);
  }
}

void TextBox::SelectAll() {
  if (auto* line = dynamic_cast<QLineEdit*>(Widget(*this))) line->selectAll();
}

}  // namespace platform
