#include "cookies/CookieList.h"

#include <cstddef>
#include <string>
#include <vector>

#include "cookies/CookieColumns.h"
#include "cookies/CookieFileReader.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "platform/Files.h"
#include "platform/Forms.h"

namespace {

std::string CookieFiles() { return PublicDim.CookieDir + "*.txt"; }

bool NoFileIsKnown() {
  return PublicDim.KnownRows.empty() || PublicDim.KnownRows.front().FileName.empty();
}

}  // namespace

void LoadCookieList(platform::ListView& List) {
  List.Clear();
  if (NoFileIsKnown()) {
    PublicDim.CookieRows = std::vector<CookieRow>(1);
    return;
  }
  // The room of the old rows is kept for the new ones: a large array is dear to get anew.
  PublicDim.CookieRows.clear();
  PublicDim.CookieRows.emplace_back();
  const platform::FolderAtHand folder(CookieFiles());
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    ReadCookieFile(file.FileName, file.SizeText, file.ModifiedText, TargetCookieRows);
  }
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    AddCookieRow(List, PublicDim.CookieRows[i]);
  }
  RestoreSortOrder(List);
}

void ExpectCookieList(int WindowState) {
  constexpr std::size_t ManyFiles = 100;  // fewer are read before a second thread has begun
  const std::size_t known = PublicDim.KnownRows.size();
  if (WindowState == platform::vbMinimized || (known > 0 && known < ManyFiles)) return;
  platform::FolderAtHand::ComesSoon(CookieFiles());
}

void CookieListTick(platform::ListView& List, int WindowState) {
  if (WindowState == platform::vbMinimized) return platform::FolderAtHand::ComesNot();
  if (!PublicDim.CookieListStale) return;
  // The first scan is about to tell which files there are: at start-up, or after the cleaner.
  if (PublicDim.KnownRows.empty() || (PublicDim.FirstScanRunning && NoFileIsKnown())) return;
  LoadCookieList(List);
  PublicDim.CookieListStale = false;
}

void AddCookieRow(platform::ListView& List, const CookieRow& Row) {
  platform::ListView::ListItem item = List.Add(Row.*CookieColumns.front().Text);
  for (std::size_t cell = 1; cell < CookieColumns.size(); ++cell) {
    item.SubItems(static_cast<int>(cell), Row.*CookieColumns[cell].Text);
  }
}
