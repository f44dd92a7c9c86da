#pragma once

#include <vector>

#include "platform/ListView.h"
#include "platform/common/ListRows.h"
#include "platform/windows/Widget.h"

namespace platform {

/// The system's list over rows that it asks for when it shows them. It hears of what a procedure
/// did to the rows in one step, before the next event.
class ReportList : public NativeWidget {
 public:
  ReportList(Container& parent, const Design& design, ListView& owner,
             const std::vector<ColumnHeader>& columns);

  const ListRows& Rows() const { return rows_; }
  void Add(const SharedText& text);
  void Remove(int row);
  void Clear();
  void Write(int row, int cell, const SharedText& text);

  bool IsSelected(int row) const;
  void Select(int row, bool selected);
  /// The row that has the focus if it is selected, else the first selected one; -1 for none.
  int SelectedRow() const;

  int SortKey() const { return sortKey_; }
  void SortKey(int column);
  int SortOrder() const { return sortOrder_; }
  void SortOrder(int order);
  bool Sorted() const { return sorted_; }
  void Sorted(bool sorted);

  /// The extended style as the program set it.
  std::uint32_t Style() const { return style_; }
  void Style(std::uint32_t style);

  void RenewFont() override;
  void Move(const Place& to) override;

 protected:
  bool OnMessage(UINT message, WPARAM w, LPARAM l, LRESULT& result) override;
  bool OnNotify(NMHDR& header, LRESULT& result) override;
  std::wstring CutTextAt(POINT at) const override;

 private:
  LRESULT Send(UINT message, WPARAM w = 0, LPARAM l = 0) const {
    return SendMessageW(Window(), message, w, l);
  }
  int NextWith(int row, UINT flags) const {
    return static_cast<int>(Send(LVM_GETNEXTITEM, static_cast<WPARAM>(row), flags));
  }
  void SetState(int row, UINT state, UINT mask) const;
  void MakeColumns();
  void ScaleColumns();
  void SettleLater();
  void Settle();
  void TellCount();
  void Arrange(const std::vector<std::uint32_t>& order, int top);
  void ScrollTo(int top) const;
  void ShowSortArrow() const;
  void RaiseColumnClick(int column);
  void RaiseMouseUp(int button);
  void AskForMenu();
  bool OnKey(WPARAM key);
  void FillCell(LVITEMW& item) const;
  int FindTyped(const LVFINDINFOW& wanted, int from) const;
  void CopySelected() const;

  ListView& owner_;
  std::vector<ColumnHeader> columns_;
  ListRows rows_;
  int shown_ = 0;  ///< Rows that the system's list knows of.
  int scale_ = 0;  ///< Dots to the inch that the columns are laid out for.
  bool settleScheduled_ = false;
  bool settling_ = false;
  int sortKey_ = 0;
  int sortOrder_ = lvwAscending;
  bool sorted_ = false;
  std::uint32_t style_ = 0;
};

}  // namespace platform
