#pragma once

#include <cstdint>
#include <string>

#include "platform/Handle.h"

// File search and file times.

namespace platform {

/// A moment in ticks of 100 nanoseconds since 1601-01-01 00:00:00, in two halves.
struct FILETIME {
  std::uint32_t dwLowDateTime = 0;
  std::uint32_t dwHighDateTime = 0;
};

/// A moment as calendar fields.
struct SYSTEMTIME {
  std::uint16_t wYear = 0;
  std::uint16_t wMonth = 0;
  std::uint16_t wDay = 0;
  std::uint16_t wHour = 0;
  std::uint16_t wMinute = 0;
  std::uint16_t wSecond = 0;
  bool operator==(const SYSTEMTIME&) const = default;
};

inline constexpr std::uint32_t FILE_ATTRIBUTE_READONLY = 1;
inline constexpr std::uint32_t FILE_ATTRIBUTE_HIDDEN = 2;
inline constexpr std::uint32_t FILE_ATTRIBUTE_SYSTEM = 4;
inline constexpr std::uint32_t FILE_ATTRIBUTE_DIRECTORY = 16;
inline constexpr std::uint32_t FILE_ATTRIBUTE_NORMAL = 128;

/// One entry of a folder.
struct WIN32_FIND_DATA {
  std::uint32_t dwFileAttributes = 0;
  FILETIME ftLastWriteTime;         ///< UTC.
  std::uint32_t nFileSizeHigh = 0;  ///< Size in bytes: high half times 4294967296 plus low half.
  std::uint32_t nFileSizeLow = 0;
  std::string cFileName;  ///< Without folder, of any length.
};

/// Opens a search. `pattern` is a folder and "*" or "*." with an ending, which fits in any case of
/// its letters; this folder only, never what lies below it. Links count as what they point to; one
/// that points nowhere stands for itself. Fills `data` with the first entry, in the order of the
/// directory. INVALID_HANDLE_VALUE when nothing fits or the folder cannot be read.
HANDLE FindFirstFileA(const std::string& pattern, WIN32_FIND_DATA& data);

/// The next entry; 0 at the end.
int FindNextFileA(HANDLE search, WIN32_FIND_DATA& data);

/// Ends the search.
int FindClose(HANDLE search);

/// UTC to local, with the zone offset in force now, not the one of that date. 0, with nothing
/// written, when either lies outside what a FILETIME of the calendar can hold (high bit set).
int FileTimeToLocalFileTime(const FILETIME& utc, FILETIME& local);

/// Splits into calendar fields. 0, with nothing written, when the high bit is set or the year has
/// more than four digits.
int FileTimeToSystemTime(const FILETIME& time, SYSTEMTIME& fields);

}  // namespace platform
