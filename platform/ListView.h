#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/Forms.h"
#include "platform/SharedText.h"

// A table in report view: rows of texts under column headers.

namespace platform {

enum class ColumnAlignment { Left, Right, Center };

struct ColumnHeader {
  const char* Text;
  ColumnAlignment Alignment = ColumnAlignment::Left;
  int Width = 1440;  ///< Twips.
};

inline constexpr int lvwAscending = 0;
inline constexpr int lvwDescending = 1;

/// The user can select several rows, drag columns to another width or place, copy the selected rows
/// as tab-separated text with Ctrl+C, and jump to a row by typing; a cell too narrow for its text
/// shows it as a tooltip.
class ListView : public Control {
 public:
  ListView(Container& parent, const Design& design, const std::vector<ColumnHeader>& columns);
  ~ListView() override;

  /// A row by its present position, counted from 1. Valid until rows are added, removed or sorted.
  /// A position or column that does not exist reads as empty, and writing to it does nothing.
  class ListItem {
   public:
    std::string Text() const;
    void Text(const SharedText& text);
    /// The cells behind the first, `column` from 1.
    std::string SubItems(int column) const;
    void SubItems(int column, const SharedText& text);
    std::string Tag() const;
    void Tag(const SharedText& text);
    bool Selected() const;
    void Selected(bool selected);

   private:
    friend class ListView;
    ListItem(ListView& list, int position) : list_(&list), position_(position) {}
    int TagCell() const;
    std::string Cell(int cell) const;
    void Cell(int cell, const SharedText& text);
    ListView* list_;
    int position_;
  };

  /// The rows.
  int Count() const;
  ListItem Item(int position);
  /// Adds a row at the end, also while `Sorted`.
  ListItem Add(const SharedText& text);
  void Remove(int position);
  void Clear();

  /// The row that has the focus if it is selected, else the first selected one, if any.
  std::optional<ListItem> SelectedItem();

  /// Column that orders the rows, counted from 0.
  int SortKey() const;
  void SortKey(int column);
  int SortOrder() const;
  void SortOrder(int order);
  bool Sorted() const;
  /// True sorts the rows at once by the text of column `SortKey`, case ignored; rows with equal
  /// texts stand in the order in which they were added, in either direction. Writing a cell
  /// afterwards moves no row.
  void Sorted(bool sorted);

  std::function<void()> DblClick;
  std::function<void(int KeyAscii)> KeyPress;
  /// 1 left, 2 right. A menu key or Shift+F10 counts as the right button.
  std::function<void(int Button)> MouseUp;
  /// The column's index, counted from 1, wherever it has been dragged.
  std::function<void(int Index)> ColumnClick;

 private:
  friend class ListItem;
  struct Rows;
  std::unique_ptr<Rows> rows_;
};

inline constexpr std::uint32_t LVM_SETEXTENDEDLISTVIEWSTYLE = 0x1036;
inline constexpr std::uint32_t LVM_GETEXTENDEDLISTVIEWSTYLE = 0x1037;
inline constexpr std::uint32_t LVS_EX_GRIDLINES = 1;
inline constexpr std::uint32_t LVS_EX_FULLROWSELECT = 32;

/// Sends a message to a control: the two above, to a `ListView`, to read or write its extended
/// style. Returns the style, for both as it was before; 0 for anything else.
std::uint32_t SendMessageA(std::uint32_t window, std::uint32_t message, std::uint32_t wParam,
                           std::uint32_t lParam);

}  // namespace platform
