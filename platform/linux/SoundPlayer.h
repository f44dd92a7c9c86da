#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <string>

class QThread;

namespace platform {

/// Plays sound files on a thread of its own, since reaching a sound server can take any time. Its
/// functions return at once; without a server there is silence.
class SoundPlayer {
 public:
  static SoundPlayer& Instance();

  /// Plays the file from its start; what of it still sounds is cut off.
  void Play(const std::string& path);
  void Stop(const std::string& path);

 private:
  class Worker;
  enum class Wish { Play, Stop };

  SoundPlayer();
  /// Gives the thread a moment to end; one that waits for a server goes with the process.
  void End();
  void Note(const std::string& path, Wish wish);
  std::map<std::string, Wish> TakeWishes();

  std::mutex mutex_;
  std::map<std::string, Wish> wishes_;  ///< The latest for each file; older ones are folded in.
  QThread* thread_;
  Worker* worker_;
};

}  // namespace platform
