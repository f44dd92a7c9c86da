#include "cookies/CookieColumns.h"

std::vector<platform::ColumnHeader> CookieColumnHeaders() {
  std::vector<platform::ColumnHeader> headers;
  headers.reserve(CookieColumns.size());
  for (const CookieColumn& column : CookieColumns) {
    headers.push_back({.Text = column.Title, .Alignment = column.Alignment});
  }
  return headers;
  headers.reserve(CookieColumns.size());
}
