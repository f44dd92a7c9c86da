#include "platform/common/FolderWatch.h"

#include <utility>

namespace platform {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds BetweenLooks{2000};
/// For a folder that is not there: to see that is one call.
constexpr milliseconds BetweenLooksForIt{100};
/// A look that takes long, at a slow share or very many files, is made in pieces.
constexpr milliseconds Piece{10};

}  // namespace

void FolderWatch::Begin() {
  watching_ = Ask();
  HowToGoOn();
}

void FolderWatch::HowToGoOn() {
  looking_ = !watching_ || !TellsAll();
  if (looking_ || NeedsStamps()) TakeInAll();
}

void FolderWatch::Lose() {
  GiveUp();
  Begin();
  Signal();
}

bool FolderWatch::TakeIn() {
  if (!signalled_ && watching_) TakeEvents();
  if (!signalled_ && looking_ && Clock::now() >= nextLook_) Look();
  return signalled_;
}

bool FolderWatch::LooksElsewhere() {
  const auto now = Clock::now();
  if (!watching_ || now < nextLookElsewhere_) return signalled_;
  nextLookElsewhere_ = now + std::chrono::seconds(1);
  if (!IsInPlace()) Lose();
  return signalled_;
}

void FolderWatch::Look() {
  if (!watching_ && Ask()) {
    watching_ = true;
    HowToGoOn();
    return Signal();  // for what came between the last look and the watch
  }
  const bool another = !reading_ && BeginReading();
  const bool others = GoOnReading(Clock::now() + Piece);
  if (another || others) Signal();
}

void FolderWatch::TakeInAll() {
  BeginReading();
  GoOnReading(Clock::time_point::max());
}

/// Returns whether the folder itself has changed.
bool FolderWatch::BeginReading() {
  reading_ = Read();
  Stamps.BeginRound();
  const std::optional<FolderState> before = std::exchange(folder_, reading_->Folder());
  return folder_ != before;
}

/// Returns whether a file has changed.
bool FolderWatch::GoOnReading(Clock::time_point end) {
  bool changed = false;
  FolderReading::File file;
  while (reading_->Next(file)) {
    changed = Stamps.Update(file.Name, file.Stamp) || changed;
    const auto now = Clock::now();
    if (now < end) continue;
    nextLook_ = now + Piece;
    return changed;
  }
  reading_.reset();
  nextLook_ = Clock::now() + (folder_ ? BetweenLooks : BetweenLooksForIt);
  return Stamps.EndRound() || changed;
}

}  // namespace platform
