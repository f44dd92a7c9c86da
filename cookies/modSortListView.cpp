#include "cookies/modSortListView.h"

#include <cstddef>

#include "core/AtScopeEnd.h"
#include "platform/Regional.h"

namespace {

constexpr std::int16_t SizeColumn = FileSizeCell + 1;
constexpr std::string_view NumberMask = "00000000000000000000.0000000000";
constexpr std::string_view DateMask = "YYYYMMDDHhNnSs";
constexpr platform::SYSTEMTIME ZeroDate = {.wYear = 1899, .wMonth = 12, .wDay = 30};

std::string Cell(const platform::ListView::ListItem& row, int index) {
  return index == 1 ? row.Text() : row.SubItems(index - 1);
}

void Cell(platform::ListView::ListItem& row, int index, std::string_view text) {
  if (index == 1) {
    row.Text(text);
  } else {
    row.SubItems(index - 1, text);
  }
}

/// Writes a key over each cell of a column; the text goes into the row's tag, in front of what the
/// tag holds and divided from it by a NUL.
template <typename KeyOf>
void WriteKeys(platform::ListView& list, int index, KeyOf keyOf) {
  const int count = list.Count();
  for (int position = 1; position <= count; ++position) {
    platform::ListView::ListItem row = list.Item(position);
    const std::string text = Cell(row, index);
    row.Tag(text + '\0' + row.Tag());
    Cell(row, index, keyOf(text));
  }
}

void RestoreTexts(platform::ListView& list, int index) {
  const int count = list.Count();
  for (int position = 1; position <= count; ++position) {
    platform::ListView::ListItem row = list.Item(position);
    const std::string tag = row.Tag();
    const std::size_t end = tag.find('\0');
    if (end == std::string::npos) continue;
    Cell(row, index, std::string_view(tag).substr(0, end));
    row.Tag(std::string_view(tag).substr(end + 1));
  }
}

}  // namespace

void ColumnClick(platform::ListView& List, ColumnDirections& ColumnAscending, int Index) {
  if (List.Count() <= 1) return;
  bool& ascending = ColumnAscending.at(static_cast<std::size_t>(Index - 1));
  ascending = !ascending;
  if (Index == SizeColumn) {
    SortListView(List, SizeColumn, SortNumber, ascending);
    return;
  }
  List.SortKey(Index - 1);
  List.SortOrder((List.SortOrder() + 1) % 2);
  List.Sorted(true);
}

void SortListView(platform::ListView& List, std::int16_t Index, int Kind, bool Ascending) {
  List.Visible(false);
  const AtScopeEnd show([&List] { List.Visible(true); });
  if (Kind == SortNumber) {
    WriteKeys(List, Index, [](const std::string& text) { return NumberKey(text); });
  } else if (Kind == SortDate) {
    platform::SYSTEMTIME last = ZeroDate;
    WriteKeys(List, Index, [&last](const std::string& text) { return DateKey(text, last); });
  }
  List.SortOrder(Ascending ? platform::lvwAscending : platform::lvwDescending);
  List.SortKey(Index - 1);
  List.Sorted(true);
  if (Kind == SortNumber || Kind == SortDate) RestoreTexts(List, Index);
}

void RestoreSortOrder(platform::ListView& List) {
  if (!List.Sorted()) return;
  if (List.SortKey() != SizeColumn - 1) return List.Sorted(true);
  const bool shown = List.Visible();
  SortListView(List, SizeColumn, SortNumber, List.SortOrder() == platform::lvwAscending);
  List.Visible(shown);
}

void SetExtendedListStyle(platform::ListView& List, std::uint32_t Bits) {
  const std::uint32_t style =
      platform::SendMessageA(List.hWnd(), platform::LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0);
  platform::SendMessageA(List.hWnd(), platform::LVM_SETEXTENDEDLISTVIEWSTYLE, 0, style | Bits);
}

std::string NumberKey(std::string_view Text) {
  if (!platform::IsNumeric(Text)) return {};
  const double value = platform::CDbl(Text);
  if (value >= 0) return platform::Format(value, NumberMask);
  return '&' + InvertNumberText(platform::Format(-value, NumberMask));
}

std::string DateKey(std::string_view Text, platform::SYSTEMTIME& Last) {
  platform::CDate(Text, Last);
  return platform::Format(Last, DateMask);
}

std::string InvertNumberText(std::string Text) {
  for (char& c : Text) {
    if (c == '-') {
      c = ' ';
    } else if (c >= '0' && c <= '9') {
      c = static_cast<char>('0' + '9' - c);
    }
  }
  return Text;
}
