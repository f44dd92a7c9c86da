#include "platform/windows/SystemWindows.h"

#include "platform/ListView.h"

#include "platform/windows/ReportList.h"

namespace platform {

struct ListView::Rows {
  ReportList* View;
};

ListView::ListView(Container& parent, const Design& design,
                   const std::vector<ColumnHeader>& columns)
    : Control(parent, design, new ReportList(parent, design, *this, columns)),
      rows_(std::make_unique<Rows>(Rows{&WidgetAs<ReportList>(*this)})) {}

ListView::~ListView() = default;

// --- Rows --------------------------------------------------------------------------------------

int ListView::Count() const { return rows_->View->Rows().Count(); }

ListView::ListItem ListView::Item(int position) { return {*this, position}; }

ListView::ListItem ListView::Add(const SharedText& text) {
  rows_->View->Add(text);
  return {*this, Count()};
}

void ListView::Remove(int position) {
  const int row = rows_->View->Rows().RowAt(position);
  if (row >= 0) rows_->View->Remove(row);
}

void ListView::Clear() { rows_->View->Clear(); }

std::optional<ListView::ListItem> ListView::SelectedItem() {
  const int row = rows_->View->SelectedRow();
  if (row < 0) return std::nullopt;
  return ListItem(*this, rows_->View->Rows().PositionOf(row));
}

// --- A row -------------------------------------------------------------------------------------

std::string ListView::ListItem::Text() const { return Cell(0); }
void ListView::ListItem::Text(const SharedText& text) { Cell(0, text); }

std::string ListView::ListItem::SubItems(int column) const {
  return column >= 1 && column < TagCell() ? Cell(column) : std::string();
}

void ListView::ListItem::SubItems(int column, const SharedText& text) {
  if (column >= 1 && column < TagCell()) Cell(column, text);
}

std::string ListView::ListItem::Tag() const { return Cell(TagCell()); }
void ListView::ListItem::Tag(const SharedText& text) { Cell(TagCell(), text); }

bool ListView::ListItem::Selected() const {
  ReportList& view = *list_->rows_->View;
  return view.IsSelected(view.Rows().RowAt(position_));
}

void ListView::ListItem::Selected(bool selected) {
  ReportList& view = *list_->rows_->View;
  const int row = view.Rows().RowAt(position_);
  if (row >= 0) view.Select(row, selected);
}

int ListView::ListItem::TagCell() const { return list_->rows_->View->Rows().TagCell(); }

std::string ListView::ListItem::Cell(int cell) const {
  const ListRows& rows = list_->rows_->View->Rows();
  return std::string(rows.Cell(rows.RowAt(position_), cell));
}

void ListView::ListItem::Cell(int cell, const SharedText& text) {
  ReportList& view = *list_->rows_->View;
  view.Write(view.Rows().RowAt(position_), cell, text);
}

// --- Order and style ---------------------------------------------------------------------------

int ListView::SortKey() const { return rows_->View->SortKey(); }
void ListView::SortKey(int column) { rows_->View->SortKey(column); }

int ListView::SortOrder() const { return rows_->View->SortOrder(); }
void ListView::SortOrder(int order) { rows_->View->SortOrder(order); }

bool ListView::Sorted() const { return rows_->View->Sorted(); }
void ListView::Sorted(bool sorted) { rows_->View->Sorted(sorted); }

std::uint32_t SendMessageA(std::uint32_t window, std::uint32_t message, std::uint32_t wParam,
                           std::uint32_t lParam) {
  const auto* list = dynamic_cast<ListView*>(ControlByHandle(window));
  if (!list) return 0;
  auto* view = &WidgetAs<ReportList>(*list);
  const std::uint32_t style = view->Style();
  if (message == LVM_GETEXTENDEDLISTVIEWSTYLE) return style;
  if (message != LVM_SETEXTENDEDLISTVIEWSTYLE) return 0;
  const std::uint32_t bits = wParam == 0 ? ~0u : wParam;
  view->Style((style & ~bits) | (lParam & bits));
  return style;
}

}  // namespace platform
