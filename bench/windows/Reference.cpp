#include "platform/windows/System.h"

#include "bench/Reference.h"

#include <array>
#include <chrono>
#include <psapi.h>
#include <stdexcept>

#include "core/Joined.h"
#include "core/PublicDim.h"
#include "platform/windows/Paths.h"
#include "platform/windows/SystemHandle.h"

/// By the clock: much of the work is done by the system's own processes.
double WorkSeconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

void ListBare(const std::string& folder) {
  WIN32_FIND_DATAW entry;
  const std::wstring pattern = platform::SystemPath(folder) + L"\\*.txt";
  const ::HANDLE search = FindFirstFileW(pattern.c_str(), &entry);
  if (search == platform::NoSystemHandle) throw std::runtime_error(folder);
  while (FindNextFileW(search, &entry) != 0) {
  }
  FindClose(search);
}

void ReadBare() {
  static std::array<char, 65536> buffer;
  for (const CookieFileRow& file : PublicDim.KnownRows) {
    const std::string path = Joined({PublicDim.CookieDir, file.FileName});
    const platform::SystemHandle opened(CreateFileW(platform::SystemPath(path).c_str(),
                                                    GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                    OPEN_EXISTING, 0, nullptr));
    DWORD count = 0;
    if (ReadFile(opened.Get(), buffer.data(), buffer.size(), &count, nullptr) == 0) {
      throw std::runtime_error(path);
    }
  }
}

void SearchBare(const std::string&, const std::string&) {}

std::size_t BytesInUse() {
  PROCESS_MEMORY_COUNTERS_EX memory{};
  memory.cb = sizeof memory;
  GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&memory),
                       sizeof memory);
  return memory.PrivateUsage;
}
