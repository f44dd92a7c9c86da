#include "platform/common/FolderWatch.h"

#include <utility>

namespace platform {
namespace {

using std::chrono::milliseconds;

constexpr milliseconds BetweenLooks{2000};
/// For a folder that is not there: to see that is one call.
constexpr milliseconds BetweenLooksForIt{100};
/// A look that takes long, at a slow share or very many files, is made in pieces; a million files
/// take seconds.
constexpr milliseconds Piece{5};

}  // namespace

void FolderWatch::Begin() {
  watching_ = Ask();
  HowToGoOn();
}

void FolderWatch::HowToGoOn() {
  looking_ = !watching_ || !TellsAll();
  if (looking_ || NeedsStamps()) Learn();
  CatchUp();
}

void FolderWatch::Lose() {
  GiveUp();
  Begin();
  Signal();
}

bool FolderWatch::TakeIn() {
  if (!signalled_) CatchUp();
  const bool isMissing = looking_ && !watching_ && !folder_;  // seen by one call, at every wait
  if (!signalled_ && (isMissing || Clock::now() >= NextLook())) Look();
  return signalled_;
}

void FolderWatch::CatchUp() {
  if (watching_) TakeEvents();
  Stamps.CaughtUp();
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
  if (learning_) return LearnOn();
  const bool another = !reading_ && BeginReading();
  const bool others = GoOnReading();
  if (another || others) Signal();
}

void FolderWatch::Learn() {
  Stamps.ForgetAll();
  learning_ = true;
  BeginReading();
  GoOnReading();
}

void FolderWatch::LearnOn() {
  GoOnReading();
  CatchUp();
  // What no event tells may have happened to a file before it was learnt.
  if (!learning_ && looking_) Signal();
}

/// Returns whether the folder itself has changed.
bool FolderWatch::BeginReading() {
  reading_ = Read();
  Stamps.BeginRound();
  const std::optional<FolderState> before = std::exchange(folder_, reading_->Folder());
  return folder_ != before;
}

/// Returns whether a file has changed.
bool FolderWatch::GoOnReading() {
  const auto end = Clock::now() + Piece;
  bool changed = false;
  FolderReading::File file;
  while (reading_->Next(file)) {
    if (learning_) {
      Stamps.Learn(file.Name, file.Stamp);
    } else {
      changed = Stamps.Update(file.Name, file.Stamp) || changed;
    }
    nextLook_ = Clock::now();
    if (nextLook_ < end) continue;
    if (!learning_) nextLook_ += Piece;
    return changed;
  }
  reading_.reset();
  learning_ = false;
  nextLook_ = Clock::now() + (folder_ ? BetweenLooks : BetweenLooksForIt);
  return Stamps.EndRound() || changed;
}

}  // namespace platform
