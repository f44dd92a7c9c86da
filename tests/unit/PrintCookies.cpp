// PrintCookies FOLDER: prints what the program reads of a folder's cookie files, in the form of
// compare_cookie_readers.py, for the two to be compared.

#include <cstdio>
#include <string>

#include "cookies/CookieFileReader.h"
#include "core/PublicDim.h"
#include "monitor/ScanDisk.h"
#include "platform/Files.h"

static void Print(const std::string& cell, char end) {
  for (const unsigned char byte : cell) {
    const bool plain = byte >= 0x20 && byte != 0x7F && byte != '\\';
    plain ? std::putchar(byte) : std::printf("\\x%02X", byte);
  }
  std::putchar(end);
}

int main(int, char** argv) {
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
