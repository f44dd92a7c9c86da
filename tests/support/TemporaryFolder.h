#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "tests/support/Machine.h"

using Names = std::multiset<std::string>;

/// A folder of its own for one test, gone with it.
class TemporaryFolder {
 public:
  explicit TemporaryFolder(
      const std::filesystem::path& parent = std::filesystem::temp_directory_path())
      : folder_(machine::MakeOwnFolder(parent)) {}
  TemporaryFolder(TemporaryFolder&&) = delete;
  ~TemporaryFolder() { machine::RemoveFolder(folder_); }

  /// The folder ends in a separator. Those in `name` are "/".
  std::string Path(std::string_view name = {}) const {
    std::string path = folder_ + std::string(name);
    std::replace(path.begin(), path.end(), '/', machine::Separator);
    return path;
  }

  /// The same as the standard library takes it.
  std::filesystem::path Native(std::string_view name) const {
    return machine::NativePath(Path(name));
  }

  /// Writes a file, in folders that are made where missing.
  std::string Write(std::string_view name, std::string_view content = "text") const {
    const std::filesystem::path path = Native(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return Path(name);
  }

  std::string Read(std::string_view name) const {
    std::ifstream file(Native(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  bool Has(std::string_view name) const {
    return std::filesystem::exists(std::filesystem::symlink_status(Native(name)));
  }

  Names Entries() const {
    Names names;
    for (const auto& entry : std::filesystem::directory_iterator(Native(""))) {
      names.insert(machine::PathText(entry.path().filename()));
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
  Sandbox() { machine::UseFolder(Path()); }
};

/// Makes a folder the working folder for a while.
class WorkingFolder {
 public:
  explicit WorkingFolder(const std::string& folder) {
    std::filesystem::current_path(machine::NativePath(folder));
  }
  WorkingFolder(WorkingFolder&&) = delete;
  ~WorkingFolder() { std::filesystem::current_path(before_); }

 private:
  std::filesystem::path before_ = std::filesystem::current_path();
};
