#include "platform/Files.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/common/LookUp.h"
#include "platform/linux/Paths.h"
#include "platform/linux/ReadAhead.h"

namespace platform {
namespace {

bool IsFolder(int folder, const char* name, unsigned char type = DT_UNKNOWN) {
  if (type != DT_UNKNOWN && type != DT_LNK) return type == DT_DIR;
  struct stat info;
  return fstatat(folder, name, &info, 0) == 0 && S_ISDIR(info.st_mode);
}

bool IsWanted(int folder, const char* name, int attributes, unsigned char type = DT_UNKNOWN) {
  if (name[0] == '.' && (attributes & vbHidden) == 0) return false;
  return IsOrdinaryFile(folder, name, type) ||
         ((attributes & vbDirectory) != 0 && IsFolder(folder, name, type));
}

// The owner's write bit alone decides, so that a read-only file is safe from root too.
bool Delete(int folder, const char* name) {
  struct stat info;
  if (fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0) return false;
  const bool deletable =
      S_ISLNK(info.st_mode) || (S_ISREG(info.st_mode) && (info.st_mode & S_IWUSR) != 0);
  return deletable && unlinkat(folder, name, 0) == 0;
}

bool DeleteAll(const std::string& folder, const NamePattern& fitting) {
  DirectoryReader reader(folder);
  if (!reader.IsOpen()) return false;
  bool any = false;
  bool all = true;
  DirectoryReader::Entry entry;
  while (reader.Next(entry)) {
    if (!fitting.Fits(entry.Name) ||
        !IsWanted(reader.Folder(), entry.SystemName(), vbNormal, entry.Type)) {
      continue;
    }
    any = true;
    if (!Delete(reader.Folder(), entry.SystemName())) all = false;
  }
  return any && all;
}

/// Where a path leads in the end: a link is followed also when nothing stands there yet.
std::optional<std::string> FollowLinks(std::string path) {
  constexpr int MostLinks = 40;
  for (int i = 0; i < MostLinks; ++i) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length < 0) return path;
    const std::string_view text(target.data(), static_cast<std::size_t>(length));
    path.resize(text.starts_with('/') ? 0 : path.rfind('/') + 1);
    path += text;
  }
  return std::nullopt;
}

bool WriteAll(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t written = write(file, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    content.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

constexpr std::string_view SuccessorPrefix = ".quillmere-new-";

/// Removes what processes that were killed have left. One that runs may still need its own.
void RemoveOrphans(const std::string& folder) {
  DirectoryReader reader(folder);
  DirectoryReader::Entry entry;
  while (reader.IsOpen() && reader.Next(entry)) {
    if (!entry.Name.starts_with(SuccessorPrefix)) continue;
    const std::string_view number = entry.Name.substr(SuccessorPrefix.size());
    pid_t process = 0;
    const auto [end, error] = std::from_chars(number.begin(), number.end(), process);
    const bool named = error == std::errc() && end == number.end() && process > 0;
    if (named && kill(process, 0) != 0 && errno == ESRCH) {
      unlinkat(reader.Folder(), entry.SystemName(), 0);
    }
  }
}

/// A file that is there under another name until it takes the place of the one meant; without that
/// it goes again.
class Successor {
 public:
  Successor(int folder, const std::string& name)
      : folder_(folder),
        name_(std::string(SuccessorPrefix) + std::to_string(getpid())),
        target_(name) {
    // One left by a process of the same number that was killed would bar the way for ever.
    unlinkat(folder_, name_.c_str(), 0);
    file_ = Descriptor(
        openat(folder_, name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  }
  Successor(const Successor&) = delete;
  Successor& operator=(const Successor&) = delete;
  ~Successor() {
    if (file_ && !placed_) unlinkat(folder_, name_.c_str(), 0);
  }

  /// Owner and mode of the file before it. A change of owner takes the right to change the mode.
  void Inherit(const struct stat& old) {
    [[maybe_unused]] const int kept = fchown(file_.Number(), old.st_uid, old.st_gid);
    fchmod(file_.Number(), old.st_mode & 07777);
  }

  bool Place(std::string_view content) {
    placed_ = file_ && WriteAll(file_.Number(), content) && fsync(file_.Number()) == 0 &&
              renameat(folder_, name_.c_str(), folder_, target_.c_str()) == 0;
    return placed_;
  }

  explicit operator bool() const { return static_cast<bool>(file_); }

 private:
  int folder_;
  std::string name_;
  std::string target_;
  Descriptor file_;
  bool placed_ = false;
};

/// Puts a new file in the place of a path's last part. 0 or what stood against it.
int PutInPlace(const std::string& path, const struct stat* old, std::string_view content) {
  const Descriptor folder(open(FolderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return errno;
  RemoveOrphans(FolderOf(path));
  Successor successor(folder.Number(), NameOf(path));
  if (!successor) return errno;
  if (old != nullptr) successor.Inherit(*old);
  if (!successor.Place(content)) return errno;
  fsync(folder.Number());
  return 0;
}

/// For a file whose folder takes no other in its place. Room comes first, so a disk that is full
/// keeps the old content.
bool WriteOver(const std::string& path, std::string_view content) {
  const Descriptor file(open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const auto size = static_cast<off_t>(content.size());
  if (!file || (size > 0 && fallocate(file.Number(), FALLOC_FL_KEEP_SIZE, 0, size) != 0 &&
                errno != EOPNOTSUPP)) {
    return false;
  }
  return WriteAll(file.Number(), content) && ftruncate(file.Number(), size) == 0 &&
         fsync(file.Number()) == 0;
}

/// What the `FolderAtHand` that lives, or is about to come, reads.
struct FolderReading {
  std::unique_ptr<ReadAhead> Ahead;
  bool AtHand = false;
};

FolderReading& Reading() {
  static FolderReading reading;
  return reading;
}

}  // namespace

bool IsPath(std::string_view text) {
  return text.starts_with('/') && text.find('\0') == std::string_view::npos;
}

std::vector<std::string> NamesThatFit(const std::string& pattern, int attributes) {
  if (!IsPath(pattern)) return {};
  const std::string name = NameOf(pattern);
  if (name.empty()) {
    const bool found = (attributes & vbDirectory) != 0 && IsFolder(AT_FDCWD, pattern.c_str());
    return found ? std::vector<std::string>{"."} : std::vector<std::string>{};
  }
  const NamePattern fitting(name);
  if (!fitting.IsWildcard()) {
    const Descriptor folder(open(FolderOf(pattern).c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const bool found = folder && IsWanted(folder.Number(), name.c_str(), attributes);
    return found ? std::vector<std::string>{name} : std::vector<std::string>{};
  }
  std::vector<std::string> names;
  DirectoryReader reader(FolderOf(pattern));
  DirectoryReader::Entry entry;
  while (reader.IsOpen() && reader.Next(entry)) {
    if (fitting.Fits(entry.Name) &&
        IsWanted(reader.Folder(), entry.SystemName(), attributes, entry.Type)) {
      names.emplace_back(entry.Name);
    }
  }
  return names;
}

bool Kill(const std::string& path) {
  if (!IsPath(path)) return false;
  const NamePattern fitting(NameOf(path));
  return fitting.IsWildcard() ? DeleteAll(FolderOf(path), fitting) : Delete(AT_FDCWD, path.c_str());
}

int DeleteFileA(const std::string& path) {
  return IsPath(path) && Delete(AT_FDCWD, path.c_str()) ? 1 : 0;
}

bool MkDir(const std::string& path) { return IsPath(path) && mkdir(path.c_str(), 0777) == 0; }

FolderAtHand::FolderAtHand(const std::string& pattern) {
  auto& [ahead, atHand] = Reading();
  atHand = true;
  if (ahead && ahead->Pattern() == pattern && ahead->Settle()) return;
  ahead = std::make_unique<ReadAhead>(pattern, ReadAhead::Begin::Now);
}

FolderAtHand::~FolderAtHand() { Reading() = {}; }

void FolderAtHand::ComesSoon(const std::string& pattern) {
  auto& ahead = Reading().Ahead;
  if (ahead && ahead->Pattern() == pattern) return;
  ahead = std::make_unique<ReadAhead>(pattern, ReadAhead::Begin::Early);
}

void FolderAtHand::ComesNot() { Reading() = {}; }

InputFile::InputFile(const std::string& path) {
  if (!IsPath(path) || path[path.rfind('/') + 1] == '.') return;
  if (Reading().AtHand) {
    if (const auto content = Reading().Ahead->Take(path)) {
      content_ = *content;
      open_ = true;
      return;
    }
  }
  // The look comes before the open: a pipe or a device is best not even opened.
  if (!IsOrdinaryFile(AT_FDCWD, path.c_str())) return;
  const Descriptor file = OpenOrdinary(AT_FDCWD, path.c_str());
  if (!file) return;
  std::array<char, 65536> buffer;
  ssize_t got = 0;
  // File systems of the network, too, can give less than was asked for: only nothing is the end.
  while ((got = read(file.Number(), buffer.data(), buffer.size())) > 0 ||
         (got < 0 && errno == EINTR)) {
    if (got > 0) content_.append(buffer.data(), static_cast<std::size_t>(got));
    if (content_.size() > std::size_t{LongestText}) break;
  }
  open_ = got == 0;
  if (!open_) content_ = {};
}

bool WriteFileWhole(const std::string& path, std::string_view content) {
  if (!IsPath(path)) return false;
  const std::optional<std::string> target = FollowLinks(path);
  if (!target || NameOf(*target).empty()) return false;
  struct stat old;
  const bool exists = lstat(target->c_str(), &old) == 0;
  if (exists && (!S_ISREG(old.st_mode) || (old.st_mode & S_IWUSR) == 0 ||
                 faccessat(AT_FDCWD, target->c_str(), W_OK, AT_EACCESS) != 0)) {
    return false;  // The rename would replace what may not be written.
  }
  const int failure = PutInPlace(*target, exists ? &old : nullptr, content);
  const bool refused =
      failure == EACCES || failure == EPERM || failure == EBUSY || failure == EROFS;
  return failure == 0 || (exists && refused && WriteOver(*target, content));
}

bool AppendFile(const std::string& path, std::string_view text) {
  if (!IsPath(path)) return false;
  // Without O_NONBLOCK the open of a pipe would wait for a reader.
  const Descriptor file(
      open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0666));
  struct stat info;
  if (!file || fstat(file.Number(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
  const ssize_t written = write(file.Number(), text.data(), text.size());
  if (written == static_cast<ssize_t>(text.size())) return true;
  // A disk that was nearly full took a part, to which the next text would be joined.
  const off_t end = lseek(file.Number(), 0, SEEK_CUR);
  if (written > 0 && end >= written) {
    [[maybe_unused]] const int cut = ftruncate(file.Number(), end - written);
  }
  return false;
}

}  // namespace platform
