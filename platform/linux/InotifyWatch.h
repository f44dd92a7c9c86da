#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <sys/inotify.h>
#include <unordered_set>

#include "platform/common/FolderWatch.h"
#include "platform/linux/Descriptor.h"
#include "platform/linux/Paths.h"

namespace platform {

/// A folder watched by inotify, as far as that goes.
class InotifyWatch final : public FolderWatch {
 public:
  explicit InotifyWatch(std::string folder);

  /// Readable when there are events; -1 while there is no watch.
  int EventSource() const { return IsWatching() ? events_.Number() : -1; }

 private:
  bool Ask() override;
  void GiveUp() override;
  void TakeEvents() override;
  bool IsInPlace() const override { return IdentityOf(folder_) == identity_; }
  bool TellsAll() const override;
  /// The kernel reports a changed mode and a set write time as one and the same event; only the
  /// time itself tells them apart.
  bool NeedsStamps() const override { return true; }
  std::unique_ptr<FolderReading> Read() const override;

  void Note(const inotify_event& event);
  bool IsReadable() const;
  void LookAtRights();
  void LookAtWritten();

  std::string folder_;
  Descriptor events_;  ///< Kept when the watch is lost: others may be waiting for an instance.
  int watch_ = -1;
  FolderIdentity identity_;
  std::unordered_set<std::string> written_;
  bool readable_ = true;
};

}  // namespace platform
