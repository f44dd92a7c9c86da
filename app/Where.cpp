// Tells where the program beside it watches and writes, found as the program finds it:
//   quillmere-where

#include <iostream>

#include "core/PublicDim.h"
#include "core/SettingsFile.h"
#include "core/SpecialFolders.h"
#include "platform/Files.h"

int main() {
  ResolveProgramFolders();
  ResolveShellFolders(0);
  LoadConfig();
  const bool there = !platform::Dir(PublicDim.CookieDir, platform::vbDirectory).empty();
  std::cout << "Watched folder: " << PublicDim.CookieDir << (there ? "\n" : " (not there)\n");
  std::cout << "Log files: ";
  if (PublicDim.SaveLog) {
    std::cout << PublicDim.LogDir << '\n';
  } else {
    std::cout << "none, for want of SaveLog=True in " << PublicDim.AppPath << "config.ini\n";
  }
}
