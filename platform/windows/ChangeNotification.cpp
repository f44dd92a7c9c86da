#include "platform/windows/System.h"

#include "platform/ChangeNotification.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/common/FolderWatch.h"
#include "platform/common/HandleTable.h"
#include "platform/windows/Paths.h"

namespace platform {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::uint32_t Both = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;

std::uint64_t Joined(DWORD high, DWORD low) { return (std::uint64_t{high} << 32) | low; }
std::uint64_t Joined(const ::FILETIME& time) {
  return Joined(time.dwHighDateTime, time.dwLowDateTime);
}

std::optional<FolderState> StateOf(const std::wstring& folder) {
  const auto info = InfoOf(folder);
  if (!info || !IsFolder(*info)) return std::nullopt;
  return FolderState{info->dwVolumeSerialNumber, Joined(info->nFileIndexHigh, info->nFileIndexLow),
                     Joined(info->ftLastWriteTime)};
}

/// An open folder whose changes the system records from the first question on. By the records and
/// not by the handle of the same name as the contract's: Wine 8 forgets what happens between a
/// signal of that and its re-arming.
class RecordedFolder {
 public:
  explicit RecordedFolder(const std::wstring& path)
      : folder_(CreateFileW(path.c_str(), FILE_LIST_DIRECTORY, ShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr)) {
    if (folder_) Ask();
  }
  RecordedFolder(const RecordedFolder&) = delete;
  RecordedFolder& operator=(const RecordedFolder&) = delete;
  ~RecordedFolder() {
    DWORD size = 0;
    if (!asked_) return;
    CancelIo(folder_.Get());
    GetOverlappedResult(folder_.Get(), &answer_, &size, TRUE);
  }

  /// Whether the system could be asked for what changes next. It cannot once the folder is gone.
  bool IsAsked() const { return asked_; }
  /// Signalled with the answer.
  ::HANDLE Answered() const { return event_.Get(); }
  bool IsAnswered() const { return ::WaitForSingleObject(Answered(), 0) == WAIT_OBJECT_0; }

  /// What was recorded since the answer is the next one at once.
  void Ask() {
    answer_ = {};
    answer_.hEvent = event_.Get();
    asked_ =
        ReadDirectoryChangesW(folder_.Get(), records_.data(), static_cast<DWORD>(sizeof records_),
                              FALSE, Both, nullptr, &answer_, nullptr) != 0;
  }

 private:
  SystemHandle folder_;
  SystemHandle event_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED answer_{};
  bool asked_ = false;
  /// Which files they are is not looked at; a network's folder has no more room.
  alignas(DWORD) std::array<std::byte, 65536> records_;
};

class Reading final : public FolderReading {
 public:
  Reading(const std::string& folder, const std::wstring& path)
      : state_(StateOf(path)), reader_(folder) {}

  std::optional<FolderState> Folder() const override { return state_; }

  bool Next(File& file) override {
    while (const WIN32_FIND_DATAW* const entry = reader_.Next()) {
      if ((entry->dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) continue;
      const std::wstring_view name = static_cast<const wchar_t*>(entry->cFileName);
      file = {std::hash<std::wstring_view>{}(name),
              StampOf(Joined(entry->ftLastWriteTime),
                      Joined(entry->nFileSizeHigh, entry->nFileSizeLow))};
      return true;
    }
    return false;
  }

 private:
  std::optional<FolderState> state_;
  DirectoryReader reader_;
};

class Watch final : public FolderWatch {
 public:
  explicit Watch(const std::string& folder) : folder_(folder), path_(SystemPath(folder)) {}

  /// Signalled when there are events; there are none while there is no watch.
  ::HANDLE Events() const { return recorded_->Answered(); }

 private:
  bool Ask() override {
    const std::optional<FolderState> state = StateOf(path_);
    if (!state) return false;
    recorded_ = std::make_unique<RecordedFolder>(path_);
    asked_ = *state;
    if (!recorded_->IsAsked()) recorded_.reset();
    return recorded_ != nullptr;
  }

  void GiveUp() override { recorded_.reset(); }

  void TakeEvents() override {
    if (!recorded_->IsAnswered()) return;
    Signal();
    recorded_->Ask();
    if (!recorded_->IsAsked()) Lose();
  }

  /// The records follow a folder that is renamed.
  bool IsInPlace() const override {
    const std::optional<FolderState> there = StateOf(path_);
    return there && there->Volume == asked_.Volume && there->Number == asked_.Number;
  }

  /// Not every server tells of what others do in its folders.
  bool TellsAll() const override {
    const std::wstring there = FinalPath(OpenExisting(path_, FILE_READ_ATTRIBUTES));
    std::wstring volume(there.size() + 2, L'\0');
    return GetVolumePathNameW(there.c_str(), volume.data(), static_cast<DWORD>(volume.size())) !=
               0 &&
           GetDriveTypeW(volume.c_str()) != DRIVE_REMOTE;
  }

  bool NeedsStamps() const override { return false; }

  std::unique_ptr<FolderReading> Read() const override {
    return std::make_unique<Reading>(folder_, path_);
  }

  std::string folder_;
  std::wstring path_;
  std::unique_ptr<RecordedFolder> recorded_;
  FolderState asked_;  ///< Of the folder that is recorded.
};

HandleTable<Watch>& Watches() {
  static auto* const table = new HandleTable<Watch>;  // a watch is also closed at exit
  return *table;
}

/// Waits for window events, and for the watch's. Returns whether window events are pending.
bool WaitForInput(const Watch* watch, Clock::duration time) {
  const bool listens = watch != nullptr && watch->IsWatching();
  const ::HANDLE events = listens ? watch->Events() : nullptr;
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(time).count();
  const auto wait = static_cast<DWORD>(std::clamp<std::int64_t>(left, 0, INT32_MAX));
  const DWORD count = listens ? 1 : 0;
  return MsgWaitForMultipleObjectsEx(count, &events, wait, QS_ALLINPUT, MWMO_INPUTAVAILABLE) ==
         WAIT_OBJECT_0 + count;
}

}  // namespace

HANDLE FindFirstChangeNotificationA(const std::string& folder, int subtree, std::uint32_t filter) {
  if (SystemPath(folder).empty() || subtree != 0 || filter != Both) return INVALID_HANDLE_VALUE;
  auto watch = std::make_unique<Watch>(folder);
  watch->Begin();
  return Watches().Add(std::move(watch));
}

int FindNextChangeNotification(HANDLE handle) {
  Watch* const watch = Watches().Find(handle);
  if (watch == nullptr) return 0;
  watch->Rearm();
  return 1;
}

int FindCloseChangeNotification(HANDLE handle) { return Watches().Remove(handle) ? 1 : 0; }

std::uint32_t WaitForSingleObject(HANDLE handle, std::uint32_t milliseconds) {
  Watch* const watch = Watches().Find(handle);
  if (watch == nullptr && handle != INVALID_HANDLE_VALUE) return WAIT_FAILED;
  if (watch != nullptr && watch->TakeIn()) return WAIT_OBJECT_0;
  const auto end = Clock::now() + std::chrono::milliseconds(milliseconds);
  for (;;) {
    const auto until = watch == nullptr ? end : std::min(end, watch->NextLook());
    const bool input = WaitForInput(watch, until - Clock::now());
    if (watch != nullptr && watch->TakeIn()) return WAIT_OBJECT_0;
    if (input || Clock::now() >= end) break;
  }
  return watch != nullptr && watch->LooksElsewhere() ? WAIT_OBJECT_0 : WAIT_TIMEOUT;
}

}  // namespace platform
