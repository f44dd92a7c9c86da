// The starter in the desktop's menu, made and taken away by a program of its own beside Quillmere:
//   quillmere-menu add | remove

#include <filesystem>
#include <iostream>
#include <string>
#include <string_view>
#include <system_error>

#include "platform/Files.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/Paths.h"
#include "platform/linux/UserFolders.h"

namespace platform {
namespace {

bool Add(const std::string& path) {
  std::error_code failed;
  const std::string program = std::filesystem::read_symlink("/proc/self/exe", failed)
                                  .replace_filename("quillmere")
                                  .native();
  // Without the program the starter is not shown.
  const std::string more = "TryExec=" + TextEscaped(program) +
                           "\n"
                           "Categories=Utility;\n"
                           "Keywords=cookie;browser;watch;\n"
                           "StartupWMClass=quillmere\n";
  return MakeFolders(FolderOf(path)) &&
         WriteFileWhole(path, DesktopEntry("Quillmere", program, more));
}

bool Remove(const std::string& path) {
  std::error_code failed;
  std::filesystem::remove(path, failed);
  return !failed;
}

int Run(std::string_view wish) {
  if (wish != "add" && wish != "remove") {
    std::cerr << "quillmere-menu add     makes the starter in the desktop's menu\n"
                 "quillmere-menu remove  takes it away\n";
    return 2;
  }
  const std::string data = DataHome();
  const std::string path = data + "/applications/quillmere.desktop";
  if (!data.empty() && (wish == "add" ? Add(path) : Remove(path))) return 0;
  std::cerr << path << " could not be written.\n";
  return 1;
}

}  // namespace
}  // namespace platform

int main(int argc, char** argv) { return platform::Run(argc == 2 ? argv[1] : ""); }
