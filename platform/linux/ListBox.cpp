#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <QAbstractListModel>
#include <QApplication>
#include <QClipboard>
#include <QDeadlineTimer>
#include <QFontMetrics>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>
#include <QStyledItemDelegate>

#include "platform/Forms.h"
#include "platform/linux/CutText.h"
#include "platform/linux/FocusFrame.h"
#include "platform/linux/ListText.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

/// Lines, to which more are only ever added. The view learns of them by `Announce`.
class LinesModel : public QAbstractListModel {
 public:
  using QAbstractListModel::QAbstractListModel;

  void Add(std::string_view line) {
    text_ += line;
    ends_.push_back(text_.size());
  }
  int Count() const { return static_cast<int>(ends_.size()); }
  /// An empty one where there is none.
  std::string_view Line(int index) const {
    return index >= 0 && index < Count() ? View(index) : std::string_view();
  }

  /// The lines before `end`.
  void Announce(int end) {
    if (end <= announced_) return;
    beginInsertRows({}, announced_, end - 1);
    announced_ = end;
    endInsertRows();
  }

  int rowCount(const QModelIndex& parent = {}) const override {
    return parent.isValid() ? 0 : announced_;
  }

  QVariant data(const QModelIndex& index, int role) const override {
    if (!index.isValid() || role != Qt::DisplayRole) return {};
    return DisplayText(View(index.row()));
  }

 private:
  std::string_view View(int index) const {
    const auto line = static_cast<std::size_t>(index);
    const std::size_t begin = line == 0 ? 0 : ends_[line - 1];
    return std::string_view(text_).substr(begin, ends_[line] - begin);
  }

  // All lines in one piece: as pieces of their own they would lie between the short-lived windows
  // that come up with each of them, whose memory could then not go back to the system.
  std::string text_;
  std::vector<std::size_t> ends_;
  int announced_ = 0;
};

/// Gives all lines the size of the widest, so that the view need not measure each one.
class LineDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  /// Forgets the widest, and how wide letters are.
  void Begin(const QFontMetrics& metrics) {
    widest_ = 0;
    for (std::size_t letter = ' '; letter < letters_.size(); ++letter) {
      letters_[letter] = metrics.horizontalAdvance(QChar(static_cast<char16_t>(letter)));
    }
  }

  void Measure(std::string_view line, const QFontMetrics& metrics) {
    if (letters_[' '] == 0) Begin(metrics);
    if (CannotBeWider(line)) return;
    widest_ = std::max(widest_, metrics.horizontalAdvance(DisplayText(line)));
  }

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    constexpr int Room = 2;
    const QStyle* style = option.widget->style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    return {widest_ + 2 * margin, option.fontMetrics.height() + Room};
  }

 private:
  /// Told by its letters one by one, which takes a twentieth of the time of measuring it. Rounded
  /// and side by side they can differ a little from what they take alone.
  bool CannotBeWider(std::string_view line) const {
    int width = static_cast<int>(line.size() / 8);
    for (const char letter : line) {
      const auto byte = static_cast<unsigned char>(letter);
      if (byte < ' ' || byte >= letters_.size()) return false;
      width += letters_[byte];
    }
    return width <= widest_;
  }

  int widest_ = 0;                  ///< Of the texts, in pixels.
  std::array<int, 127> letters_{};  ///< Widths of the plain ones.
};

class LinesView : public QListView {
 public:
  explicit LinesView(QWidget* parent)
      : QListView(parent), lines_(new LinesModel(this)), delegate_(new LineDelegate(this)) {
    setModel(lines_);
    setItemDelegate(delegate_);
    setUniformItemSizes(true);
    setSelectionMode(ExtendedSelection);
    setEditTriggers(NoEditTriggers);
    setHorizontalScrollMode(ScrollPerPixel);
  }

  const LinesModel& Lines() const { return *lines_; }

  void Add(std::string_view line) {
    lines_->Add(line);
    SettleLater();
  }

 protected:
  bool event(QEvent* event) override {
    const bool taken = QListView::event(event);
    ShowFocusOnFrame(*this, *event);
    return taken;
  }

  bool viewportEvent(QEvent* event) override {
    if (event->type() != QEvent::ToolTip) return QListView::viewportEvent(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QModelIndex line = indexAt(help->pos());
    ShowWholeText(IsCut(line) ? line.data().toString() : QString(), help->globalPos(), *viewport(),
                  visualRect(line));
    return true;
  }

  void keyPressEvent(QKeyEvent* event) override {
    if (!event->matches(QKeySequence::Copy)) return QListView::keyPressEvent(event);
    event->accept();
    CopySelected();
  }

  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
      delegate_->Begin(fontMetrics());
      Measure(0, QDeadlineTimer::Forever);
      scheduleDelayedItemsLayout();
    }
    QListView::changeEvent(event);
  }

 private:
  bool IsCut(const QModelIndex& line) const {
    const QRect place = visualRect(line);
    const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
    const int end = place.left() + margin + fontMetrics().horizontalAdvance(line.data().toString());
    return line.isValid() && (place.left() < 0 || end > viewport()->width());
  }

  void SettleLater() {
    if (std::exchange(settleScheduled_, true)) return;
    QMetaObject::invokeMethod(this, [this] { Settle(); }, Qt::QueuedConnection);
  }

  /// A storm of lines is taken in piece by piece, with other events in between.
  void Settle() {
    using std::chrono_literals::operator""ms;
    settleScheduled_ = false;
    lines_->Announce(Measure(lines_->rowCount(), QDeadlineTimer(20ms)));
    if (lines_->rowCount() < lines_->Count()) SettleLater();
  }

  /// Returns how many have been measured when the time is up.
  int Measure(int first, QDeadlineTimer timeUp) {
    constexpr int AtOnce = 256;
    const QFontMetrics metrics = fontMetrics();
    int measured = first;
    while (measured < lines_->Count() && (measured == first || !timeUp.hasExpired())) {
      const int end = std::min(lines_->Count(), measured + AtOnce);
      for (; measured < end; ++measured) delegate_->Measure(lines_->Line(measured), metrics);
    }
    return measured;
  }

  void CopySelected() const {
    QModelIndexList selected = selectionModel()->selectedIndexes();
    std::sort(selected.begin(), selected.end());
    QString text;
    for (const QModelIndex& line : selected) text += line.data().toString() + '\n';
    if (!text.isEmpty()) QApplication::clipboard()->setText(text);
  }

  LinesModel* lines_;
  LineDelegate* delegate_;
  bool settleScheduled_ = false;
};

}  // namespace

ListBox::ListBox(Container& parent, const Design& design)
    : Control(parent, design, ::platform::Native(new LinesView(Widget(parent)))) {}

void ListBox::AddItem(std::string_view line) { static_cast<LinesView*>(Widget(*this))->Add(line); }

int ListBox::ListCount() const { return static_cast<LinesView*>(Widget(*this))->Lines().Count(); }

std::string ListBox::List(int index) const {
  return std::string(static_cast<LinesView*>(Widget(*this))->Lines().Line(index));
}

}  // namespace platform
