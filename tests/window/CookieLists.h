#pragma once

#include <string>
#include <vector>

#include "cookies/CookieColumns.h"
#include "platform/Forms.h"
#include "platform/ListView.h"

/// A window that holds the two cookie lists and the search box alone.
class CookieLists : public platform::Form {
 public:
  CookieLists()
      : Form({.Name = "CookieLists", .Caption = "", .ClientWidth = 9000, .ClientHeight = 6000}),
        ListVCookie(*this, {.Name = "ListVCookie", .At = {0, 0, 9000, 2500}}, CookieColumns),
        ListVSearch(*this, {.Name = "ListVSearch", .At = {0, 2500, 9000, 2500}}, CookieColumns),
        TextSearch(*this, {.Name = "TextSearch", .At = {0, 5100, 1575, 285}}) {}

  platform::ListView ListVCookie;
  platform::ListView ListVSearch;
  platform::TextBox TextSearch;
};

using Cells = std::vector<std::string>;

/// A row's seven cells.
inline Cells CellsOf(platform::ListView& list, int position) {
  const platform::ListView::ListItem row = list.Item(position);
  Cells cells = {row.Text()};
  for (int column = 1; column <= 6; ++column) cells.push_back(row.SubItems(column));
  return cells;
}

/// The cells of one column, counted from 1.
inline Cells ColumnOf(platform::ListView& list, int index) {
  Cells cells;
  for (int position = 1; position <= list.Count(); ++position) {
    cells.push_back(CellsOf(list, position).at(static_cast<std::size_t>(index - 1)));
  }
  return cells;
}
