#include <algorithm>
#include <utility>
#include <vector>

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QHash>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QStyleOptionFocusRect>
#include <QStyleOptionTabWidgetFrame>
#include <QStylePainter>
#include <QTabBar>
#include <QTextBlock>
#include <QTextOption>
#include <QTimer>

#include "platform/Forms.h"
#include "platform/linux/FormWidget.h"
#include "platform/linux/ListText.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

QHash<std::uint32_t, Control*>& Handles() {
  static QHash<std::uint32_t, Control*> handles;
  return handles;
}

QHash<std::uint32_t, QIcon>& Pictures() {
  static QHash<std::uint32_t, QIcon> pictures;
  return pictures;
}

std::uint32_t NextHandle() {
  static std::uint32_t last = 0;
  return ++last;
}

QColor ThemeColour(std::uint32_t colour, const QWidget* widget) {
  const QPalette palette = widget->window()->palette();
  switch (colour) {
    case vbScrollBars:
      return palette.color(QPalette::Window);
    case vbTitleBarText:
      return Qt::white;  // As on a standard desktop: the toolkit can't tell.
    default:
      return QColor::fromRgb(static_cast<QRgb>(colour));
  }
}

constexpr std::uint32_t ThemeBit = 0x80000000;
constexpr const char* ThemeColourOfBack = "themeColourOfBack";

void PaintBack(QWidget& widget, std::uint32_t colour) {
  const QColor wanted = ThemeColour(colour, &widget);
  widget.setAutoFillBackground(true);
  const QWidget* holder = widget.parentWidget();
  const QPalette inherited = holder ? holder->palette() : QPalette();
  if (inherited.color(widget.backgroundRole()).rgb() == wanted.rgb()) {
    widget.setPalette(QPalette());  // the colour of what holds it: follows a change of theme
    return;
  }
  QPalette palette = widget.palette();
  palette.setColor(widget.backgroundRole(), wanted);
  widget.setPalette(palette);
}

}  // namespace

void RenewThemeColours(const QWidget& window) {
  for (QWidget* widget : window.findChildren<QWidget*>()) {
    const QVariant colour = widget->property(ThemeColourOfBack);
    if (colour.isValid()) PaintBack(*widget, colour.toUInt());
  }
}

Control* ControlByHandle(std::uint32_t handle) { return Handles().value(handle, nullptr); }

QIcon PictureByHandle(std::uint32_t handle) { return Pictures().value(handle); }

QColor ReadableOn(const QColor& wanted, const QColor& background) {
  constexpr int Middle = 128;
  constexpr int LightShade = 205;
  if (background.lightness() >= Middle || wanted.lightness() > Middle) return wanted;
  return QColor::fromHsl(wanted.hslHue(), wanted.hslSaturation(), LightShade);
}

// --- Control ---------------------------------------------------------------------------------

Control::Control(NativeWidget* native) : native_(native), handle_(NextHandle()) {
  Handles().insert(handle_, this);
}

Control::Control(Container& parent, const Design& design, NativeWidget* native) : Control(native) {
  QWidget* widget = Widget(native);
  widget->setObjectName(design.Name);
  widget->setAccessibleName(design.AccessibleName);
  // What the pointer does on a control is no event of the window that lies below.
  widget->setAttribute(Qt::WA_NoMousePropagation);
  Move(design.At);
  if (design.TabIndex >= 0) {
    static_cast<FormWidget*>(Widget(parent)->window())->AddTabStop(design.TabIndex, widget);
  }
}

Control::~Control() {
  Handles().remove(handle_);
  delete Widget(native_);
}

int Control::Left() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->x() - Origin(*widget).x());
}

int Control::Top() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->y() - Origin(*widget).y());
}

int Control::Width() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->width()) + (widget->isWindow() ? FrameWidth : 0);
}

int Control::Height() const {
  const QWidget* widget = Widget(*this);
  return ToTwips(widget->height()) + (widget->isWindow() ? FrameHeight : 0);
}

void Control::Left(int twips) {
  QWidget* widget = Widget(*this);
  widget->move(ToPixels(twips) + Origin(*widget).x(), widget->y());
}

void Control::Top(int twips) {
  QWidget* widget = Widget(*this);
  widget->move(widget->x(), ToPixels(twips) + Origin(*widget).y());
}

void Control::Width(int twips) {
  QWidget* widget = Widget(*this);
  const int client = twips - (widget->isWindow() ? FrameWidth : 0);
  widget->resize(std::max(0, ToPixels(client)), widget->height());
}

void Control::Height(int twips) {
  QWidget* widget = Widget(*this);
  const int client = twips - (widget->isWindow() ? FrameHeight : 0);
  widget->resize(widget->width(), std::max(0, ToPixels(client)));
}

void Control::Move(const Place& to) {
  Widget(*this)->setGeometry(ToPixels(to.Left), ToPixels(to.Top), ToPixels(to.Width),
                             ToPixels(to.Height));
}

bool Control::Visible() const { return !Widget(*this)->isHidden(); }
void Control::Visible(bool visible) {
  // One that is back before the next event has never left for the user: it keeps the keyboard.
  static QPointer<QWidget> leftWithFocus;
  QWidget* widget = Widget(*this);
  if (!visible && widget->window()->focusWidget() == widget) {
    leftWithFocus = widget;
    QTimer::singleShot(0, widget, [] { leftWithFocus = nullptr; });
  }
  widget->setVisible(visible);
  if (visible && leftWithFocus == widget) widget->setFocus();
}

bool Control::Enabled() const { return Widget(*this)->isEnabled(); }
void Control::Enabled(bool enabled) { Widget(*this)->setEnabled(enabled); }

std::uint32_t Control::BackColor() const {
  const QWidget* widget = Widget(*this);
  return widget->palette().color(widget->backgroundRole()).rgb() & 0xFFFFFF;
}

void Control::BackColor(std::uint32_t colour) {
  QWidget* widget = Widget(*this);
  const bool isTheme = (colour & ThemeBit) != 0;
  widget->setProperty(ThemeColourOfBack, isTheme ? QVariant(colour) : QVariant());
  PaintBack(*widget, colour);
}

void Control::ForeColor(std::uint32_t colour) {
  QWidget* widget = Widget(*this);
  QPalette palette = widget->palette();
  palette.setColor(widget->foregroundRole(), ReadableOn(ThemeColour(colour, widget),
                                                        palette.color(widget->backgroundRole())));
  widget->setPalette(palette);
}

void Control::FontUnderline(bool underline) {
  QFont font = Widget(*this)->font();
  font.setUnderline(underline);
  Widget(*this)->setFont(font);
}

void Control::SetFocus() { Widget(*this)->setFocus(); }

// --- Buttons ---------------------------------------------------------------------------------

CommandButton::CommandButton(Container& parent, const Design& design)
    : Control(parent, design,
              ::platform::Native(new QPushButton(FromText(design.Caption), Widget(parent)))) {
  auto* button = static_cast<QPushButton*>(Widget(*this));
  button->setAutoDefault(true);  // Enter presses the button that has the focus
  QObject::connect(button, &QPushButton::clicked, [this] {
    if (Click) Click();
  });
}

void CommandButton::Cancel() {
  auto* button = static_cast<QPushButton*>(Widget(*this));
  auto* shortcut = new QShortcut(QKeySequence(Qt::Key_Escape), button->window());
  QObject::connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
}

CheckBox::CheckBox(Container& parent, const Design& design)
    : Control(parent, design,
              ::platform::Native(new QCheckBox(FromText(design.Caption), Widget(parent)))) {
  QObject::connect(static_cast<QCheckBox*>(Widget(*this)), &QCheckBox::toggled, [this] {
    if (Click) Click();
  });
}

int CheckBox::Value() const { return static_cast<QCheckBox*>(Widget(*this))->isChecked() ? 1 : 0; }
void CheckBox::Value(int value) { static_cast<QCheckBox*>(Widget(*this))->setChecked(value == 1); }

// --- TextBox ---------------------------------------------------------------------------------

namespace {

class LineEdit : public QLineEdit {
 public:
  LineEdit(QWidget* parent, TextBox& owner) : QLineEdit(parent), owner_(owner) {}

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    constexpr int Enter = 13;
    const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    const int code = isEnter ? Enter : event->text().isEmpty() ? 0 : event->text().at(0).unicode();
    if (code != 0 && owner_.KeyPress) owner_.KeyPress(code);
    QLineEdit::keyPressEvent(event);
  }

 private:
  TextBox& owner_;
};

/// Lines of any length. The toolkit takes time and memory by the length of each block of text in
/// sight, so a line much longer than any browser's cookie goes on in the next block, which shows as
/// a line of its own; reading and copying give it in one.
class LinesEdit : public QPlainTextEdit {
 public:
  using QPlainTextEdit::QPlainTextEdit;

  void SetLines(const QString& text) {
    constexpr int MostInBlock = 5000;
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

  QString Lines() const { return Between(0, document()->characterCount() - 1); }

 protected:
  /// A press on the selection begins a new one. A drag of the old one would run events in a loop of
  /// its own, in which the window could close and be freed.
  void mousePressEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton && event->modifiers() != Qt::ShiftModifier) {
      setTextCursor(cursorForPosition(event->position().toPoint()));
    }
    QPlainTextEdit::mousePressEvent(event);
  }

  QMimeData* createMimeDataFromSelection() const override {
    auto* lines = new QMimeData;
    lines->setText(Between(textCursor().selectionStart(), textCursor().selectionEnd()));
    return lines;
  }

 private:
  static constexpr int GoesOn = 1;

  QString Between(int begin, int end) const {
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
};

NativeWidget* NewTextBox(Container& parent, TextBox& owner, TextBox::Kind kind) {
  if (kind == TextBox::Kind::OneLine) return Native(new LineEdit(Widget(parent), owner));
  auto* edit = new LinesEdit(Widget(parent));
  edit->setLineWrapMode(QPlainTextEdit::NoWrap);
  edit->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  edit->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
  edit->setTabChangesFocus(true);
  return Native(edit);
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
    static_cast<LinesEdit*>(Widget(*this))->setReadOnly(readOnly);
  }
}

// --- Label -----------------------------------------------------------------------------------

namespace {

class LabelWidget : public QLabel {
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

  void showEvent(QShowEvent* event) override;

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

  static QAccessibleInterface* Make(const QString&, QObject* object) {
    auto* label = dynamic_cast<LabelWidget*>(object);
    const bool isLink = label && label->focusPolicy() != Qt::NoFocus;
    return isLink ? new AccessibleLink(*label) : nullptr;
  }

 private:
  LabelWidget& label_;
};

// The last factory to be installed is asked first, and the toolkit installs its own late.
void LabelWidget::showEvent(QShowEvent* event) {
  QLabel::showEvent(event);
  if (focusPolicy() == Qt::NoFocus || !QAccessible::isActive()) return;
  QAccessible::removeFactory(AccessibleLink::Make);
  QAccessible::installFactory(AccessibleLink::Make);
  QAccessibleInterface* known = QAccessible::queryAccessibleInterface(this);
  if (known->role() == QAccessible::Link) return;
  QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
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
}

// --- ComboBox, panels, pictures ----------------------------------------------------------------

ComboBox::ComboBox(Container& parent, const Design& design, const std::vector<std::string>& items)
    : Control(parent, design, ::platform::Native(new QComboBox(Widget(parent)))) {
  auto* combo = static_cast<QComboBox*>(Widget(*this));
  for (const std::string& item : items) combo->addItem(FromText(item));
  combo->setCurrentIndex(-1);
}

int ComboBox::ListIndex() const { return static_cast<QComboBox*>(Widget(*this))->currentIndex(); }
void ComboBox::ListIndex(int index) {
  static_cast<QComboBox*>(Widget(*this))->setCurrentIndex(index);
}

PictureBox::PictureBox(Container& parent, const Design& design)
    : Container(parent, design, ::platform::Native(new QWidget(Widget(parent)))) {}

Frame::Frame(Container& parent, const Design& design)
    : Container(parent, design,
                ::platform::Native(new QGroupBox(FromText(design.Caption), Widget(parent)))) {}

Image::Image(Container& parent, const Design& design, const std::string& resource)
    : Control(parent, design, ::platform::Native(new QLabel(Widget(parent)))),
      picture_(NextHandle()) {
  const QIcon icon(":/assets/" + FromText(resource));
  Pictures().insert(picture_, icon);
  auto* label = static_cast<QLabel*>(Widget(*this));
  label->setPixmap(icon.pixmap(label->size(), label->devicePixelRatioF()));
}

Line::Line(Container& parent, const Design& design, std::uint32_t colour)
    : Control(parent, design, ::platform::Native(new QWidget(Widget(parent)))) {
  Widget(*this)->resize(ToPixels(design.At.Width), std::max(1, ToPixels(design.At.Height)));
  BackColor(colour);
}

// --- TabStrip ----------------------------------------------------------------------------------

namespace {

/// A tab bar over an empty pane; the pages are the window's own controls, which lie above it.
class TabStripWidget : public QWidget {
 public:
  explicit TabStripWidget(QWidget* parent) : QWidget(parent), bar_(new QTabBar(this)) {
    setFocusProxy(bar_);
    bar_->setExpanding(false);
    bar_->setUsesScrollButtons(true);
  }

  QTabBar* Bar() const { return bar_; }

 protected:
  void resizeEvent(QResizeEvent*) override {
    bar_->setGeometry(0, 0, width(), bar_->sizeHint().height());
  }

  void paintEvent(QPaintEvent*) override {
    QStylePainter painter(this);
    QStyleOptionTabWidgetFrame option;
    option.initFrom(this);
    const int overlap = style()->pixelMetric(QStyle::PM_TabBarBaseOverlap, nullptr, bar_);
    option.rect = rect().adjusted(0, bar_->height() - overlap, 0, 0);
    option.tabBarRect = bar_->geometry();
    option.selectedTabRect = bar_->tabRect(bar_->currentIndex());
    option.tabBarSize = bar_->size();
    option.shape = bar_->shape();
    option.lineWidth = 1;
    painter.drawPrimitive(QStyle::PE_FrameTabWidget, option);
  }

 private:
  QTabBar* bar_;
};

QTabBar* Bar(const TabStrip& strip) { return static_cast<TabStripWidget*>(Widget(strip))->Bar(); }

}  // namespace

TabStrip::TabStrip(Container& parent, const Design& design, const std::vector<std::string>& tabs)
    : Control(parent, design, ::platform::Native(new TabStripWidget(Widget(parent)))) {
  for (const std::string& tab : tabs) Bar(*this)->addTab(FromText(tab));
  Bar(*this)->setAccessibleName(design.AccessibleName);
  QObject::connect(Bar(*this), &QTabBar::currentChanged, [this] {
    Widget(*this)->update();
    if (Click) Click();
  });
}

int TabStrip::SelectedItem() const { return Bar(*this)->currentIndex() + 1; }
void TabStrip::SelectedItem(int index) { Bar(*this)->setCurrentIndex(index - 1); }

// --- Timer, Menu -------------------------------------------------------------------------------

struct Timer::Native {
  QTimer Clock;
};

Timer::Timer(int intervalMilliseconds, bool enabled) : native_(std::make_unique<Native>()) {
  native_->Clock.setInterval(intervalMilliseconds);
  QObject::connect(&native_->Clock, &QTimer::timeout, [this] {
    if (Tick) Tick();
  });
  if (enabled) native_->Clock.start();
}

Timer::~Timer() = default;

bool Timer::Enabled() const { return native_->Clock.isActive(); }
void Timer::Enabled(bool enabled) {
  if (enabled) {
    native_->Clock.start();
  } else {
    native_->Clock.stop();
  }
}

Menu::Menu(Container& parent, const char* caption, const std::vector<Entry>& entries)
    : native_(::platform::Native(new QMenu(FromText(caption), Widget(parent)))) {
  auto* menu = static_cast<QMenu*>(Widget(native_));
  for (const Entry& entry : entries) {
    if (std::string_view(entry.Caption) == "-") {
      menu->addSeparator()->setObjectName(entry.Name);
      continue;
    }
    QAction* action = menu->addAction(FromText(entry.Caption));
    action->setObjectName(entry.Name);
    QObject::connect(action, &QAction::triggered, [click = entry.Click] {
      if (click) click();
    });
  }
}

Menu::~Menu() { delete Widget(native_); }

}  // namespace platform
