#include "cookies/CookieColumns.h"

std::vector<platform::ColumnHeader> CookieColumnHeaders() {
  std::vector<platform::ColumnHeader> headers;
  for (const CookieColumn& column : CookieColumns) {
    headers.push_back({.Text = column.Title, .Alignment = column.Alignment});
  }
  return headers;
}
