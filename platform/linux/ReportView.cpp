#include "platform/linux/ReportView.h"

#include <algorithm>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>

#include "platform/linux/ColumnHeaders.h"
#include "platform/linux/CutText.h"
#include "platform/linux/FocusFrame.h"
#include "platform/linux/MenuPlace.h"
#include "platform/linux/RowLook.h"
#include "platform/linux/Widgets.h"

namespace platform {

namespace {

bool IsInput(QEvent::Type type) {
  switch (type) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
    case QEvent::MouseMove:
    case QEvent::Wheel:
    case QEvent::ContextMenu:
    case QEvent::ToolTip:
    case QEvent::FocusIn:
      return true;
    default:
      return false;
  }
}

/// The character that a key stands for; 0 for a key without one.
int CharacterCode(const QKeyEvent& event) {
  constexpr int Enter = 13;
  if (event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter) return Enter;
  if (event.key() == Qt::Key_Delete || event.text().isEmpty()) return 0;
  return static_cast<int>(event.text().toUcs4().first());
}

}  // namespace

ReportView::ReportView(QWidget* parent, ListView& owner, const std::vector<ColumnHeader>& columns)
    : QTreeView(parent),
      owner_(owner),
      rows_(new ListViewModel(columns, this)),
      selection_(new RowSelection(rows_, this)) {
  setModel(rows_);
  QItemSelectionModel* standard = selectionModel();
  setSelectionModel(selection_);
  delete standard;
  setItemDelegate(new CellDelegate(this));
  setRootIsDecorated(false);
  setItemsExpandable(false);
  setIndentation(0);
  setUniformRowHeights(true);
  setSelectionMode(ExtendedSelection);
  setSelectionBehavior(SelectRows);
  setEditTriggers(NoEditTriggers);
  setVerticalScrollMode(ScrollPerItem);
  setHorizontalScrollMode(ScrollPerPixel);
  setTabKeyNavigation(false);
  SetUpHeader(columns);
  QAccessible::installActivationObserver(this);
}

ReportView::~ReportView() { QAccessible::removeActivationObserver(this); }

void ReportView::accessibilityActiveChanged(bool active) {
  if (active) executeDelayedItemsLayout();
}

void ReportView::SetUpHeader(const std::vector<ColumnHeader>& columns) {
  setHeader(new ColumnHeaders(this));
  header()->setSectionsClickable(true);  // taken away by the view, which does not sort
  for (std::size_t i = 0; i < columns.size(); ++i) {
    header()->resizeSection(static_cast<int>(i), ToPixels(columns[i].Width));
  }
  connect(header(), &QHeaderView::sectionClicked, this, &ReportView::RaiseColumnClick);
  connect(header(), &QHeaderView::sectionDoubleClicked, this, &ReportView::RaiseColumnClick);
}

void ReportView::RaiseColumnClick(int column) {
  if (column < 0) return;  // beside the last one
  Settle();
  ShowSortArrow();  // the header has turned its arrow by itself
  if (owner_.ColumnClick) owner_.ColumnClick(column + 1);
}

// --- Rows --------------------------------------------------------------------------------------

void ReportView::Add(const SharedText& text) {
  if (rows_->HasRemoved()) Settle();
  rows_->Add(text);
  SettleLater();
}

void ReportView::Remove(int row) {
  rows_->Remove(row);
  SettleLater();
}

void ReportView::Clear() {
  rows_->Clear();
  selection_->Forget();
  verticalScrollBar()->setValue(0);
  horizontalScrollBar()->setValue(0);
}

void ReportView::ScheduleSettle() {
  QMetaObject::invokeMethod(this, [this] { Settle(); }, Qt::QueuedConnection);
}

void ReportView::Settle() {
  settleScheduled_ = false;
  if (std::exchange(settling_, true)) return;
  if (rows_->HasRemoved()) {
    const std::vector<std::uint32_t> standing = rows_->Standing();
    const auto top = std::lower_bound(standing.begin(), standing.end(),
                                      static_cast<std::uint32_t>(verticalScrollBar()->value()));
    Arrange(standing, static_cast<int>(top - standing.begin()));
  } else {
    rows_->Announce();
    selection_->Settle();
  }
  accessibilityActiveChanged(QAccessible::isActive());
  settling_ = false;
}

void ReportView::Arrange(const std::vector<std::uint32_t>& order, int top) {
  std::vector<bool> selected(order.size(), false);
  for (std::size_t i = 0; i < order.size(); ++i)
    selected[i] = IsSelected(static_cast<int>(order[i]));
  const QModelIndex current = currentIndex();
  const auto was = static_cast<std::uint32_t>(current.row());
  auto now = std::find(order.begin(), order.end(), was);
  if (now == order.end()) {  // removed: the next row, which stands where that one stood
    now = std::find_if(order.begin(), order.end(), [was](auto row) { return row > was; });
  }
  const int sideways = horizontalScrollBar()->value();

  rows_->Arrange(order);
  selection_->Restore(selected);
  if (current.isValid()) MakeCurrent(static_cast<int>(now - order.begin()), current.column());
  executeDelayedItemsLayout();
  verticalScrollBar()->setValue(top);
  horizontalScrollBar()->setValue(sideways);
}

void ReportView::MakeCurrent(int row, int column) {
  const int last = rows_->rowCount() - 1;
  if (last < 0) return;
  const bool scrolls = hasAutoScroll();
  setAutoScroll(false);
  selectionModel()->setCurrentIndex(rows_->index(std::min(row, last), column),
                                    QItemSelectionModel::NoUpdate);
  setAutoScroll(scrolls);
}

// --- Selection ---------------------------------------------------------------------------------

bool ReportView::IsSelected(int row) const { return selection_->IsSelected(row); }

void ReportView::Select(int row, bool selected) {
  selection_->Select(row, selected);
  viewport()->update();
  SettleLater();
}

int ReportView::SelectedRow() const {
  const int current = currentIndex().row();
  if (IsSelected(current) && !rows_->IsRemoved(current)) return current;
  const std::vector<bool>& selected = selection_->Flags();
  for (int row = 0; row < static_cast<int>(selected.size()); ++row) {
    if (selected[static_cast<std::size_t>(row)] && !rows_->IsRemoved(row)) return row;
  }
  return -1;
}

QItemSelectionModel::SelectionFlags ReportView::selectionCommand(const QModelIndex& index,
                                                                 const QEvent* event) const {
  const auto command = QTreeView::selectionCommand(index, event);
  if (!event || !event->isInputEvent()) return command;
  const auto modifiers = static_cast<const QInputEvent*>(event)->modifiers();
  const bool rangeAlone = (modifiers & (Qt::ShiftModifier | Qt::ControlModifier)) ==
                          Qt::KeyboardModifiers(Qt::ShiftModifier);
  return rangeAlone && (command & QItemSelectionModel::Current) != 0
             ? command | QItemSelectionModel::Clear
             : command;
}

void ReportView::dataChanged(const QModelIndex& first, const QModelIndex& last,
                             const QList<int>& roles) {
  // The toolkit looks at every cell of the range to find out which ones are in sight.
  static_cast<void>(roles);
  viewport()->update();
  if (!QAccessible::isActive()) return;
  QAccessibleTableModelChangeEvent changed(this, QAccessibleTableModelChangeEvent::DataChanged);
  changed.setFirstRow(first.row());
  changed.setLastRow(last.row());
  changed.setFirstColumn(first.column());
  changed.setLastColumn(last.column());
  QAccessible::updateAccessibility(&changed);
}

void ReportView::selectionChanged(const QItemSelection& selected,
                                  const QItemSelection& deselected) {
  viewport()->update();
  // The toolkit lists every cell of a change to name its first one to screen readers.
  const auto firstRow = [this](const QItemSelection& ranges) {
    if (ranges.isEmpty()) return QItemSelection();
    const int row = ranges.first().top();
    return QItemSelection(rows_->index(row, 0), rows_->index(row, 0));
  };
  QTreeView::selectionChanged(firstRow(selected), firstRow(deselected));
}

// --- Sorting -----------------------------------------------------------------------------------

void ReportView::SortKey(int column) {
  sortKey_ = column;
  ShowSortArrow();
}

void ReportView::SortOrder(int order) {
  sortOrder_ = order;
  ShowSortArrow();
}

void ReportView::Sorted(bool sorted) {
  sorted_ = sorted;
  ShowSortArrow();
  if (!sorted) return;
  const bool nested = std::exchange(settling_, true);
  Arrange(rows_->Ordered(sortKey_, sortOrder_ == lvwDescending), verticalScrollBar()->value());
  settling_ = nested;
}

void ReportView::ShowSortArrow() {
  header()->setSortIndicatorShown(sorted_);
  header()->setSortIndicator(
      sortKey_, sortOrder_ == lvwDescending ? Qt::DescendingOrder : Qt::AscendingOrder);
}

// --- Look --------------------------------------------------------------------------------------

void ReportView::Style(std::uint32_t style) {
  style_ = style;
  viewport()->update();
}

void ReportView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  DrawRow(*painter, *this, option, index,
          {.FullRow = (style_ & LVS_EX_FULLROWSELECT) != 0,
           .Selected = IsSelected(index.row()),
           .Current = hasFocus() && currentIndex().row() == index.row()});
}

void ReportView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if ((style_ & LVS_EX_GRIDLINES) != 0) DrawGrid(*this);
}

bool ReportView::ShowToolTip(const QPoint& at, const QPoint& global) {
  const QModelIndex index = indexAt(at);
  const QRect cell = visualRect(index);
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  const int width = fontMetrics().horizontalAdvance(index.data().toString());
  const bool isCut = index.isValid() && width > cell.width() - 2 * margin;
  ShowWholeText(isCut ? index.data(Qt::AccessibleTextRole).toString() : QString(), global,
                *viewport(), cell);
  return true;
}

// --- Events ------------------------------------------------------------------------------------

bool ReportView::event(QEvent* event) {
  if (IsInput(event->type())) Settle();
  const bool taken = QTreeView::event(event);
  ShowFocusOnFrame(*this, *event);
  return taken;
}

bool ReportView::viewportEvent(QEvent* event) {
  if (IsInput(event->type())) Settle();
  if (event->type() == QEvent::ToolTip) {
    const auto* help = static_cast<QHelpEvent*>(event);
    return ShowToolTip(help->pos(), help->globalPos());
  }
  return QTreeView::viewportEvent(event);
}

void ReportView::keyPressEvent(QKeyEvent* event) {
  if (event->matches(QKeySequence::Copy)) {
    event->accept();
    return CopySelected();
  }
  if (event->key() == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier) {
    event->accept();
    return AskForMenu();
  }
  QTreeView::keyPressEvent(event);
  const int code = CharacterCode(*event);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
  if (code != 0 && owner_.KeyPress) owner_.KeyPress(code);
}

void ReportView::keyboardSearch(const QString& typed) {
  const int current = currentIndex().row();
  const int row = typed_.Find(typed, rows_->rowCount(), current, IsSelected(current),
                              [this](int at) { return rows_->index(at, 0).data().toString(); });
  if (row < 0) return;
  selectionModel()->setCurrentIndex(
      rows_->index(row, 0), QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
}

void ReportView::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) return SelectUnder(*event);
  QTreeView::mousePressEvent(event);
}

void ReportView::SelectUnder(const QMouseEvent& event) {
  const QModelIndex index = indexAt(event.position().toPoint());
  if (!index.isValid()) return;
  if (!IsSelected(index.row())) {
    // As the left button would, so that a range can be drawn up from here.
    QMouseEvent left(QEvent::MouseButtonPress, event.position(), event.globalPosition(),
                     Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QTreeView::mousePressEvent(&left);
  }
  MakeCurrent(index.row(), index.column());
}

void ReportView::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::RightButton) QTreeView::mouseReleaseEvent(event);
  if (viewport()->rect().contains(event->position().toPoint())) RaiseMouseUp(event->button());
}

void ReportView::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::RightButton) return SelectUnder(*event);
  QTreeView::mouseDoubleClickEvent(event);
  // The rows may have changed between the two clicks, and taken the first one's selection along.
  if (event->modifiers() == Qt::NoModifier) SelectUnder(*event);
  if (event->button() == Qt::LeftButton && owner_.DblClick) owner_.DblClick();
}

void ReportView::contextMenuEvent(QContextMenuEvent* event) {
  event->accept();
  if (event->reason() == QContextMenuEvent::Keyboard) AskForMenu();
}

void ReportView::AskForMenu() {
  const QRect area = viewport()->rect();
  const QRect row = visualRect(currentIndex()).intersected(area);
  const MenuPlace place(viewport()->mapToGlobal(
      row.isEmpty() ? area.topLeft() : QPoint(area.left(), row.bottom() + 1)));
  RaiseMouseUp(Qt::RightButton);
}

void ReportView::RaiseMouseUp(Qt::MouseButton button) {
  if (owner_.MouseUp) owner_.MouseUp(static_cast<int>(button));
}

void ReportView::CopySelected() const {
  QString text;
  for (int row = 0; row < rows_->rowCount(); ++row) {
    if (!IsSelected(row)) continue;
    for (int place = 0; place < header()->count(); ++place) {
      if (place != 0) text += '\t';
      const QModelIndex cell = rows_->index(row, header()->logicalIndex(place));
      text += cell.data(Qt::AccessibleTextRole).toString();
    }
    text += '\n';
  }
  if (!text.isEmpty()) QApplication::clipboard()->setText(text);
}

}  // namespace platform
