#include "bench/Reference.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <malloc.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "core/Joined.h"
#include "core/PublicDim.h"

namespace {

void Run(const std::string& command) {
  if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
}

}  // namespace

/// Of the processor, user and system: on a machine with nothing else to do these are the seconds
/// that a user waits; on a busy one they still are.
double WorkSeconds() {
  double seconds = 0;
  for (const int whose : {RUSAGE_SELF, RUSAGE_CHILDREN}) {
    rusage used;
    getrusage(whose, &used);
    for (const timeval& time : {used.ru_utime, used.ru_stime}) {
      seconds += static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
    }
  }
  return seconds;
}

void ListBare(const std::string& folder) {
  Run("find '" + folder + R"(' -maxdepth 1 -name '*.txt' -printf '%f\t%s\t%T+\n' >/dev/null)");
}

void ReadBare() {
  static std::array<char, 65536> buffer;
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    const std::string path = Joined({PublicDim.CookieDir, file.FileName});
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat info;
    if (fstat(descriptor, &info) != 0 || read(descriptor, buffer.data(), buffer.size()) < 0) {
      throw std::runtime_error(path);
    }
    close(descriptor);
  }
}

void SearchBare(const std::string& folder, const std::string& word) {
  Run("grep -ric '" + word + "' '" + folder + "' >/dev/null");
}

std::size_t BytesInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}
