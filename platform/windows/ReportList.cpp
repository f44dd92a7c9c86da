#include "platform/windows/SystemWindows.h"

#include "platform/windows/ReportList.h"

#include <algorithm>
#include <utility>

#include "platform/Regional.h"
#include "platform/windows/Clipboard.h"
#include "platform/windows/ListText.h"
#include "platform/windows/MenuPlace.h"

namespace platform {

namespace {

constexpr std::uint32_t OwnStyle = LVS_EX_HEADERDRAGDROP | LVS_EX_DOUBLEBUFFER;

int FormatOf(ColumnAlignment alignment) {
  switch (alignment) {
    case ColumnAlignment::Right:
      return LVCFMT_RIGHT;
    case ColumnAlignment::Center:
      return LVCFMT_CENTER;
    default:
      return LVCFMT_LEFT;
  }
}

bool IsInput(UINT message) {
  return (message >= WM_KEYFIRST && message <= WM_KEYLAST) ||
         (message >= WM_MOUSEFIRST && message <= WM_MOUSELAST) || message == WM_CONTEXTMENU ||
         message == WM_SETFOCUS;
}

}  // namespace

ReportList::ReportList(Container& parent, const Design& design, ListView& owner,
                       const std::vector<ColumnHeader>& columns)
    : NativeWidget(parent.Native()),
      owner_(owner),
      columns_(columns),
      rows_(static_cast<int>(columns.size())) {
  TabIndex = design.TabIndex;
  TakesKeyboard = true;
  Create(WC_LISTVIEWW, LVS_REPORT | LVS_OWNERDATA | LVS_SHOWSELALWAYS | WS_TABSTOP,
         WS_EX_CLIENTEDGE);
  MakeColumns();
  Style(0);
}

void ReportList::MakeColumns() {
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    std::wstring title = Wide(columns_[i].Text);
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT | LVCF_FMT | LVCF_SUBITEM;
    column.fmt = FormatOf(columns_[i].Alignment);
    column.pszText = title.data();
    column.iSubItem = static_cast<int>(i);
    Send(LVM_INSERTCOLUMNW, i, reinterpret_cast<LPARAM>(&column));
  }
  ScaleColumns();
}

/// Widths that the user has dragged are kept, on a monitor of another scale too.
void ReportList::ScaleColumns() {
  const int before = std::exchange(scale_, Dpi());
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    const auto now = static_cast<int>(Send(LVM_GETCOLUMNWIDTH, i));
    Send(LVM_SETCOLUMNWIDTH, i,
         before == 0 ? ToPixels(columns_[i].Width) : MulDiv(now, scale_, before));
  }
}

void ReportList::RenewFont() {
  NativeWidget::RenewFont();
  if (scale_ != 0 && scale_ != Dpi()) ScaleColumns();
}

void ReportList::Move(const Place& to) { NativeWidget::Move(to); }

// --- Rows ----------------------------------------------------------------------------------------

void ReportList::Add(const SharedText& text) {
  if (rows_.HasRemoved()) Settle();
  rows_.Add(text);
  SettleLater();
}

void ReportList::Remove(int row) {
  rows_.Remove(row);
  SettleLater();
}

void ReportList::Clear() {
  rows_.Clear();
  shown_ = 0;
  Send(LVM_SETITEMCOUNT);
}

void ReportList::Write(int row, int cell, const SharedText& text) {
  rows_.Cell(row, cell, text);
  SettleLater();
}

void ReportList::SettleLater() {
  if (std::exchange(settleScheduled_, true)) return;
  DoLater([this] { Settle(); });
}

void ReportList::Settle() {
  settleScheduled_ = false;
  if (std::exchange(settling_, true)) return;
  if (rows_.HasRemoved()) {
    const std::vector<std::uint32_t> standing = rows_.Standing();
    const auto top = std::lower_bound(standing.begin(), standing.end(),
                                      static_cast<std::uint32_t>(Send(LVM_GETTOPINDEX)));
    Arrange(standing, static_cast<int>(top - standing.begin()));
  } else {
    TellCount();
    InvalidateRect(Window(), nullptr, FALSE);
  }
  settling_ = false;
}

void ReportList::TellCount() {
  if (std::exchange(shown_, rows_.Count()) == rows_.Count()) return;
  Send(LVM_SETITEMCOUNT, static_cast<WPARAM>(shown_), LVSICF_NOSCROLL);
}

void ReportList::Arrange(const std::vector<std::uint32_t>& order, int top) {
  std::vector<bool> selected(static_cast<std::size_t>(rows_.Shown()), false);
  // Wine 8 goes through all rows to find no more selected ones, or to change all.
  const auto count = static_cast<int>(Send(LVM_GETSELECTEDCOUNT));
  for (int row = -1, left = count; left > 0; --left) {
    row = NextWith(row, LVNI_SELECTED);
    if (row < 0) break;
    selected[static_cast<std::size_t>(row)] = true;
  }
  const int focused = NextWith(-1, LVNI_FOCUSED);
  rows_.Arrange(order);
  if (count > 0) SetState(-1, 0, LVIS_SELECTED);
  if (focused >= 0) SetState(focused, 0, LVIS_FOCUSED);
  TellCount();
  // A focused row that was removed hands the focus to the next one.
  int heir = -1;
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (selected[order[i]]) SetState(static_cast<int>(i), LVIS_SELECTED, LVIS_SELECTED);
    const auto was = static_cast<int>(order[i]);
    if (was == focused || (was > focused && focused >= 0 && heir < 0)) heir = static_cast<int>(i);
  }
  if (focused >= 0 && shown_ > 0) {
    SetState(heir >= 0 ? heir : shown_ - 1, LVIS_FOCUSED, LVIS_FOCUSED);
  }
  ScrollTo(top);
  InvalidateRect(Window(), nullptr, FALSE);
}

void ReportList::ScrollTo(int top) const {
  const auto now = static_cast<int>(Send(LVM_GETTOPINDEX));
  RECT row{};
  row.left = LVIR_BOUNDS;
  if (now == top || shown_ == 0 || !Send(LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row)))
    return;
  Send(LVM_SCROLL, 0, static_cast<LPARAM>(top - now) * (row.bottom - row.top));
}

// --- Selection -----------------------------------------------------------------------------------

void ReportList::SetState(int row, UINT state, UINT mask) const {
  LVITEMW item{};
  item.state = state;
  item.stateMask = mask;
  Send(LVM_SETITEMSTATE, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

bool ReportList::IsSelected(int row) const {
  return row >= 0 && row < shown_ &&
         Send(LVM_GETITEMSTATE, static_cast<WPARAM>(row), LVIS_SELECTED) != 0;
}

void ReportList::Select(int row, bool selected) {
  if (row >= shown_) Settle();
  SetState(row, selected ? LVIS_SELECTED : 0, LVIS_SELECTED);
}

int ReportList::SelectedRow() const {
  const int focused = NextWith(-1, LVNI_FOCUSED);
  if (IsSelected(focused) && !rows_.IsRemoved(focused)) return focused;
  int row = NextWith(-1, LVNI_SELECTED);
  while (row >= 0 && rows_.IsRemoved(row)) row = NextWith(row, LVNI_SELECTED);
  return row;
}

// --- Sorting -------------------------------------------------------------------------------------

void ReportList::SortKey(int column) {
  sortKey_ = column;
  ShowSortArrow();
}

void ReportList::SortOrder(int order) {
  sortOrder_ = order;
  ShowSortArrow();
}

void ReportList::Sorted(bool sorted) {
  sorted_ = sorted;
  ShowSortArrow();
  if (!sorted) return;
  const bool nested = std::exchange(settling_, true);
  Arrange(rows_.Ordered(sortKey_, sortOrder_ == lvwDescending, FoldCase),
          static_cast<int>(Send(LVM_GETTOPINDEX)));
  settling_ = nested;
}

void ReportList::ShowSortArrow() const {
  const auto header = reinterpret_cast<HWND>(Send(LVM_GETHEADER));
  const int arrow = sortOrder_ == lvwDescending ? HDF_SORTDOWN : HDF_SORTUP;
  for (int i = 0; i < static_cast<int>(columns_.size()); ++i) {
    HDITEMW item{};
    item.mask = HDI_FORMAT;
    SendMessageW(header, HDM_GETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
    const int format = item.fmt;
    item.fmt &= ~(HDF_SORTDOWN | HDF_SORTUP);
    if (sorted_ && i == sortKey_) item.fmt |= arrow;
    if (item.fmt == format) continue;  // the whole list is painted anew for each that is set
    SendMessageW(header, HDM_SETITEMW, static_cast<WPARAM>(i), reinterpret_cast<LPARAM>(&item));
  }
}

void ReportList::Style(std::uint32_t style) {
  style_ = style;
  Send(LVM_SETEXTENDEDLISTVIEWSTYLE, 0, static_cast<LPARAM>(style | OwnStyle));
}

// --- Events --------------------------------------------------------------------------------------

void ReportList::RaiseColumnClick(int column) {
  Settle();
  if (owner_.ColumnClick) owner_.ColumnClick(column + 1);
}

void ReportList::RaiseMouseUp(int button) {
  if (owner_.MouseUp) owner_.MouseUp(button);
}

/// By a key: the menu opens at the row that has it.
void ReportList::AskForMenu() {
  RECT row{};
  row.left = LVIR_LABEL;
  const int focused = NextWith(-1, LVNI_FOCUSED);
  const auto number = static_cast<WPARAM>(focused);
  const bool inSight = focused >= 0 && Send(LVM_ENSUREVISIBLE, number, FALSE) != 0 &&
                       Send(LVM_GETITEMRECT, number, reinterpret_cast<LPARAM>(&row)) != 0;
  POINT place = inSight ? POINT{row.left, row.bottom} : POINT{};
  ClientToScreen(Window(), &place);
  const MenuPlace here(place);
  RaiseMouseUp(2);
}

bool ReportList::OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) {
  if (IsInput(message)) Settle();
  switch (message) {
    case WM_KEYDOWN:
      return OnKey(w);
    case WM_CHAR:
      if (owner_.KeyPress) owner_.KeyPress(static_cast<int>(w));
      return w == VK_RETURN;
    case WM_CONTEXTMENU:
      if (GET_X_LPARAM(l) == -1 && GET_Y_LPARAM(l) == -1) AskForMenu();
      return true;
    case WM_NOTIFY: {  // of the header, whose second click is none of its own
      const auto& header = *reinterpret_cast<const NMHEADERW*>(l);
      if (header.hdr.code == static_cast<UINT>(HDN_ITEMDBLCLICKW)) RaiseColumnClick(header.iItem);
      return NativeWidget::OnMessage(message, w, l, result);
    }
    default:
      return NativeWidget::OnMessage(message, w, l, result);
  }
}

bool ReportList::OnKey(WPARAM key) {
  if (GetKeyState(VK_CONTROL) >= 0) return false;
  if (key == 'A') SetState(-1, LVIS_SELECTED, LVIS_SELECTED);
  if (key == 'C' || key == VK_INSERT) CopySelected();
  return key == 'A' || key == 'C';
}

bool ReportList::OnNotify(NMHDR& header, LRESULT& result) {
  switch (header.code) {
    case static_cast<UINT>(LVN_GETDISPINFOW):
      FillCell(reinterpret_cast<NMLVDISPINFOW&>(header).item);
      return true;
    case static_cast<UINT>(LVN_ODFINDITEMW): {
      const auto& find = reinterpret_cast<const NMLVFINDITEMW&>(header);
      result = FindTyped(find.lvfi, find.iStart);
      return true;
    }
    case static_cast<UINT>(LVN_COLUMNCLICK):
      RaiseColumnClick(reinterpret_cast<const NMLISTVIEW&>(header).iSubItem);
      return true;
    case static_cast<UINT>(NM_CLICK):
      RaiseMouseUp(1);
      return true;
    case static_cast<UINT>(NM_RCLICK):
      RaiseMouseUp(2);
      return true;
    case static_cast<UINT>(NM_DBLCLK):
      if (owner_.DblClick) owner_.DblClick();
      return true;
    default:
      return false;
  }
}

void ReportList::FillCell(LVITEMW& item) const {
  if ((item.mask & LVIF_TEXT) == 0 || item.pszText == nullptr || item.cchTextMax <= 0) return;
  // A character has three bytes at most, or four for two.
  const auto room = static_cast<std::size_t>(item.cchTextMax) - 1;
  const std::wstring text =
      DisplayText(rows_.Cell(item.iItem, item.iSubItem).substr(0, 3 * (room + 1)));
  item.pszText[text.copy(item.pszText, room)] = L'\0';
}

std::wstring ReportList::CutTextAt(POINT at) const {
  LVHITTESTINFO hit{};
  hit.pt = at;
  if (Send(LVM_SUBITEMHITTEST, 0, reinterpret_cast<LPARAM>(&hit)) < 0) return {};
  constexpr int Margins = 12;  // pixels, left and right of a cell's text
  constexpr std::size_t MostShown = 2000;
  std::wstring text = DisplayText(rows_.Cell(hit.iItem, hit.iSubItem)).substr(0, MostShown);
  const auto width = static_cast<int>(Send(LVM_GETCOLUMNWIDTH, static_cast<WPARAM>(hit.iSubItem)));
  return Fits(text, width - Margins) ? std::wstring() : text;
}

int ReportList::FindTyped(const LVFINDINFOW& wanted, int from) const {
  if ((wanted.flags & (LVFI_STRING | LVFI_PARTIAL)) == 0 || wanted.psz == nullptr) return -1;
  const std::string typed = FoldCase(Narrow(wanted.psz));
  for (int i = 0; i < shown_; ++i) {
    const int row = (from + i) % shown_;
    if (FoldCase(rows_.Cell(row, 0)).starts_with(typed)) return row;
  }
  return -1;
}

void ReportList::CopySelected() const {
  std::vector<int> order(columns_.size());
  Send(LVM_GETCOLUMNORDERARRAY, order.size(), reinterpret_cast<LPARAM>(order.data()));
  std::wstring text;
  for (int row = NextWith(-1, LVNI_SELECTED); row >= 0; row = NextWith(row, LVNI_SELECTED)) {
    for (const int column : order) {
      if (column != order.front()) text += L'\t';
      text += DisplayText(rows_.Cell(row, column));
    }
    text += L"\r\n";
  }
  CopyToClipboard(Window(), text);
}

}  // namespace platform
