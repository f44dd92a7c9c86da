#pragma once

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <sys/stat.h>

#include <gtest/gtest.h>

/// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "unit-XXXXXX").string();
    folder_ = std::string(mkdtemp(name.data())) + '/';
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  /// The folder, ending in a separator, and what lies in it.
  std::string Path(std::string_view name = {}) const { return folder_ + std::string(name); }

  std::string Write(std::string_view name, std::string_view content = "text") const {
    std::ofstream(Path(name), std::ios::binary) << content;
    return Path(name);
  }

  std::string Read(std::string_view name) const {
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool Has(std::string_view name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Path(name)));
  }

  /// Sets a file's last access and write time, seconds since 1970.
  void SetTime(std::string_view name, time_t seconds) const {
    const std::array<timespec, 2> times{{{seconds, 0}, {seconds, 0}}};
    ASSERT_EQ(utimensat(AT_FDCWD, Path(name).c_str(), times.data(), 0), 0);
  }

 private:
  std::string folder_;
};

/// Makes a folder the working folder for a while.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& folder) { std::filesystem::current_path(folder); }
  WorkingFolder(const WorkingFolder&) = delete;
  WorkingFolder& operator=(const WorkingFolder&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};
