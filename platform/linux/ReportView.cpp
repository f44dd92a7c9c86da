#include "platform/linux/ReportView.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QHelpEvent>
#include <QItemSelectionModel>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyledItemDelegate>
#include <QToolTip>

#include "platform/linux/Widgets.h"

namespace platform {

namespace {

class CellDelegate : public QStyledItemDelegate {
 public:
  using QStyledItemDelegate::QStyledItemDelegate;

  QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), ReportView::RowHeight(option.fontMetrics)};
  }
};

/// After a sort a selection can consist of very many ranges. To find out what changed, the toolkit
/// compares each old one with each new one; dropping all old ones first leaves nothing to compare.
class RowSelection : public QItemSelectionModel {
 public:
  using QItemSelectionModel::QItemSelectionModel;
  using QItemSelectionModel::select;

  void select(const QItemSelection& rows, SelectionFlags command) override {
    constexpr int ManyRanges = 100;
    QItemSelection ranges = selection();
    const bool drops = (command & Clear) != 0;
    if (ranges.size() <= ManyRanges || (!drops && (command & Current) != 0)) {
      return QItemSelectionModel::select(rows, command);
    }
    QItemSelectionModel::select(QItemSelection(), Clear);
    if (drops) return QItemSelectionModel::select(rows, command);
    ranges.merge(WholeRows(rows), command);
    SelectRanges(ranges);
  }

  /// Selects these when nothing is selected. A range that the user then draws up with Ctrl and
  /// Shift joins them.
  void SelectRanges(const QItemSelection& ranges) {
    QItemSelectionModel::select(ranges, Select);
    QItemSelectionModel::select(QItemSelection(), Select);
  }

 private:
  QItemSelection WholeRows(const QItemSelection& ranges) const {
    QItemSelection rows;
    const int lastColumn = model()->columnCount() - 1;
    for (const QItemSelectionRange& range : ranges) {
      rows.append(QItemSelectionRange(model()->index(range.top(), 0),
                                      model()->index(range.bottom(), lastColumn)));
    }
    return rows;
  }
};

/// Tells of the second of two quick clicks as well, and of the left button alone.
class ColumnHeaders : public QHeaderView {
 public:
  explicit ColumnHeaders(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {}

 protected:
  void mouseDoubleClickEvent(QMouseEvent* event) override {
    if (event->button() == Qt::LeftButton) QHeaderView::mouseDoubleClickEvent(event);
  }
};

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
    : QTreeView(parent), owner_(owner), rows_(new ListViewModel(columns, this)) {
  setModel(rows_);
  QItemSelectionModel* standard = selectionModel();
  setSelectionModel(new RowSelection(rows_, this));
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
}

void ReportView::SetUpHeader(const std::vector<ColumnHeader>& columns) {
  setHeader(new ColumnHeaders(this));
  header()->setStretchLastSection(false);
  header()->setSectionsMovable(true);
  header()->setFirstSectionMovable(true);
  header()->setSectionsClickable(true);
  header()->setHighlightSections(false);
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

void ReportView::Add(std::string_view text) {
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
  selected_.clear();
  selectionRead_ = false;
  selectionWritten_ = false;
  verticalScrollBar()->setValue(0);
  horizontalScrollBar()->setValue(0);
}

void ReportView::Write(int row, int cell, std::string_view text) {
  rows_->Cell(row, cell, text);
  SettleLater();
}

void ReportView::SettleLater() {
  if (settleScheduled_) return;
  settleScheduled_ = true;
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
    if (selectionWritten_) RestoreSelection(std::move(selected_));
  }
  settling_ = false;
}

void ReportView::Arrange(const std::vector<std::uint32_t>& order, int top) {
  ReadSelection();
  std::vector<bool> selected(order.size(), false);
  for (std::size_t i = 0; i < order.size(); ++i) {
    selected[i] = order[i] < selected_.size() && selected_[order[i]];
  }
  const QModelIndex current = currentIndex();
  const auto was = static_cast<std::uint32_t>(current.row());
  auto now = std::find(order.begin(), order.end(), was);
  if (now == order.end()) {  // removed: the next row, which stands where that one stood
    now = std::find_if(order.begin(), order.end(), [was](auto row) { return row > was; });
  }
  const int sideways = horizontalScrollBar()->value();

  rows_->Arrange(order);
  RestoreSelection(std::move(selected));
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

void ReportView::ReadSelection() const {
  if (selectionRead_) return;
  selected_.assign(static_cast<std::size_t>(rows_->rowCount()), false);
  for (const QItemSelectionRange& range : selectionModel()->selection()) {
    if (!range.isValid()) continue;
    std::fill(selected_.begin() + range.top(), selected_.begin() + range.bottom() + 1, true);
  }
  selectionRead_ = true;
}

bool ReportView::IsSelected(int row) const {
  ReadSelection();
  return row >= 0 && row < static_cast<int>(selected_.size()) &&
         selected_[static_cast<std::size_t>(row)];
}

void ReportView::Select(int row, bool selected) {
  ReadSelection();
  const auto index = static_cast<std::size_t>(row);
  if (index >= selected_.size()) selected_.resize(index + 1, false);
  selected_[index] = selected;
  selectionWritten_ = true;
  viewport()->update();
  SettleLater();
}

int ReportView::SelectedRow() const {
  const int current = currentIndex().row();
  if (IsSelected(current) && !rows_->IsRemoved(current)) return current;
  ReadSelection();
  for (int row = 0; row < static_cast<int>(selected_.size()); ++row) {
    if (selected_[static_cast<std::size_t>(row)] && !rows_->IsRemoved(row)) return row;
  }
  return -1;
}

void ReportView::RestoreSelection(std::vector<bool> selected) {
  QItemSelection ranges;
  const int lastColumn = rows_->columnCount() - 1;
  for (auto end = selected.begin(); end != selected.end();) {
    const auto begin = std::find(end, selected.end(), true);
    if (begin == selected.end()) break;
    end = std::find(begin, selected.end(), false);
    const int first = static_cast<int>(begin - selected.begin());
    const int last = static_cast<int>(end - selected.begin()) - 1;
    ranges.append(QItemSelectionRange(rows_->index(first, 0), rows_->index(last, lastColumn)));
  }
  selectionWritten_ = false;
  selectionRead_ = false;
  if (selectionModel()->hasSelection())
    selectionModel()->select(QItemSelection(), QItemSelectionModel::Clear);
  if (!ranges.isEmpty()) static_cast<RowSelection*>(selectionModel())->SelectRanges(ranges);
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
  selectionRead_ = false;
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

int ReportView::RowHeight(const QFontMetrics& metrics) {
  constexpr int Room = 4;  // a pixel above and below, the focus frame and the grid line
  return metrics.height() + Room;
}

void ReportView::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                         const QModelIndex& index) const {
  const bool fullRow = (style_ & LVS_EX_FULLROWSELECT) != 0;
  const bool selected = IsSelected(index.row());
  const bool focused = hasFocus() && currentIndex().row() == index.row();
  QStyleOptionViewItem cell = option;
  cell.showDecorationSelected = true;
  cell.state &= ~(QStyle::State_MouseOver | QStyle::State_HasFocus);
  for (int column = 0; column < header()->count(); ++column) {
    cell.rect = QRect(columnViewportPosition(column), option.rect.y(), columnWidth(column),
                      option.rect.height());
    if (!cell.rect.intersects(viewport()->rect())) continue;
    const bool marked = fullRow || column == 0;
    cell.state.setFlag(QStyle::State_Selected, selected && marked);
    cell.state.setFlag(QStyle::State_HasFocus, focused && !fullRow && marked);
    itemDelegate()->paint(painter, cell, index.sibling(index.row(), column));
  }
  if (!focused || !fullRow) return;
  QStyleOptionFocusRect frame;
  frame.initFrom(this);
  frame.rect =
      QRect(-header()->offset(), option.rect.y(), header()->length(), option.rect.height() - 1);
  frame.state |= QStyle::State_KeyboardFocusChange | QStyle::State_HasFocus;
  frame.backgroundColor = palette().color(selected ? QPalette::Highlight : QPalette::Base);
  style()->drawPrimitive(QStyle::PE_FrameFocusRect, &frame, painter, this);
}

void ReportView::paintEvent(QPaintEvent* event) {
  QTreeView::paintEvent(event);
  if ((style_ & LVS_EX_GRIDLINES) != 0) DrawGrid();
}

void ReportView::DrawGrid() {
  QStyleOptionViewItem option;
  initViewItemOption(&option);
  const int colour = style()->styleHint(QStyle::SH_Table_GridLineColor, &option, this);
  QPainter painter(viewport());
  painter.setPen(QColor::fromRgba(static_cast<QRgb>(colour)));
  const int height = RowHeight(fontMetrics());
  for (int y = height - 1; y < viewport()->height(); y += height) {
    painter.drawLine(0, y, viewport()->width(), y);
  }
  for (int column = 0; column < header()->count(); ++column) {
    const int x = columnViewportPosition(column) + columnWidth(column) - 1;
    painter.drawLine(x, 0, x, viewport()->height());
  }
}

bool ReportView::ShowToolTip(const QPoint& at, const QPoint& global) {
  const QModelIndex index = indexAt(at);
  const QRect cell = visualRect(index);
  QString text = index.data().toString();
  if (text.size() == ListViewModel::MostShown) text += QChar(u'\u2026');
  const int margin = style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, this) + 1;
  if (!index.isValid() || fontMetrics().horizontalAdvance(text) <= cell.width() - 2 * margin) {
    QToolTip::hideText();
    return true;
  }
  // Left to itself the tooltip would read markup out of the text, and be as wide as it is long.
  constexpr int CharactersPerLine = 100;
  QStringList lines;
  for (int i = 0; i < text.size(); i += CharactersPerLine) {
    lines.append(text.mid(i, CharactersPerLine).toHtmlEscaped());
  }
  const QString page = QStringLiteral("<p style='white-space:pre'>%1</p>").arg(lines.join('\n'));
  QToolTip::showText(global, page, viewport(), cell);
  return true;
}

// --- Events ------------------------------------------------------------------------------------

bool ReportView::event(QEvent* event) {
  if (IsInput(event->type())) Settle();
  return QTreeView::event(event);
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
    return RaiseMouseUp(Qt::RightButton);
  }
  QTreeView::keyPressEvent(event);
  const int code = CharacterCode(*event);
  if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) event->accept();
  if (code != 0 && owner_.KeyPress) owner_.KeyPress(code);
}

void ReportView::keyboardSearch(const QString& typed) {
  const bool goesOn =
      typedAt_.isValid() && typedAt_.elapsed() <= QApplication::keyboardInputInterval();
  typedAt_.start();
  const bool again = goesOn && typed_ == typed;  // the same letter again: its next row
  if (!goesOn) typed_.clear();
  if (!again) typed_ += typed;

  const int count = rows_->rowCount();
  const int current = currentIndex().row();
  const bool staysOnMatch = goesOn && !again;
  const int start = std::max(0, staysOnMatch || !IsSelected(current) ? current : current + 1);
  for (int i = 0; i < count; ++i) {
    const QModelIndex index = rows_->index((start + i) % count, 0);
    if (!index.data().toString().startsWith(typed_, Qt::CaseInsensitive)) continue;
    selectionModel()->setCurrentIndex(
        index, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    return;
  }
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
  if (event->reason() == QContextMenuEvent::Keyboard) RaiseMouseUp(Qt::RightButton);
}

void ReportView::RaiseMouseUp(Qt::MouseButton button) {
  if (owner_.MouseUp) owner_.MouseUp(static_cast<int>(button));
}

void ReportView::CopySelected() const {
  ReadSelection();
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
