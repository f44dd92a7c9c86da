#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>

#include "cookies/CookieColumns.h"
#include "platform/FileSearch.h"
#include "platform/ListView.h"

/// How `SortListView` reads a column.
enum SortKind : int { SortText = 0, SortNumber = 1, SortDate = 2 };

/// One entry a column position; true when its last click meant ascending. Shared by both lists.
using ColumnDirections = std::array<bool, CookieColumns.size()>;

/// A click on the header of column `Index`, counted from 1. Does nothing, not even to
/// `ColumnAscending`, with fewer than two rows.
void ColumnClick(platform::ListView& List, ColumnDirections& ColumnAscending, int Index);

/// Sorts by column `Index`, counted from 1. While it runs, the list is hidden and the cells of a
/// number or date column hold their keys; afterwards they show their texts again.
void SortListView(platform::ListView& List, std::int16_t Index, int Kind, bool Ascending);

/// Puts newly added rows into the order that the user last chose, if any. Whether the list shows is
/// left alone.
void RestoreSortOrder(platform::ListView& List);

/// Switches bits of the list's extended style on.
void SetExtendedListStyle(platform::ListView& List, std::uint32_t Bits);

/// A text whose order as text is the number's order by value; empty when `Text` is no number.
std::string NumberKey(std::string_view Text);

/// A text whose order as text is the order of dates. A text that is no date leaves `Last`, and so
/// the key, at the date before.
std::string DateKey(std::string_view Text, platform::SYSTEMTIME& Last);

/// "-" becomes a blank and each digit its distance from 9; all else stays.
std::string InvertNumberText(std::string Text);
