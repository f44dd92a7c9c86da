#pragma once

#include <algorithm>
#include <cstddef>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/Files.h"
#include "platform/common/NamePattern.h"
#include "platform/linux/Descriptor.h"

namespace platform {

/// The folder of a path, its separator included.
inline std::string FolderOf(const std::string& path) { return path.substr(0, path.rfind('/') + 1); }

/// What follows the last separator.
inline std::string NameOf(const std::string& path) { return path.substr(path.rfind('/') + 1); }

/// Which folder it is, whatever path leads to it.
struct FolderIdentity {
  dev_t Device = 0;
  ino_t Node = 0;
  bool operator==(const FolderIdentity&) const = default;
};

inline std::optional<FolderIdentity> IdentityOf(const std::string& folder) {
  struct stat info;
  if (stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) return std::nullopt;
  return FolderIdentity{info.st_dev, info.st_ino};
}

/// The entries of a folder in the order of the directory, as they stand when the first is asked
/// for.
class DirectoryReader {
 public:
  struct Entry {
    std::string_view Name;  ///< Ended by a NUL; valid until the next entry is asked for.
    unsigned char Type;     ///< DT_REG, ..., or DT_UNKNOWN where the file system does not say.
    /// The name as the system's calls take it.
    const char* SystemName() const { return Name.data(); }
  };

  explicit DirectoryReader(const std::string& folder)
      : folder_(IsPath(folder) ? open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : -1) {}

  bool IsOpen() const { return static_cast<bool>(folder_); }
  /// The folder itself, for look-ups relative to it.
  int Folder() const { return folder_.Number(); }

  bool Next(Entry& entry) {
    if (position_ >= filled_ && !Fill()) return false;
    // The kernel writes whole, aligned records.
    const auto* record = reinterpret_cast<const dirent64*>(buffer_.get() + position_);
    position_ += record->d_reclen;
    entry = {static_cast<const char*>(record->d_name), record->d_type};
    return true;
  }

 private:
  static constexpr std::size_t LeastRoom = 65536;
  static constexpr std::size_t MostRoom = std::size_t{1} << 26;

  /// One call reads a folder at one moment. Between two calls a file that is replaced may move from
  /// where they have not been to where they have been: it would be missed, as if it were gone.
  bool Fill() {
    if (!buffer_) MakeRoom(LikelyRoom());
    Read();
    while (!begun_ && filled_ + sizeof(dirent64) > room_ && room_ < MostRoom) {
      MakeRoom(4 * room_);
      lseek(folder_.Number(), 0, SEEK_SET);
      Read();
    }
    begun_ = true;
    return filled_ > 0;
  }

  void Read() {
    const ssize_t got = getdents64(folder_.Number(), buffer_.get(), room_);
    position_ = 0;
    filled_ = got > 0 ? static_cast<std::size_t>(got) : 0;
  }

  void MakeRoom(std::size_t room) {
    room_ = std::min(room, MostRoom);
    buffer_.reset(new std::byte[room_]);  // not cleared: most of a large one is never touched
  }

  std::size_t LikelyRoom() const {
    struct stat info;
    constexpr std::size_t RecordToSize = 4;
    const bool known = fstat(folder_.Number(), &info) == 0 && info.st_size > 0;
    return std::max(LeastRoom, known ? RecordToSize * static_cast<std::size_t>(info.st_size) : 0);
  }

  Descriptor folder_;
  std::unique_ptr<std::byte[]> buffer_;  // aligned for every type
  std::size_t room_ = 0;
  std::size_t position_ = 0;
  std::size_t filled_ = 0;
  bool begun_ = false;
};

/// An ordinary file: a regular one, or a link that leads to one. `type` saves the look where the
/// directory has told already.
inline bool IsOrdinaryFile(int folder, const char* name, unsigned char type = DT_UNKNOWN) {
  if (type != DT_UNKNOWN && type != DT_LNK) return type == DT_REG;
  struct stat info;
  return fstatat(folder, name, &info, 0) == 0 && S_ISREG(info.st_mode);
}

inline bool CanBeRead(const std::string& path) {
  return IsOrdinaryFile(AT_FDCWD, path.c_str()) && access(path.c_str(), R_OK) == 0;
}

inline constexpr off_t LongestText = 0x7FFFFFFF;

/// Opens what was an ordinary file at the last look; nothing where anything else has taken its name
/// since, or for a longer text than can be read. `info` tells of the file. Without O_NONBLOCK the
/// open of a pipe would wait for a writer.
inline Descriptor OpenOrdinary(int folder, const char* name, struct stat& info) {
  Descriptor file(openat(folder, name, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  const bool readable = file && fstat(file.Number(), &info) == 0 && S_ISREG(info.st_mode) &&
                        info.st_size <= LongestText;
  if (!readable) file.Close();
  return file;
}
inline Descriptor OpenOrdinary(int folder, const char* name) {
  struct stat info;
  return OpenOrdinary(folder, name, info);
}

}  // namespace platform
