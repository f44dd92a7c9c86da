#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace platform {

/// A number that is another one for another last write time or size. The size is in it for file
/// systems whose times are whole seconds.
using FileStamp = std::uint64_t;

inline FileStamp StampOf(std::uint64_t time, std::uint64_t size) {
  constexpr std::uint64_t Scatter = 0x9E3779B97F4A7C15;
  return time + size * Scatter;
}

/// The stamps of a folder's files. Names are kept as their hashes: a folder may hold a hundred
/// thousand.
class FileStamps {
 public:
  /// Takes in the present stamp of a file. True when it is not the one known.
  bool Update(std::size_t name, FileStamp stamp) {
    const auto [known, added] = files_.try_emplace(name, File{stamp, round_});
    const bool changed = added || known->second.Stamp != stamp;
    known->second = {stamp, round_};
    return changed;
  }

  void Forget(std::size_t name) { files_.erase(name); }

  /// A file that is not updated between these two is gone, and forgotten. True when any is.
  void BeginRound() { ++round_; }
  bool EndRound() {
    return std::erase_if(files_, [&](const auto& file) { return file.second.Round != round_; }) > 0;
  }

 private:
  struct File {
    FileStamp Stamp;
    std::uint32_t Round;
  };

  std::unordered_map<std::size_t, File> files_;
  std::uint32_t round_ = 0;
};

}  // namespace platform
