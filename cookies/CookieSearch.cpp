#include "cookies/CookieSearch.h"

#include <array>
#include <cstddef>
#include <string_view>

#include "cookies/CookieList.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "platform/Regional.h"
#include "platform/Texts.h"

namespace {

struct SearchField {
  const char* Name;
  platform::SharedText CookieRow::* Text;
};

constexpr std::array<SearchField, 6> SearchFields = {{
    {"Server", &CookieRow::Server},
    {"Expire Date", &CookieRow::ExpireDate},
    {"Cookie Name", &CookieRow::CookieName},
    {"Value", &CookieRow::CookieValue},
    {"Cookie File", &CookieRow::CookieFile},
    {"Modified", &CookieRow::Modified},
}};

}  // namespace

std::vector<std::string> SearchFieldNames() {
  std::vector<std::string> names;
  names.reserve(SearchFields.size());
  for (const SearchField& field : SearchFields) names.emplace_back(field.Name);
  return names;
}

void SearchCookies(platform::TextBox& TextSearch, int Field, platform::ListView& ListVSearch) {
  ListVSearch.Clear();
  const std::string entered = TextSearch.Text();
  const std::string_view wanted = platform::Trimmed(entered);
  TextSearch.Text(wanted);
  const auto field = static_cast<std::size_t>(Field);
  if (wanted.empty() || field >= SearchFields.size()) return;

  const platform::TextSearch search(wanted);
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    if (search.OccursIn(PublicDim.CookieRows[i].*SearchFields[field].Text)) {
      AddSearchRow(ListVSearch, static_cast<double>(i));
    }
  }
  RestoreSortOrder(ListVSearch);
}

void AddSearchRow(platform::ListView& ListVSearch, double Index) {
  AddCookieRow(ListVSearch, PublicDim.CookieRows[static_cast<std::size_t>(Index)]);
}
