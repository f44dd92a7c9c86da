#include "platform/linux/ReadAhead.h"

#include <fcntl.h>
#include <system_error>

#include "platform/linux/Paths.h"

namespace platform {

FolderListing::FolderListing(const std::string& pattern) : path_(FolderOf(pattern)) {
  DirectoryReader reader(path_);
  if (!reader.IsOpen()) return;
  folder_ = Descriptor(openat(reader.Folder(), ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
  const NamePattern fitting(NameOf(pattern));
  DirectoryReader::Entry entry;
  while (reader.Next(entry)) {
    if (entry.Type != DT_REG || entry.Name.starts_with('.') || !fitting.Fits(entry.Name)) continue;
    begins_.push_back(names_.size());
    names_.append(entry.Name).append(1, '\0');
  }
}

std::optional<std::size_t> FolderListing::Find(std::string_view path) {
  if (!folder_ || !path.starts_with(path_)) return std::nullopt;
  path.remove_prefix(path_.size());
  constexpr std::size_t MostSkipped = 16;
  for (std::size_t file = next_; file < Count() && file <= next_ + MostSkipped; ++file) {
    if (Name(file) != path) continue;
    next_ = file + 1;
    return file;
  }
  return std::nullopt;
}

ReadAhead::ReadAhead(const FolderListing& listing)
    : listing_(listing), blocks_((listing.Count() + FilesOfBlock - 1) / FilesOfBlock) {
  if (blocks_ < 2) return;
  try {
    thread_ = std::thread(&ReadAhead::Work, this);
  } catch (const std::system_error&) {
    // Without a second thread whoever takes the blocks reads them all.
  }
}

ReadAhead::~ReadAhead() {
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

std::optional<std::string_view> ReadAhead::Take(std::size_t file) {
  const std::size_t number = file / FilesOfBlock;
  while (begun_ <= number) BeginNext();
  return PlaceOf(number).Contents[file % FilesOfBlock];
}

void ReadAhead::BeginNext() {
  std::unique_lock lock(mutex_);
  const std::size_t number = begun_++;
  changed_.notify_all();
  while (PlaceOf(number).Number != number) {
    if (MayRead()) {
      ReadNext(lock);
    } else {
      changed_.wait(lock);
    }
  }
}

void ReadAhead::Work() {
  std::unique_lock lock(mutex_);
  for (;;) {
    changed_.wait(lock, [this] { return ended_ || MayRead(); });
    if (ended_) return;
    ReadNext(lock);
  }
}

void ReadAhead::ReadNext(std::unique_lock<std::mutex>& lock) {
  const std::size_t number = next_++;
  Block& block = PlaceOf(number);
  lock.unlock();
  Read(number, block);
  lock.lock();
  block.Number = number;
  changed_.notify_all();
}

void ReadAhead::Read(std::size_t number, Block& block) const {
  if (!block.Room) block.Room.reset(new char[RoomOfBlock]);
  std::size_t used = 0;
  const std::size_t first = number * FilesOfBlock;
  for (std::size_t i = 0; i < FilesOfBlock && first + i < listing_.Count(); ++i) {
    block.Contents[i] =
        ReadWhole(listing_.Name(first + i), {block.Room.get() + used, RoomOfBlock - used});
    if (block.Contents[i]) used += block.Contents[i]->size();
  }
}

std::optional<std::string_view> ReadAhead::ReadWhole(const char* name, std::span<char> room) const {
  const Descriptor file = OpenOrdinary(listing_.Folder(), name);
  std::size_t size = 0;
  while (file && size < room.size()) {
    const ssize_t got = read(file.Number(), room.data() + size, room.size() - size);
    if (got == 0) return std::string_view(room.data(), size);
    if (got < 0) break;
    size += static_cast<std::size_t>(got);
  }
  return std::nullopt;
}

}  // namespace platform
