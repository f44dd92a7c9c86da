#pragma once

#include <string>
#include <vector>

/// One cookie file as the lists and the log show it. Texts from the start: all comparing is done on
/// them.
struct CookieFileRow {
  std::string FileName;      ///< Without folder.
  std::string SizeText;      ///< Bytes in the format "#,###"; empty for 0.
  std::string ModifiedText;  ///< Last write time, local, "YYYY-MM-DD HH:MM:SS".
};

/// A cookie folder at one moment, in directory order. A folder without cookie files is one row of
/// empty texts, the placeholder.
using Snapshot = std::vector<CookieFileRow>;

/// One cookie.
struct CookieRow {
  std::string Server;
  std::string CookieName;
  std::string CookieValue;  ///< As stored, never decoded.
  std::string ExpireDate;   ///< "YYYY-MM-DD" or "-".
  std::string CookieFile;   ///< The three texts of the file's `CookieFileRow`.
  std::string FileSize;
  std::string Modified;
};
