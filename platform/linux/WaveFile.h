#pragma once

#include <cstddef>
#include <pulse/sample.h>
#include <span>
#include <string>

#include "platform/linux/Descriptor.h"

namespace platform {

/// The samples of a sound file (RIFF, not compressed), read from its first to its last.
class WaveFile {
 public:
  explicit WaveFile(const std::string& path);

  /// Whether there is such a file, with samples of a form that can be played.
  explicit operator bool() const { return left_ > 0; }
  const pa_sample_spec& Form() const { return form_; }

  /// Fills as much of the room as it can with whole frames, a frame being one sample a channel.
  /// Returns the bytes that were read; 0 at the end.
  std::size_t Read(std::span<std::byte> room);

 private:
  /// The place of a chunk's content is the file's position.
  bool ReadForm(std::size_t size);
  std::size_t ReadBytes(std::span<std::byte> room);

  Descriptor file_;
  pa_sample_spec form_{};
  std::size_t left_ = 0;  ///< Bytes of samples that the file promises.
};

}  // namespace platform
