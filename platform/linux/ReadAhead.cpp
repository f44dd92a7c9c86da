#include "platform/linux/ReadAhead.h"

#include <algorithm>
#include <fcntl.h>
#include <new>
#include <span>
#include <sys/stat.h>
#include <system_error>
#include <utility>

#include "platform/linux/Paths.h"

namespace platform {

namespace {

/// The whole of a file that fits into the room.
std::optional<std::string_view> ReadWhole(int folder, const char* name, std::span<char> room) {
  struct stat info;
  const Descriptor file = OpenOrdinary(folder, name, info);
  std::size_t size = 0;
  while (file && size < room.size()) {
    const ssize_t got = read(file.Number(), room.data() + size, room.size() - size);
    if (got < 0) break;
    size += static_cast<std::size_t>(got);
    // All that it had when it was opened, or the end of one that has grown.
    if (got == 0 || static_cast<off_t>(size) == info.st_size) {
      return std::string_view(room.data(), size);
    }
  }
  return std::nullopt;
}

}  // namespace

// --- FolderListing -----------------------------------------------------------------------------

FolderListing::FolderListing(const std::string& pattern) {
  DirectoryReader reader(FolderOf(pattern));
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

std::optional<std::size_t> FolderListing::Find(std::string_view name) {
  constexpr std::size_t MostSkipped = 16;
  for (std::size_t file = next_; file < Count() && file <= next_ + MostSkipped; ++file) {
    if (Name(file) != name) continue;
    next_ = file + 1;
    return file;
  }
  return std::nullopt;
}

// --- ReadAhead ---------------------------------------------------------------------------------

ReadAhead::ReadAhead(std::string pattern, Begin begin) : pattern_(std::move(pattern)) {
  if (begin == Begin::Early) {
    changes_.emplace(FolderOf(pattern_));
  } else {
    List();
    if (blocks_.size() < 2) return;
  }
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
  advanced_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void ReadAhead::List() {
  std::unique_ptr<FolderListing> listing;
  std::vector<Block> blocks;
  try {
    listing = std::make_unique<FolderListing>(pattern_);
    blocks.resize((listing->Count() + FilesOfBlock - 1) / FilesOfBlock);
  } catch (const std::bad_alloc&) {
    listing.reset();  // nothing is at hand then
  }
  const std::lock_guard lock(mutex_);
  blocks_ = std::move(blocks);
  listing_ = std::move(listing);
  listed_ = true;
  advanced_.notify_all();
}

bool ReadAhead::Settle() { return thread_.joinable() && changes_ && changes_->AddTo(changed_); }

std::optional<std::string_view> ReadAhead::Take(std::string_view path) {
  const std::size_t folder = pattern_.rfind('/') + 1;
  if (!path.starts_with(std::string_view(pattern_).substr(0, folder))) return std::nullopt;
  const std::string_view name = path.substr(folder);
  {
    std::unique_lock lock(mutex_);
    advanced_.wait(lock, [this] { return listed_; });
  }
  const std::optional<std::size_t> file = listing_ ? listing_->Find(name) : std::nullopt;
  if (!file || (!changed_.empty() && changed_.contains(std::string(name)))) return std::nullopt;
  const std::size_t number = *file / FilesOfBlock;
  while (begun_ <= number) BeginNext();
  return blocks_[number].Contents[*file % FilesOfBlock];
}

void ReadAhead::BeginNext() {
  std::unique_lock lock(mutex_);
  const std::size_t number = begun_++;
  if (number > 0) {
    ahead_ -= blocks_[number - 1].Size;
    blocks_[number - 1] = {};
  }
  advanced_.notify_all();
  while (!blocks_[number].Done) {
    if (MayRead()) {
      ReadNext(lock, room_);
    } else {
      advanced_.wait(lock);
    }
  }
}

void ReadAhead::Work() {
  if (!listed_) List();
  Room room;
  std::unique_lock lock(mutex_);
  while (!ended_ && next_ < blocks_.size()) {
    if (MayRead()) {
      ReadNext(lock, room);
    } else {
      advanced_.wait(lock);
    }
  }
}

void ReadAhead::ReadNext(std::unique_lock<std::mutex>& lock, Room& room) {
  const std::size_t number = next_++;
  Block& block = blocks_[number];
  lock.unlock();
  if (!room) room.reset(new (std::nothrow) char[RoomOfBlock]);
  if (room) Read(number, block, room.get());
  lock.lock();
  block.Done = true;
  ahead_ += block.Size;
  advanced_.notify_all();
}

void ReadAhead::Read(std::size_t number, Block& block, char* room) const {
  const std::size_t first = number * FilesOfBlock;
  std::size_t used = 0;
  for (std::size_t i = 0; i < FilesOfBlock && first + i < listing_->Count(); ++i) {
    const auto content =
        ReadWhole(listing_->Folder(), listing_->Name(first + i), {room + used, RoomOfBlock - used});
    block.Contents[i] = content;
    if (content) used += content->size();
  }
  block.Bytes.reset(new (std::nothrow) char[used]);
  if (!block.Bytes) return block.Contents.fill(std::nullopt);
  block.Size = static_cast<std::uint32_t>(used);
  std::copy_n(room, used, block.Bytes.get());
  for (auto& content : block.Contents) {
    if (content) content = {block.Bytes.get() + (content->data() - room), content->size()};
  }
}

}  // namespace platform
