#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include <QAbstractListModel>
#include <QApplication>
#include <QClipboard>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QListView>
#include <QStyledItemDelegate>

#include "platform/Forms.h"
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
  bool HasNew() const { return announced_ < Count(); }
  std::string Line(int index) const {
    return index >= 0 && index < Count() ? std::string(View(index)) : std::string();
  }

  void Announce() {
    if (!HasNew()) return;
    beginInsertRows({}, announced_, Count() - 1);
    announced_ = Count();
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

  int Widest = 0;  ///< Of the texts, in pixels.

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const override {
    constexpr int Room = 2;
    const QStyle* style = option.widget->style();
    const int margin = style->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, option.widget) + 1;
    return {Widest + 2 * margin, option.fontMetrics.height() + Room};
  }
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
    if (settleScheduled_) return;
    settleScheduled_ = true;
    QMetaObject::invokeMethod(this, [this] { Settle(); }, Qt::QueuedConnection);
  }

 protected:
  void keyPressEvent(QKeyEvent* event) override {
    if (!event->matches(QKeySequence::Copy)) return QListView::keyPressEvent(event);
    event->accept();
    CopySelected();
  }

  void changeEvent(QEvent* event) override {
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
      delegate_->Widest = 0;
      Measure(0);
      scheduleDelayedItemsLayout();
    }
    QListView::changeEvent(event);
  }

 private:
  void Settle() {
    settleScheduled_ = false;
    Measure(lines_->rowCount());
    lines_->Announce();
  }

  void Measure(int first) {
    for (int i = first; i < lines_->Count(); ++i) {
      const int width = fontMetrics().horizontalAdvance(DisplayText(lines_->Line(i)));
      delegate_->Widest = std::max(delegate_->Widest, width);
    }
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
  return static_cast<LinesView*>(Widget(*this))->Lines().Line(index);
}

}  // namespace platform
