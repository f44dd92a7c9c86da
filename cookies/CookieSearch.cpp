#include "cookies/CookieSearch.h"

#include <cstddef>
#include <string_view>

#include "cookies/CookieColumns.h"
#include "cookies/CookieList.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "platform/Regional.h"
#include "platform/Texts.h"

namespace {

/// The columns that are fields of the search, in their order.
std::vector<CookieColumn> SearchFields() {
  std::vector<CookieColumn> fields(CookieColumns.begin(), CookieColumns.end());
  std::erase_if(fields, [](const CookieColumn& column) { return !column.CanBeSearched; });
  return fields;
}

}  // namespace

std::vector<std::string> SearchFieldNames() {
  std::vector<std::string> names;
  for (const CookieColumn& field : SearchFields()) names.emplace_back(field.Title);
  return names;
}

void SearchCookies(platform::TextBox& TextSearch, int Field, platform::ListView& ListVSearch) {
  ListVSearch.Clear();
  const std::string entered = TextSearch.Text();
  const std::string_view wanted = platform::Trimmed(entered);
  TextSearch.Text(wanted);
  const std::vector<CookieColumn> fields = SearchFields();
  const auto field = static_cast<std::size_t>(Field);
  if (wanted.empty() || field >= fields.size()) return;

  const platform::TextSearch search(wanted);
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    if (search.OccursIn(PublicDim.CookieRows[i].*fields[field].Text)) {
      AddSearchRow(ListVSearch, static_cast<double>(i));
    }
  }
  RestoreSortOrder(ListVSearch);
}

void AddSearchRow(platform::ListView& ListVSearch, double Index) {
  AddCookieRow(ListVSearch, PublicDim.CookieRows[static_cast<std::size_t>(Index)]);
}
