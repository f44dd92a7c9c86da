#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_set>
#include <vector>

#include "platform/linux/Descriptor.h"
#include "platform/linux/FolderChanges.h"

namespace platform {

/// The regular files of a folder that fit a pattern, hidden ones left out, in the order of its
/// directory.
class FolderListing {
 public:
  explicit FolderListing(const std::string& pattern);

  /// The folder, for look-ups relative to it.
  int Folder() const { return folder_.Number(); }
  std::size_t Count() const { return begins_.size(); }
  const char* Name(std::size_t file) const { return names_.c_str() + begins_[file]; }

  /// Which file a name means. Files are asked for in about the order of the directory; nothing for
  /// one that is out of order tells nothing.
  std::optional<std::size_t> Find(std::string_view name);

 private:
  Descriptor folder_;
  std::string names_;  ///< Each ended by a NUL.
  std::vector<std::size_t> begins_;
  std::size_t next_ = 0;
};

/// Reads the small files of a folder in blocks, ahead of whoever takes them: most of the time goes
/// to opening files, which another thread can do at the same time. Whoever finds a block not read
/// yet reads on too instead of waiting.
class ReadAhead {
 public:
  enum class Begin { Now, Early };

  /// Begun early, it may be read out once `Settle` has returned true.
  ReadAhead(std::string pattern, Begin begin);
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;
  ~ReadAhead();

  const std::string& Pattern() const { return pattern_; }
  /// Gives up what was read of files that have changed since. False when that cannot be told: all
  /// has to be read anew.
  bool Settle();
  /// The content of a file; nothing for one that is not at hand. Valid until the next call. Files
  /// are taken in the order of the directory.
  std::optional<std::string_view> Take(std::string_view path);

 private:
  static constexpr std::size_t FilesOfBlock = 32;
  static constexpr std::size_t RoomOfBlock = 262'144;
  static constexpr std::size_t MostAhead = std::size_t{512} << 20;

  struct Block {
    bool Done = false;
    std::uint32_t Size = 0;
    std::unique_ptr<char[]> Bytes;
    std::array<std::optional<std::string_view>, FilesOfBlock> Contents;
  };
  using Room = std::unique_ptr<char[]>;  ///< Where a reader puts a block together.

  void List();
  bool MayRead() const { return next_ < blocks_.size() && ahead_ < MostAhead; }
  void Work();
  void BeginNext();
  /// Reads the next block, with the lock released meanwhile.
  void ReadNext(std::unique_lock<std::mutex>& lock, Room& room);
  void Read(std::size_t number, Block& block, char* room) const;

  const std::string pattern_;
  std::optional<FolderChanges> changes_;
  std::unordered_set<std::string> changed_;  ///< Names.
  Room room_;                                ///< Of whoever takes the blocks.

  std::mutex mutex_;
  std::condition_variable advanced_;
  std::unique_ptr<FolderListing> listing_;  ///< Only read once it is there, but for whoever takes.
  std::vector<Block> blocks_;
  std::size_t next_ = 0;   ///< The first block that nobody reads or has read.
  std::size_t begun_ = 0;  ///< The block before this one is being taken, those before it are done.
  std::size_t ahead_ = 0;  ///< Bytes read and not done with.
  bool listed_ = false;
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace platform
