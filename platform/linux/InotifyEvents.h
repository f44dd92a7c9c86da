#pragma once

#include <array>
#include <cstddef>
#include <sys/inotify.h>
#include <unistd.h>

namespace platform {

/// Hands out the events that a descriptor of inotify's has recorded, as long as `take` returns
/// true. A writer that never rests must not keep this from an end: what is left then waits.
template <typename Take>
void ReadInotifyEvents(int descriptor, Take take) {
  alignas(inotify_event) std::array<char, 65536> buffer;
  constexpr int MostReads = 256;
  bool goesOn = true;
  for (int i = 0; i < MostReads && goesOn; ++i) {
    const ssize_t got = read(descriptor, buffer.data(), buffer.size());
    if (got <= 0) return;
    for (ssize_t at = 0; at < got;) {
      const auto& event = *reinterpret_cast<const inotify_event*>(buffer.data() + at);
      at += static_cast<ssize_t>(sizeof event + event.len);
      goesOn = take(event) && goesOn;
    }
  }
}

}  // namespace platform
