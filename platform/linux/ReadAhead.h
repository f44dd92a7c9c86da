#pragma once

#include <array>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "platform/linux/Descriptor.h"

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

  /// Which file a path means. Files are asked for in about the order of the directory; nothing for
  /// one that is out of order tells nothing.
  std::optional<std::size_t> Find(std::string_view path);

 private:
  std::string path_;
  Descriptor folder_;
  std::string names_;  ///< Each ended by a NUL.
  std::vector<std::size_t> begins_;
  std::size_t next_ = 0;
};

/// Reads the small files of a listing in blocks, some blocks ahead of whoever takes them: most of
/// the time goes to opening files, which another thread can do at the same time. Whoever finds a
/// block not read yet reads on too instead of waiting.
class ReadAhead {
 public:
  explicit ReadAhead(const FolderListing& listing);
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;
  ~ReadAhead();

  /// The content of a file; nothing for one that has no room or could not be read whole. Valid
  /// until the next call. Files are taken in the order of the listing.
  std::optional<std::string_view> Take(std::size_t file);

 private:
  static constexpr std::size_t FilesOfBlock = 32;
  static constexpr std::size_t RoomOfBlock = 262'144;
  static constexpr std::size_t None = static_cast<std::size_t>(-1);

  struct Block {
    std::size_t Number = None;  ///< Which one has been read into this place.
    std::unique_ptr<char[]> Room;
    std::array<std::optional<std::string_view>, FilesOfBlock> Contents;
  };

  bool MayRead() const { return next_ < blocks_ && next_ + 1 < begun_ + places_.size(); }
  Block& PlaceOf(std::size_t number) { return places_[number % places_.size()]; }
  void Work();
  void BeginNext();
  /// Reads the next block, with the lock released meanwhile.
  void ReadNext(std::unique_lock<std::mutex>& lock);
  void Read(std::size_t number, Block& block) const;
  std::optional<std::string_view> ReadWhole(const char* name, std::span<char> room) const;

  const FolderListing& listing_;
  const std::size_t blocks_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::array<Block, 8> places_;
  std::size_t next_ = 0;   ///< The first block that nobody reads or has read.
  std::size_t begun_ = 0;  ///< The block before this one is being taken, those before it are done.
  bool ended_ = false;
  std::thread thread_;
};

}  // namespace platform
