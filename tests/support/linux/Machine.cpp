#include "tests/support/Machine.h"

#include <cstdlib>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace machine {

namespace fs = std::filesystem;

const char Separator = '/';
const bool CasesDiffer = true;
const bool ToldExactly = true;
const bool TouchIsTold = true;

fs::path NativePath(const std::string& path) { return path; }
std::string PathText(const fs::path& path) { return path; }

std::vector<fs::path> TemporaryPlaces() {
  std::vector<fs::path> places{fs::temp_directory_path()};
  if (fs::is_directory("/dev/shm")) places.emplace_back("/dev/shm");
  return places;
}

std::string MakeOwnFolder(const fs::path& parent) {
  std::string name = (parent / "unit-XXXXXX").string();
  return std::string(mkdtemp(name.data())) + '/';
}

void RemoveFolder(const std::string& path) {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

void UseFolder(const std::string& path) {
  UseHome(path + "home");
  setenv("XDG_CONFIG_HOME", (path + "config").c_str(), 1);
  setenv("XDG_DATA_HOME", (path + "data").c_str(), 1);
  setenv("QT_QPA_PLATFORM", "offscreen", 1);
  setenv("LC_ALL", "en_US.UTF-8", 1);
  setenv("TZ", "UTC", 1);
}

void UseHome(const std::string& path) { setenv("HOME", path.c_str(), 1); }

Facts FactsOf(const std::string& path) {
  Facts facts;
  struct stat info;
  if (lstat(path.c_str(), &info) != 0) return facts;
  const bool link = S_ISLNK(info.st_mode);
  facts.Exists = true;
  facts.IsPlain = S_ISREG(info.st_mode);
  facts.IsFolder = S_ISDIR(info.st_mode);
  facts.MayGo = link || (facts.IsPlain && (info.st_mode & S_IWUSR) != 0);
  if (link) stat(path.c_str(), &info);
  const bool hidden = fs::path(path).filename().string().starts_with('.');
  facts.LeadsToFolder = S_ISDIR(info.st_mode);
  facts.IsReadable = S_ISREG(info.st_mode) && !hidden;
  facts.IsWritable = facts.IsPlain && facts.MayGo;
  facts.Size = static_cast<std::uintmax_t>(info.st_size);
  facts.Modified = info.st_mtim.tv_sec;
  return facts;
}

void ReadOnly(const std::string& path, bool readOnly) {
  chmod(path.c_str(), readOnly ? 0444 : 0644);
}

void Hide(const std::string&) {}

static void Touch(const std::string& path, const timespec& time) {
  const timespec times[] = {time, time};
  utimensat(AT_FDCWD, path.c_str(), times, 0);
}

void Touch(const std::string& path, std::time_t second, int steps) {
  Touch(path, timespec{second, steps});
}

void TouchInVain(const std::string& path) {
  struct stat info;
  if (stat(path.c_str(), &info) == 0) Touch(path, info.st_mtim);
}

bool MakeOddity(const std::string& path, unsigned which) {
  static const char* const targets[] = {"../../outside/target", "nowhere", "..", "/dev/null"};
  return (which % 3 == 0 ? mkfifo(path.c_str(), 0600)
                         : symlink(targets[which / 3 % 4], path.c_str())) == 0;
}

std::vector<std::pair<std::string, std::string>> OddNames() {
  return {{"line\n\ttab\x7F\u2028.txt", "line␊␉tab␡␤.txt"},
          {"bad\xFF\xC3.txt", "bad\uFFFD\uFFFD.txt"},
          {"*.txt", "*.txt"},
          {" [*]'\".txt", " [*]'\".txt"}};
}

void WriteBytesAsTheyAre() {}

}  // namespace machine
