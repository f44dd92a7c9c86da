#include <algorithm>
#include <cmath>

#include "cookies/CookieColumns.h"
#include "cookies/modSortListView.h"
#include "platform/Forms.h"
#include "platform/Regional.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/Application.h"

// Each line of the input is the text of a cell of the size column.

namespace {

void RequireKeys(const std::vector<std::string>& cells) {
  std::vector<std::pair<double, std::string>> keys;
  for (const std::string& cell : cells) {
    const double number = platform::CDbl(cell);
    Require(NumberKey(cell).empty() != platform::IsNumeric(cell), "a number has a key");
    // The mask has twenty digits and ten decimals.
    if (platform::IsNumeric(cell) && std::fabs(number) < 1e20) {
      keys.emplace_back(number, NumberKey(cell));
    }
    platform::SYSTEMTIME date;
    if (!platform::CDate(cell, date)) continue;
    const std::string text = platform::Format(date, "YYYY-MM-DD HH:NN:SS");
    Require(platform::CDate(text, date) && platform::Format(date, "YYYY-MM-DD HH:NN:SS") == text,
            "a date that was read is one");
  }
  std::sort(keys.begin(), keys.end(), [](auto& a, auto& b) { return a.first < b.first; });
  for (std::size_t i = 1; i < keys.size(); ++i) {
    const bool equal = keys[i].first - keys[i - 1].first < 1e-9;
    Require(equal ? keys[i - 1].second <= keys[i].second : keys[i - 1].second < keys[i].second,
            "keys order as their numbers");
  }
}

void RequireSorted(platform::ListView& list, const std::vector<std::string>& cells, int kind,
                   bool ascending) {
  platform::SYSTEMTIME last{.wYear = 1899, .wMonth = 12, .wDay = 30};
  std::vector<std::string> keys;
  for (const std::string& cell : cells) {
    keys.push_back(kind == SortNumber ? NumberKey(cell) : DateKey(cell, last));
  }
  SortListView(list, FileSizeCell + 1, kind, ascending);
  std::vector<std::string> order;
  for (int position = 1; position <= list.Count(); ++position) {
    const platform::ListView::ListItem row = list.Item(position);
    const std::size_t added = std::stoul(row.Text());
    Require(row.SubItems(FileSizeCell) == cells.at(added) && row.Tag() == "tag", "texts are back");
    order.push_back(keys.at(added));
  }
  std::sort(keys.begin(), keys.end());
  if (!ascending) std::reverse(keys.begin(), keys.end());
  Require(order == keys, "rows stand in the order of their keys");
}

}  // namespace

/// The leak detector does not look where the toolkit keeps its fonts. Without the stacks of its
/// many allocations, and with few of them kept back, a run takes half the time.
extern "C" const char* __asan_default_options() {
  return "detect_leaks=0:malloc_context_size=1:quarantine_size_mb=4";
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const Sandbox sandbox;
  static const auto& application = *new machine::Application;
  static_cast<void>(application);
  static auto& form = *new platform::Form(
      {.Name = "Lists", .Caption = "", .ClientWidth = 9000, .ClientHeight = 6000});
  static auto& list = *new platform::ListView(form, {}, CookieColumnHeaders());

  std::vector<std::string> cells = Split(AsText(data, size), '\n');
  if (cells.size() > 8) cells.resize(8);
  list.Sorted(false);
  list.Clear();
  for (std::string& cell : cells) {
    std::erase(cell, '\0');  // Divides text and tag while keys stand in the cells.
    platform::ListView::ListItem row = list.Add(std::to_string(list.Count()));
    row.SubItems(FileSizeCell, cell);
    row.Tag("tag");
  }
  RequireKeys(cells);
  RequireSorted(list, cells, SortDate, true);  // First: a date's key may be that of the row before.
  RequireSorted(list, cells, SortNumber, true);
  RequireSorted(list, cells, SortNumber, false);
  return 0;
}
