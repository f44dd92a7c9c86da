#pragma once

#include <string>
#include <vector>

#include "core/Rows.h"
#include "platform/FileSearch.h"
#include "platform/Handle.h"
#include "platform/Shell.h"

/// The program's shared state, for the life of the process: what more than one folder touches, and
/// the watch and its snapshots whole. One thread, so no locks: what may run inside which yield
/// rules the order (ARCHITECTURE.md).
struct PublicVariables {
  // Folders; each ends in the separator, so that a file name follows directly.
  std::string AppPath;    ///< Of the executable.
  std::string LogDir;     ///< "log" in it.
  std::string SoundDir;   ///< "sound" in it.
  std::string CookieDir;  ///< The watched folder.
  std::string RecentDir;  ///< The recent documents.

  // What a change report leaves for the popup that it opens.
  bool MsgEnabled = false;  ///< Popups are shown; true from `Form_Load` on.
  std::string MsgText;
  bool MsgCanView = false;
  platform::SharedText MsgFileName;  ///< Of the last modified or added file, as the next two.
  platform::SharedText MsgFileSize;
  platform::SharedText MsgFileModified;

  // Options, stored in config.ini.
  bool SaveLog = false;  ///< `CheckLog` shows the inverse.
  bool ToTray = false;
  bool PlaySound1 = false;
  bool PlaySound2 = false;

  // Cookies.
  std::vector<CookieRow> CookieRows;  ///< Of all files, from slot 1; slot 0 is blank.
  std::vector<CookieRow> DetailRows;  ///< Of the file last read for a detail window, from slot 0.

  platform::NOTIFYICONDATA TrayIconData;

  // Snapshots of the cookie folder.
  double ScanRowCount = 0;  ///< Rows of the scan under way or last finished; a whole number.
  Snapshot ScanRows;        ///< What the scan builds; holds old rows while the count is 0.
  Snapshot KnownRows;       ///< The baseline: the last state that reports were made against.
  Snapshot CurrentRows;     ///< The copy of the scan that a comparison works on.
  platform::SYSTEMTIME FileSysTime;  ///< Scratch of the date conversions, as the next two.
  platform::FILETIME FileLocalTime;
  platform::WIN32_FIND_DATA FindData;

  // The watch.
  bool ChangePending = false;    ///< The folder changed and no comparison has run since.
  bool CookieListStale = false;  ///< The cookie list is rebuilt at the next `TimerCookie` tick.
  bool WatchStopping = false;    ///< The wait loops must end; also: no watch is running.
  platform::HANDLE WatchHandle = 0;

  // What a scan means to others while it runs; more of the kind is monitor/WatchFlags.h's.
  bool BaselineReset = false;     ///< The cleaner replaced the snapshots: a scan under way is void.
  bool FirstScanRunning = false;  ///< The scan under way is the one that a watch starts with.
};

inline PublicVariables PublicDim;
