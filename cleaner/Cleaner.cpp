#include "cleaner/Cleaner.h"

#include <string>

#include "core/PublicDim.h"
#include "platform/Files.h"
#include "platform/Shell.h"
#include "report/ChangeReports.h"
#include "report/LogFile.h"

namespace {

std::string CleanedLine() { return PresentDateAndTime() + " - Cookies are cleaned **********"; }

/// The deletions that follow are then no news: a comparison finds them in neither snapshot.
void ForgetKnownFiles() {
  PublicDim.KnownRows = Snapshot(1);
  PublicDim.CurrentRows = Snapshot(1);
  PublicDim.BaselineReset = true;
}

void DeleteCookies() {
  // A folder that could not be resolved, or was set to one that holds more than cookies, keeps its
  // files. The look comes after the question, which can stay open for long.
  if (!platform::IsSafeToClear(PublicDim.CookieDir)) return;
  std::string name = platform::Dir(PublicDim.CookieDir + "*.txt");
  while (!name.empty()) {
    platform::Kill(PublicDim.CookieDir + name);
    name = platform::Dir();
  }
}

void CleanCookies(platform::ListBox& log) {
  ForgetKnownFiles();
  DeleteCookies();
  log.AddItem(CleanedLine());
  WriteLogFile(CleanedLine());
  PublicDim.CookieListStale = true;
}

void CleanRecentDocuments() {
  if (!platform::IsSafeToClear(PublicDim.RecentDir)) return;
  const std::string all = PublicDim.RecentDir + "*.*";
  if (!platform::Dir(all).empty()) platform::Kill(all);
}

}  // namespace

void Clean(const CleanerBoxes& boxes, platform::ListBox& log) {
  const auto& [cookies, recentDocuments, recycleBin] = boxes;
  if (cookies.Value() == 0 && recentDocuments.Value() == 0 && recycleBin.Value() == 0) return;
  const int answer = platform::MsgBox("Do you want to clean selected items",
                                      platform::MB_YESNO + platform::MB_ICONQUESTION);
  if (answer == platform::IDNO) return;
  if (cookies.Value() == 1) CleanCookies(log);
  if (recentDocuments.Value() == 1) CleanRecentDocuments();
  if (recycleBin.Value() == 1) EmptyRecycleBin();
  platform::MsgBox("Successfully cleaned!", platform::MB_OK + platform::MB_ICONINFORMATION);
}

void EmptyRecycleBin() {
  platform::SHEmptyRecycleBinA(
      PublicDim.TrayIconData.hWnd, "",
      platform::SHERB_NOCONFIRMATION + platform::SHERB_NOPROGRESSUI + platform::SHERB_NOSOUND);
}
