// PrintCookies FOLDER: prints what the program reads of a folder's cookie files, each cell behind
// its length, for compare_cookie_readers.py.

#include <cstdio>
#include <string>

#include "cookies/CookieFileReader.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Application.h"
#include "platform/Files.h"
#include "tests/support/Machine.h"

int main(int, char** argv) {
  machine::WriteBytesAsTheyAre();
  PublicDim.CookieDir = std::string(argv[1]).append(platform::PathSeparator);
  TakeFirstSnapshot();
  PublicDim.CookieRows.resize(1);
  const platform::FolderAtHand folder(PublicDim.CookieDir + "*.txt");
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    ReadCookieFile(file.FileName, file.SizeText, file.ModifiedText, TargetCookieRows);
  }
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    const CookieRow& row = PublicDim.CookieRows[i];
    for (const std::string_view cell : std::initializer_list<std::string_view>{
             row.Server, row.ExpireDate, row.CookieName, row.CookieValue, row.CookieFile,
             row.FileSize, row.Modified}) {
      std::printf("%zu:", cell.size());
      std::fwrite(cell.data(), 1, cell.size(), stdout);
    }
  }
}
