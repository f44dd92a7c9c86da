#include "bench/CookieWork.h"

#include "cookies/CookieFileReader.h"
#include "cookies/CookieList.h"
#include "cookies/CookieSearch.h"
#include "cookies/modSortListView.h"
#include "core/Joined.h"
#include "core/PublicDim.h"
#include "monitor/Comparison.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "platform/Forms.h"

namespace {

class NoReports : public DifferenceReports {
 public:
  void ReportModified(std::size_t, std::size_t) override {}
  void ReportAdded(std::size_t) override {}
  void ReportRemoved(std::size_t) override {}
};

}  // namespace

void UseCookieFolder(const std::string& folder) {
  PublicDim = {};
  PublicDim.CookieDir = Joined({folder, platform::PathSeparator});
}

void StyleLists(CookieLists& lists) {
  for (platform::ListView* list : {&lists.ListVCookie, &lists.ListVSearch}) {
    SetExtendedListStyle(*list, platform::LVS_EX_FULLROWSELECT | platform::LVS_EX_GRIDLINES);
  }
}

Snapshot Renamed(Snapshot rows) {
  for (CookieFileRow& row : rows) row.FileName = Joined({"new-", row.FileName});
  return rows;
}

void Compare(const Snapshot& known, const Snapshot& current) {
  NoReports reports;
  ReportDifferences(known, current, reports);
}

void ClearCookieRows() {
  PublicDim.CookieRows.clear();
  PublicDim.CookieRows.emplace_back();
}

void ReadCookies() {
  const platform::FolderAtHand folder(PublicDim.CookieDir + "*.txt");
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    ReadCookieFile(file.FileName, file.SizeText, file.ModifiedText, TargetCookieRows);
  }
}

void FillList(platform::ListView& list, std::size_t count) {
  list.Clear();
  for (std::size_t i = 1; i <= count; ++i) AddCookieRow(list, PublicDim.CookieRows[i]);
  RestoreSortOrder(list);
  platform::DoEvents();
}

void Search(CookieLists& lists, int field, const std::string& word) {
  lists.TextSearch.Text(word);
  SearchCookies(lists.TextSearch, field, lists.ListVSearch);
  platform::DoEvents();
}

void SortColumn(platform::ListView& list, int index) {
  static ColumnDirections directions{};
  ColumnClick(list, directions, index);
  platform::DoEvents();
}
