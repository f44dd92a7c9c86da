#include "cookies/CookieFileReader.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

#include "core/AtScopeEnd.h"
#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/FileSearch.h"
#include "platform/Files.h"
#include "platform/Regional.h"
#include "platform/Texts.h"

using platform::SharedText;

namespace {

constexpr std::size_t LinesOfRecord = 9;
constexpr const char* NoDate = "-";

using Pieces = std::vector<std::string_view>;

/// A search for a single character is many times as fast as one for a text of that length.
std::size_t Find(std::string_view text, std::string_view wanted, std::size_t from) {
  return wanted.size() == 1 ? text.find(wanted.front(), from) : text.find(wanted, from);
}

/// Adds a file's records behind the last row, all of them or none.
void AppendRecords(const Pieces& pieces, const SharedText& fileName, const SharedText& fileSize,
                   const SharedText& modified, std::vector<CookieRow>& rows) {
  const std::size_t first = rows.size();
  const std::size_t records = pieces.size() / LinesOfRecord;
  std::size_t kept = first;
  const AtScopeEnd dropUnfinished([&rows, &kept] { rows.resize(kept); });
  rows.resize(first + records);
  for (std::size_t r = 0; r < records; ++r) {
    const std::string_view* line = &pieces[r * LinesOfRecord];
    std::string_view server = line[2];
    if (server.ends_with('/')) server.remove_suffix(1);
    CookieRow& row = rows[first + r];
    row.Server = server;
    row.CookieName = line[0];
    row.CookieValue = line[1];
    row.ExpireDate = ExpireDateText(line[5]);
    row.CookieFile = fileName;
    row.FileSize = fileSize;
    row.Modified = modified;
  }
  kept = rows.size();
}

void ReadRecords(const SharedText& fileName, const SharedText& fileSize, const SharedText& modified,
                 int target) {
  platform::InputFile file(Joined({PublicDim.CookieDir, fileName}));
  if (!file.IsOpen()) return;
  // Lines of the file end in LF alone, so what is one line to the platform is the whole content, or
  // all that stands before the first CR.
  const std::string content = platform::TextFromCodePage(file.LineInput());
  const Pieces pieces = SplitText(content, "\n");
  if (pieces.size() < LinesOfRecord) return;

  if (target == TargetCookieRows) {
    AppendRecords(pieces, fileName, fileSize, modified, PublicDim.CookieRows);
  } else {
    std::vector<CookieRow> rows;
    AppendRecords(pieces, fileName, fileSize, modified, rows);
    PublicDim.DetailRows = std::move(rows);
  }
}

}  // namespace

void ReadCookieFile(const SharedText& FileName, const SharedText& FileSize,
                    const SharedText& Modified, int Target) {
  // What does not fit into memory can't be read.
  try {
    ReadRecords(FileName, FileSize, Modified, Target);
  } catch (const std::bad_alloc&) {
  } catch (const std::length_error&) {
  }
}

std::vector<std::string_view> SplitText(std::string_view Text, std::string_view Delimiter) {
  constexpr std::size_t UsualPieces = 64;  // 1 KiB, the most that malloc has ready at once
  Pieces pieces;
  pieces.reserve(UsualPieces);
  std::size_t position = 0;
  while (!Delimiter.empty()) {
    const std::size_t end = Find(Text, Delimiter, position);
    if (end == std::string_view::npos) break;
    pieces.push_back(Text.substr(position, end - position));
    position = end + Delimiter.size();
  }
  if (position < Text.size()) pieces.push_back(Text.substr(position));
  return pieces;
}

std::string ExpireDateText(std::string_view HighWord) {
  // The default rounding takes a tie to the even neighbour.
  const double number = std::nearbyint(platform::LeadingNumber(HighWord));
  if (number < std::numeric_limits<std::int32_t>::min() ||
      number > std::numeric_limits<std::int32_t>::max()) {
    return NoDate;
  }
  platform::FILETIME expiry;
  expiry.dwHighDateTime = static_cast<std::uint32_t>(static_cast<std::int32_t>(number));
  platform::FILETIME& local = PublicDim.FileLocalTime;
  platform::SYSTEMTIME& date = PublicDim.FileSysTime;
  if (platform::FileTimeToLocalFileTime(expiry, local) == 0 ||
      platform::FileTimeToSystemTime(local, date) == 0) {
    return NoDate;
  }
  return platform::Format(date, "YYYY-MM-DD");
}
