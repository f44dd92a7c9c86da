#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "core/Rows.h"
#include "platform/ListView.h"

/// A column of both cookie lists.
struct CookieColumn {
  const char* Title;
  platform::SharedText CookieRow::* Text;  ///< What its cells show.
  platform::ColumnAlignment Alignment = platform::ColumnAlignment::Left;
  bool CanBeSearched = true;
};

/// The one table of the columns: headers, cells, fields of the search, the cells that are read back
/// and the sort directions follow from it.
inline constexpr std::array CookieColumns = {
    CookieColumn{"Server", &CookieRow::Server},
    CookieColumn{"Expire Date", &CookieRow::ExpireDate},
    CookieColumn{"Cookie Name", &CookieRow::CookieName},
    CookieColumn{"Value", &CookieRow::CookieValue},
    CookieColumn{"Cookie File", &CookieRow::CookieFile},
    CookieColumn{.Title = "File Size (bytes)",
                 .Text = &CookieRow::FileSize,
                 .Alignment = platform::ColumnAlignment::Right,
                 .CanBeSearched = false},
    CookieColumn{"Modified", &CookieRow::Modified, platform::ColumnAlignment::Center},
};

/// The cell of a row that shows a text of the cookie: 0 is the row's `Text`, any other the number
/// of its `SubItems`.
consteval int CellOf(platform::SharedText CookieRow::* text) {
  std::size_t cell = 0;
  while (CookieColumns.at(cell).Text != text) ++cell;
  return static_cast<int>(cell);
}

inline constexpr int CookieFileCell = CellOf(&CookieRow::CookieFile);
inline constexpr int FileSizeCell = CellOf(&CookieRow::FileSize);
inline constexpr int ModifiedCell = CellOf(&CookieRow::Modified);
static_assert(CookieFileCell > 0 && FileSizeCell > 0 && ModifiedCell > 0, "read by `SubItems`");

std::vector<platform::ColumnHeader> CookieColumnHeaders();
