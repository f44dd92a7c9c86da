#pragma once

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace platform {

/// A number that is another one for another last write time or size. The size is in it for file
/// systems whose times are whole seconds.
using FileStamp = std::uint64_t;

inline FileStamp StampOf(std::uint64_t time, std::uint64_t size) {
  constexpr std::uint64_t Scatter = 0x9E3779B97F4A7C15;
  return time + size * Scatter;
}

/// The stamps of a folder's files. Names are kept as their hashes: a folder may hold a million.
class FileStamps {
 public:
  /// Takes in the stamp of a file that is not known yet.
  void Learn(std::size_t name, FileStamp stamp) {
    if (files_.try_emplace(name, File{stamp, round_}).second) learnt_.insert(name);
  }
  /// All events have been taken in that were recorded before the last learning: what is told of
  /// from now on happened after it.
  void CaughtUp() { learnt_.clear(); }

  /// Takes in the present stamp of a file. True when it is not the one known, or when that may have
  /// been learnt after the event that told of the file.
  bool Update(std::size_t name, FileStamp stamp) {
    const auto [known, added] = files_.try_emplace(name, File{stamp, round_});
    const bool changed = added || known->second.Stamp != stamp || learnt_.contains(name);
    known->second = {stamp, round_};
    return changed;
  }

  void Forget(std::size_t name) { files_.erase(name); }
  void ForgetAll() {
    files_.clear();
    learnt_.clear();
  }

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
  std::unordered_set<std::size_t> learnt_;  ///< Since the events were last taken in.
  std::uint32_t round_ = 0;
};

}  // namespace platform
