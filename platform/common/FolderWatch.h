#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/common/FileStamps.h"

namespace platform {

/// Which folder it is, whatever path leads to it, and when a name in it last came or went.
struct FolderState {
  std::uint64_t Volume = 0;
  std::uint64_t Number = 0;
  std::uint64_t Time = 0;
  bool operator==(const FolderState&) const = default;
};

/// One look at a folder and the files in it.
class FolderReading {
 public:
  struct File {
    std::size_t Name = 0;  ///< Its hash.
    FileStamp Stamp = 0;
  };

  virtual ~FolderReading() = default;
  /// As it stood before its first file was read; nothing where there is no folder.
  virtual std::optional<FolderState> Folder() const = 0;
  virtual bool Next(File& file) = 0;
};

/// The change notification of one folder: signalled by the events of the system that watches it,
/// and by looking at it every two seconds where the system does not: because it refuses, because
/// the folder is not there, or because the events leave out what is done from elsewhere. A look is
/// one at the folder itself, then at its files, in pieces that keep nothing waiting, as is the
/// learning of what is there at first. What is known is taken in before the signal, so that whoever
/// looks after it misses nothing.
class FolderWatch {
 public:
  using Clock = std::chrono::steady_clock;

  FolderWatch() = default;
  FolderWatch(const FolderWatch&) = delete;
  FolderWatch& operator=(const FolderWatch&) = delete;
  virtual ~FolderWatch() = default;

  /// What is there now is no change.
  void Begin();

  bool IsWatching() const { return watching_; }
  bool IsSignalled() const { return signalled_; }
  void Rearm() { signalled_ = false; }

  /// Takes in what the system has recorded, and looks where that is due. Returns the signal.
  bool TakeIn();

  /// When `TakeIn` has something to look at.
  Clock::time_point NextLook() const {
    return looking_ || learning_ ? nextLook_ : Clock::time_point::max();
  }

  /// Whether the path leads somewhere else than when it was watched, which no event tells: a parent
  /// was renamed, or another file system mounted over it. Looks once a second: at rest, a look at
  /// every wait would be a sixth of all that the program does.
  bool LooksElsewhere();

 protected:
  // What is asked of the machine.

  /// Has the system watch the folder. False where it does not.
  virtual bool Ask() = 0;
  /// Gives up what `Ask` was granted.
  virtual void GiveUp() = 0;
  /// Takes in the events, by `Signal` and `Lose`.
  virtual void TakeEvents() = 0;
  /// Whether the folder watched is the one that the path leads to.
  virtual bool IsInPlace() const = 0;
  /// Whether the events are all changes, wherever they come from.
  virtual bool TellsAll() const = 0;
  /// Whether the events can be understood only by what is known of the files.
  virtual bool NeedsStamps() const = 0;
  virtual std::unique_ptr<FolderReading> Read() const = 0;

  void Signal() { signalled_ = true; }
  /// The events have come to an end. The folder that is there now is watched if it can be.
  void Lose();
  /// Begins to learn the folder's files anew. One that is not known yet counts as changed.
  void Learn();

  FileStamps Stamps;

 private:
  void HowToGoOn();
  void CatchUp();
  void Look();
  void LearnOn();
  bool BeginReading();
  bool GoOnReading();

  bool watching_ = false;
  bool looking_ = false;
  bool learning_ = false;
  bool signalled_ = false;
  Clock::time_point nextLook_;
  Clock::time_point nextLookElsewhere_;
  std::optional<FolderState> folder_;
  std::unique_ptr<FolderReading> reading_;  ///< The look under way.
};

}  // namespace platform
