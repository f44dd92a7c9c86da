#pragma once

#include <vector>

#include "platform/SharedText.h"

/// One cookie file as the lists and the log show it. Texts from the start: all comparing is done on
/// them.
struct CookieFileRow {
  platform::SharedText FileName;      ///< Without folder.
  platform::SharedText SizeText;      ///< Bytes in the format "#,###"; empty for 0.
  platform::SharedText ModifiedText;  ///< Last write time, local, "YYYY-MM-DD HH:MM:SS".
};

/// A cookie folder at one moment, in directory order. A folder without cookie files is one row of
/// empty texts, the placeholder.
using Snapshot = std::vector<CookieFileRow>;

/// One cookie.
struct CookieRow {
  platform::SharedText Server;
  platform::SharedText CookieName;
  platform::SharedText CookieValue;  ///< As stored, never decoded.
  platform::SharedText ExpireDate;   ///< "YYYY-MM-DD" or "-".
  platform::SharedText CookieFile;   ///< The three texts of the file's `CookieFileRow`.
  platform::SharedText FileSize;
  platform::SharedText Modified;
};
