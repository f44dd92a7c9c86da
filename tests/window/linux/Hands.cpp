#include "tests/window/Hands.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QScrollBar>
#include <QTest>
#include <QTreeView>

#include "platform/linux/Widgets.h"

namespace hands {

namespace {

QAbstractItemView* View(const platform::Control& list) {
  return static_cast<QAbstractItemView*>(platform::Widget(list));
}

QHeaderView* Header(const platform::ListView& list) {
  return static_cast<QTreeView*>(View(list))->header();
}

QPoint PlaceOf(const QAbstractItemView* view, int row) {
  if (row < 0) return {20, view->viewport()->height() - 3};
  return view->visualRect(view->model()->index(row, 0)).center();
}

Qt::MouseButton ButtonOf(int button) { return button == 1 ? Qt::LeftButton : Qt::RightButton; }

}  // namespace

void ClickRow(const platform::ListView& list, int row, const Click& click) {
  Qt::KeyboardModifiers keys;
  if ((click.Shift & platform::vbShiftMask) != 0) keys |= Qt::ShiftModifier;
  if ((click.Shift & platform::vbCtrlMask) != 0) keys |= Qt::ControlModifier;
  const QAbstractItemView* const view = View(list);
  QTest::mouseClick(view->viewport(), ButtonOf(click.Button), keys, PlaceOf(view, row));
}

void DoubleClickRow(const platform::ListView& list, int row) {
  const QAbstractItemView* const view = View(list);
  QTest::mouseDClick(view->viewport(), Qt::LeftButton, {}, PlaceOf(view, row));
}

void ClickHeader(const platform::ListView& list, int column, int button, bool quick) {
  QHeaderView* const header = Header(list);
  const QPoint at(header->sectionViewportPosition(column) + 20, 5);
  const auto press = quick ? QTest::MouseDClick : QTest::MouseClick;
  QTest::mouseEvent(press, header->viewport(), ButtonOf(button), {}, at);
}

void MoveFirstColumn(const platform::ListView& list, int to) { Header(list)->moveSection(0, to); }

std::string Copied(const platform::Control& list) {
  QTest::keyClick(View(list), Qt::Key_C, Qt::ControlModifier);
  return QApplication::clipboard()->text().toStdString();
}

int TopRow(const platform::Control& list) { return View(list)->verticalScrollBar()->value(); }
void TopRow(const platform::Control& list, int row) {
  View(list)->verticalScrollBar()->setValue(row);
}

void SelectLines(const platform::ListBox& list, const std::vector<int>& lines) {
  const QAbstractItemView* const view = View(list);
  for (const int line : lines) {
    view->selectionModel()->setCurrentIndex(view->model()->index(line, 0),
                                            QItemSelectionModel::Select);
  }
}

std::vector<int> SelectedLines(const platform::ListBox& list) {
  std::vector<int> lines;
  for (const QModelIndex& index : View(list)->selectionModel()->selectedIndexes()) {
    lines.push_back(index.row());
  }
  return lines;
}

}  // namespace hands
