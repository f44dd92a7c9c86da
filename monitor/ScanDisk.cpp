#include "monitor/ScanDisk.h"

#include <utility>

#include "core/AtScopeEnd.h"
#include "core/PublicDim.h"
#include "monitor/WatchFlags.h"
#include "platform/Application.h"
#include "platform/Forms.h"
#include "platform/Regional.h"

namespace {

void AddFoundFile(const platform::WIN32_FIND_DATA& found) {
  platform::FileTimeToLocalFileTime(found.ftLastWriteTime, PublicDim.FileLocalTime);
  platform::FileTimeToSystemTime(PublicDim.FileLocalTime, PublicDim.FileSysTime);
  constexpr double HighHalf = 4294967296.0;
  AddSnapshotRow(found.cFileName, found.nFileSizeHigh * HighHalf + found.nFileSizeLow,
                 PublicDim.FileSysTime);
}

}  // namespace

void ScanCookieFolder(std::string folder) {
  if (folder.empty()) return;
  if (!folder.ends_with(platform::PathSeparator)) folder += platform::PathSeparator;
  PublicDim.ScanRowCount = 0;
  WatchFlags.ScanRunning = true;
  const AtScopeEnd ended([] { WatchFlags.ScanRunning = false; });
  platform::WIN32_FIND_DATA& found = PublicDim.FindData;
  const platform::HANDLE search = platform::FindFirstFileA(folder + "*.txt", found);
  if (search == platform::INVALID_HANDLE_VALUE) return;
  do {
    if (!(found.dwFileAttributes & platform::FILE_ATTRIBUTE_DIRECTORY)) AddFoundFile(found);
    platform::DoEvents();
  } while (platform::FindNextFileA(search, found) != 0);
  platform::FindClose(search);
}

void AddSnapshotRow(const std::string& fileName, double size,
                    const platform::SYSTEMTIME& modified) {
  const auto row = static_cast<std::size_t>(PublicDim.ScanRowCount);
  PublicDim.ScanRows.resize(row + 1);
  PublicDim.ScanRows[row] = {fileName, platform::Format(size, "#,###"),
                             platform::Format(modified, "YYYY-MM-DD HH:MM:SS")};
  PublicDim.ScanRowCount += 1;
}

Snapshot TakeSnapshot() {
  do {
    PublicDim.BaselineReset = false;
    ScanCookieFolder(PublicDim.CookieDir);
  } while (PublicDim.BaselineReset);
  if (PublicDim.ScanRowCount <= 0) return Snapshot(1);
  return PublicDim.ScanRows;
}

void TakeFirstSnapshot() { PublicDim.KnownRows = TakeSnapshot(); }
