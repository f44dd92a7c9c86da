#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <map>
#include <memory>
#include <pulse/mainloop.h>
#include <pulse/stream.h>
#include <string>
#include <sys/eventfd.h>

#include "platform/linux/Descriptor.h"
#include "platform/linux/WaveFile.h"

namespace platform {

struct PulseDeleter {
  void operator()(pa_mainloop* loop) const { pa_mainloop_free(loop); }
  void operator()(pa_context* context) const;
  void operator()(pa_stream* stream) const;
  void operator()(pa_operation* operation) const { pa_operation_unref(operation); }
};
template <typename T>
using PulsePointer = std::unique_ptr<T, PulseDeleter>;

/// The desktop's sound server and what plays through it, all from one thread. Nothing blocks but
/// `Serve`. A server is looked for when a sound is to be played, and what it cannot begin within a
/// moment is not played at all.
class SoundServer {
 public:
  SoundServer();

  /// Plays a file from its start; what of it still sounds is cut off.
  void Play(const std::string& path);
  void Stop(const std::string& path);

  /// Sends samples and waits until the server tells something or `Wake` is called. False when it
  /// never can again.
  bool Serve();
  /// Ends the wait, or else the next one. For any thread.
  void Wake() { eventfd_write(wake_.Number(), 1); }

 private:
  using Clock = std::chrono::steady_clock;

  /// One playing of one file.
  struct Playing {
    WaveFile File;
    Clock::time_point BeginsBefore;  ///< Without end once it has begun.
    PulsePointer<pa_stream> Stream;
    PulsePointer<pa_operation> End;  ///< Once the last sample is sent.
  };

  void Connect();
  bool Begin(Playing& playing);
  /// Whether there is more to come of it.
  bool GoOn(Playing& playing);
  bool Send(Playing& playing);

  Descriptor wake_;
  PulsePointer<pa_mainloop> loop_;
  PulsePointer<pa_context> context_;
  Clock::time_point nextTry_;
  std::map<std::string, Playing> playing_;
  std::array<std::byte, 65536> samples_;
};

}  // namespace platform
