#include "platform/windows/System.h"

#include "platform/ChangeNotification.h"

#include <array>
#include <cstddef>
#include <memory>
#include <utility>

#include "platform/common/HandleTable.h"
#include "platform/windows/Paths.h"

namespace platform {
namespace {

/// A folder's place on its volume, whatever its path.
struct FolderIdentity {
  DWORD Volume = 0;
  DWORD High = 0;
  DWORD Low = 0;
  bool operator==(const FolderIdentity&) const = default;
};

FolderIdentity IdentityOf(const SystemHandle& folder) {
  BY_HANDLE_FILE_INFORMATION info{};
  GetFileInformationByHandle(folder.Get(), &info);
  return {info.dwVolumeSerialNumber, info.nFileIndexHigh, info.nFileIndexLow};
}

/// An open folder whose changes the system records from the first question on. By the records and
/// not by the handle of the same name as the contract's: Wine 8 forgets what happens between a
/// signal of that and its re-arming.
class RecordedFolder {
 public:
  RecordedFolder(const std::wstring& path, DWORD filter)
      : folder_(CreateFileW(path.c_str(), FILE_LIST_DIRECTORY, ShareAll, nullptr, OPEN_EXISTING,
                            FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OVERLAPPED, nullptr)),
        filter_(filter) {
    asked_ = folder_ && Ask();
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
  FolderIdentity Identity() const { return IdentityOf(folder_); }
  /// Signalled with the answer.
  ::HANDLE Answered() const { return event_.Get(); }

  /// Asks anew; what was recorded meanwhile is an answer at once.
  void AskAgain() { asked_ = Ask(); }

 private:
  bool Ask() {
    answer_ = {};
    answer_.hEvent = event_.Get();
    return ReadDirectoryChangesW(folder_.Get(), records_.data(),
                                 static_cast<DWORD>(sizeof records_), FALSE, filter_, nullptr,
                                 &answer_, nullptr) != 0;
  }

  SystemHandle folder_;
  DWORD filter_;
  SystemHandle event_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
  OVERLAPPED answer_{};
  bool asked_ = false;
  /// Which files they are is not looked at; a network's folder has no more room.
  alignas(DWORD) std::array<std::byte, 65536> records_;
};

class Watch {
 public:
  Watch(std::wstring folder, DWORD filter) : folder_(std::move(folder)), filter_(filter) {
    Begin();
  }

  bool IsWatching() const { return recorded_ != nullptr; }
  /// What the system signals.
  ::HANDLE Signal() const { return recorded_->Answered(); }

  /// A folder that was lost is looked for again. Returns the signal.
  bool TakeIn() {
    if (!signalled_) signalled_ = IsWatching() ? IsAnswered() : Begin();
    return signalled_;
  }

  void Rearm() {
    signalled_ = false;
    if (!IsWatching() || !IsAnswered()) return;
    recorded_->AskAgain();
    if (!recorded_->IsAsked()) recorded_.reset();
  }

  /// Whether the path leads somewhere else than when it was watched: the records follow a folder
  /// that is renamed. Looks once a second, as a look costs more than a wait.
  bool LooksElsewhere() {
    const ULONGLONG now = GetTickCount64();
    if (!IsWatching() || now < nextLook_) return signalled_;
    nextLook_ = now + 1000;
    const SystemHandle there = OpenExisting(folder_, FILE_READ_ATTRIBUTES);
    if (!there || IdentityOf(there) != recorded_->Identity()) {
      recorded_.reset();
      signalled_ = true;
    }
    return signalled_;
  }

 private:
  bool Begin() {
    recorded_ = std::make_unique<RecordedFolder>(folder_, filter_);
    if (!recorded_->IsAsked()) recorded_.reset();
    return IsWatching();
  }

  bool IsAnswered() const { return ::WaitForSingleObject(Signal(), 0) == WAIT_OBJECT_0; }

  std::wstring folder_;
  DWORD filter_;
  std::unique_ptr<RecordedFolder> recorded_;
  ULONGLONG nextLook_ = 0;
  bool signalled_ = false;
};

HandleTable<Watch>& Watches() {
  static auto* const table = new HandleTable<Watch>;  // a watch is also closed at exit
  return *table;
}

}  // namespace

HANDLE FindFirstChangeNotificationA(const std::string& folder, int subtree, std::uint32_t filter) {
  constexpr std::uint32_t Known = FILE_NOTIFY_CHANGE_FILE_NAME | FILE_NOTIFY_CHANGE_LAST_WRITE;
  if (subtree != 0 || (filter & Known) == 0) return INVALID_HANDLE_VALUE;
  auto watch = std::make_unique<Watch>(SystemPath(folder), filter & Known);
  return watch->IsWatching() ? Watches().Add(std::move(watch)) : INVALID_HANDLE_VALUE;
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
  const bool listens = watch != nullptr && watch->IsWatching();
  ::HANDLE signal = listens ? watch->Signal() : nullptr;
  MsgWaitForMultipleObjectsEx(listens ? 1 : 0, &signal, milliseconds, QS_ALLINPUT,
                              MWMO_INPUTAVAILABLE);
  return watch != nullptr && (watch->TakeIn() || watch->LooksElsewhere()) ? WAIT_OBJECT_0
                                                                          : WAIT_TIMEOUT;
}

}  // namespace platform
