#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

using Names = std::multiset<std::string>;

/// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
    std::string name = (parent / "unit-XXXXXX").string();
    folder_ = std::string(mkdtemp(name.data())) + '/';
  }
  TemporaryFolder(TemporaryFolder&&) = delete;
  ~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  /// The folder ends in a separator.
  std::string Path(std::string_view name = {}) const { return folder_ + std::string(name); }

  /// Writes a file, in folders that are made where missing.
  std::string Write(std::string_view name, std::string_view content = "text") const {
    std::filesystem::create_directories(std::filesystem::path(Path(name)).parent_path());
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

  Names Entries() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
      names.insert(entry.path().filename());
    }
    return names;
  }

 private:
  std::string folder_;
};

/// A folder that stands for the user's, in one region and zone: what stands in the folders of
/// whoever runs the tests must neither change a result nor be changed.
class Sandbox : public TemporaryFolder {
 public:
  Sandbox() {
    setenv("HOME", Path("home").c_str(), 1);
    setenv("XDG_CONFIG_HOME", Path("config").c_str(), 1);
    setenv("XDG_DATA_HOME", Path("data").c_str(), 1);
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("TZ", "UTC", 1);
  }
};

/// Makes a folder the working folder for a while.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& folder) { std::filesystem::current_path(folder); }
  WorkingFolder(WorkingFolder&&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};
