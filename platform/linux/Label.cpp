#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QStylePainter>
#include <QTextOption>

#include "platform/Forms.h"
#include "platform/linux/OwnAccessible.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

class LabelWidget : public QLabel, public OwnAccessible {
 public:
  LabelWidget(QWidget* parent, Label& owner) : QLabel(parent), owner_(owner) {
    setTextFormat(Qt::PlainText);
    setAlignment(Qt::AlignLeft | Qt::AlignTop);
  }

  /// Draws a caption that is too wide for its label with narrower letters: faces differ, and the
  /// places of the controls do not.
  void FitCaption() {
    SetStretch(QFont::Unstretched);
    const int needed = fontMetrics().size(0, text()).width();
    if (!wordWrap() && needed > width() && width() > 0) SetStretch(100 * width() / needed);
  }

  void FitToCaption() {
    SetStretch(QFont::Unstretched);
    adjustSize();
  }

  void Press() {
    if (owner_.Click) owner_.Click();
  }

  QAccessibleInterface* NewAccessible() override;

 protected:
  void mouseReleaseEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint())) Press();
  }

  void keyPressEvent(QKeyEvent* event) override {
    switch (event->key()) {
      case Qt::Key_Return:
      case Qt::Key_Enter:
      case Qt::Key_Space:
        return Press();
      default:
        QLabel::keyPressEvent(event);
    }
  }

  void paintEvent(QPaintEvent* event) override {
    if (wordWrap()) {
      PaintWrapped();
    } else {
      QLabel::paintEvent(event);
    }
    if (!hasFocus()) return;
    QStylePainter painter(this);
    QStyleOptionFocusRect option;
    option.initFrom(this);
    painter.drawPrimitive(QStyle::PE_FrameFocusRect, option);
  }

 private:
  /// The toolkit's own label breaks no word that is too long for a line.
  void PaintWrapped() {
    QTextOption option(alignment());
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QPainter painter(this);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(QRectF(rect()), text(), option);
  }

  void SetStretch(int percent) {
    QFont narrowed = font();
    narrowed.setStretch(percent);
    setFont(narrowed);
  }

  Label& owner_;
};

/// What screen readers are told of a label that is a link.
class AccessibleLink : public QAccessibleWidget {
 public:
  explicit AccessibleLink(LabelWidget& label)
      : QAccessibleWidget(&label, QAccessible::Link), label_(label) {}

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? label_.text() : QAccessibleWidget::text(kind);
  }

  QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

  void doAction(const QString& name) override {
    if (name == pressAction()) return label_.Press();
    QAccessibleWidget::doAction(name);
  }

 private:
  LabelWidget& label_;
};

QAccessibleInterface* LabelWidget::NewAccessible() {
  return focusPolicy() == Qt::NoFocus ? nullptr : new AccessibleLink(*this);
}

}  // namespace

Label::Label(Container& parent, const Design& design)
    : Control(parent, design, ::platform::Native(new LabelWidget(Widget(parent), *this))) {
  Caption(design.Caption);
}

std::string Label::Caption() const { return ToText(static_cast<QLabel*>(Widget(*this))->text()); }
void Label::Caption(std::string_view text) {
  auto* label = static_cast<LabelWidget*>(Widget(*this));
  label->setText(FromText(text));
  label->FitCaption();
}

void Label::Centered() {
  static_cast<QLabel*>(Widget(*this))->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
}

void Label::WordWrap() {
  auto* label = static_cast<LabelWidget*>(Widget(*this));
  label->setWordWrap(true);
  label->FitCaption();
}

void Label::AutoSize() { static_cast<LabelWidget*>(Widget(*this))->FitToCaption(); }

void Label::Link() {
  constexpr QSize Size(32, 32);
  constexpr QPoint HotSpot(5, 0);
  QWidget* label = Widget(*this);
  const QPixmap hand = QIcon(":/assets/hand.cur").pixmap(Size, label->devicePixelRatioF());
  // The X server counts the hot spot in the picture's own pixels.
  const QPoint tip = HotSpot * hand.devicePixelRatio();
  label->setCursor(QCursor(hand, tip.x(), tip.y()));
  label->setFocusPolicy(Qt::StrongFocus);
  RenewAccessible(*label);
}

}  // namespace platform
