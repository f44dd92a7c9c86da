#include "cookies/CookieList.h"

#include <cstddef>
#include <vector>

#include "cookies/CookieColumns.h"
#include "cookies/CookieFileReader.h"
#include "cookies/modSortListView.h"
#include "core/PublicDim.h"
#include "platform/Files.h"
#include "platform/Forms.h"

namespace {

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
  const platform::FolderAtHand folder(PublicDim.CookieDir + "*.txt");
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    ReadCookieFile(file.FileName, file.SizeText, file.ModifiedText, TargetCookieRows);
  }
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    AddCookieRow(List, PublicDim.CookieRows[i]);
  }
  RestoreSortOrder(List);
}

void CookieListTick(platform::ListView& List, int WindowState) {
  if (WindowState == platform::vbMinimized || !PublicDim.CookieListStale) return;
  // The first scan is about to tell which files there are: at start-up, or after the cleaner.
  if (PublicDim.KnownRows.empty() || (PublicDim.FirstScanRunning && NoFileIsKnown())) return;
  LoadCookieList(List);
  PublicDim.CookieListStale = false;
}

void AddCookieRow(platform::ListView& List, const CookieRow& Row) {
  platform::ListView::ListItem item = List.Add(Row.Server);
  item.SubItems(1, Row.ExpireDate);
  item.SubItems(2, Row.CookieName);
  item.SubItems(3, Row.CookieValue);
  item.SubItems(CookieFileCell, Row.CookieFile);
  item.SubItems(FileSizeCell, Row.FileSize);
  item.SubItems(ModifiedCell, Row.Modified);
}
