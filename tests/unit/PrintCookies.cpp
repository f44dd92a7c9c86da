// PrintCookies FOLDER: prints what the program reads of a folder's cookie files, in the form of
// tests/desktop/cookie_reader.py, for the two to be compared.

#include <cstdio>
#include <string>

#include "cookies/CookieFileReader.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Files.h"

namespace {

void Print(const std::string& cell, char end) {
  for (const char c : cell) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte < 0x20 || byte == 0x7F || byte == '\\') {
      std::printf("\\x%02X", byte);
    } else {
      std::putchar(c);
    }
  }
  std::putchar(end);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) return 2;
  PublicDim.CookieDir = std::string(argv[1]) + "/";
  TakeFirstSnapshot();
  PublicDim.CookieRows.resize(1);
  const platform::FolderAtHand folder(PublicDim.CookieDir + "*.txt");
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    ReadCookieFile(file.FileName, file.SizeText, file.ModifiedText, TargetCookieRows);
  }
  for (std::size_t i = 1; i < PublicDim.CookieRows.size(); ++i) {
    const CookieRow& row = PublicDim.CookieRows[i];
    for (const std::string* cell : {&row.Server, &row.ExpireDate, &row.CookieName, &row.CookieValue,
                                    &row.CookieFile, &row.FileSize}) {
      Print(*cell, '\t');
    }
    Print(row.Modified, '\n');
  }
}
