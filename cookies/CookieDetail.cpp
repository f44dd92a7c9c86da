#include "cookies/CookieDetail.h"

#include <memory>
#include <optional>

#include "cookies/CookieColumns.h"
#include "cookies/CookieFileReader.h"
#include "cookies/FormView.h"
#include "cookies/PresentNames.h"
#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/Files.h"

void OpenCookieDetail(platform::ListView& List, const platform::Form& Owner) {
  if (List.Count() == 0) return;
  std::string fileName;
  std::string fileSize;
  std::string modified;
  if (const std::optional<platform::ListView::ListItem> row = List.SelectedItem()) {
    fileName = row->SubItems(CookieFileCell);
    fileSize = row->SubItems(FileSizeCell);
    modified = row->SubItems(ModifiedCell);
  }
  ReadDetailRows(fileName, fileSize, modified);
  platform::ShowNew(std::make_unique<FormView>(), &Owner);
}

void ReadDetailRows(std::string FileName, std::string_view FileSize, std::string_view Modified) {
  if (platform::Dir(PublicDim.CookieDir + FileName).empty()) {
    const std::string other = PresentNames().OnlyOneEqualTo(FileName);
    if (!other.empty()) FileName = other;
  }
  ReadCookieFile(FileName, FileSize, Modified, TargetDetailRows);
}

std::string DetailText(const std::vector<CookieRow>& Rows) {
  std::string block;
  for (const CookieRow& row : Rows) {
    block += Joined({"Cookie name: ", row.CookieName, "\r\nValue: ", row.CookieValue,
                     "\r\nServer: ", row.Server, "\r\nExpire: ", row.ExpireDate, "\r\n\r\n"});
  }
  return block;
}
