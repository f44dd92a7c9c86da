#include "platform/linux/WaveFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <string_view>

#include "platform/linux/Paths.h"

namespace platform {

namespace {

/// A number as it lies in the file, its lowest byte first.
std::uint32_t NumberAt(std::span<const std::byte> bytes, std::size_t at, std::size_t length) {
  std::uint32_t number = 0;
  for (std::size_t i = length; i > 0; --i) {
    number = number << 8 | std::to_integer<std::uint32_t>(bytes[at + i - 1]);
  }
  return number;
}

std::string_view NameAt(std::span<const std::byte> bytes, std::size_t at) {
  return {reinterpret_cast<const char*>(bytes.data()) + at, 4};
}

pa_sample_format_t FormatOf(std::uint32_t kind, std::uint32_t bits) {
  constexpr std::uint32_t Whole = 1;
  constexpr std::uint32_t Float = 3;
  struct Known {
    std::uint32_t Kind;
    std::uint32_t Bits;
    pa_sample_format_t Format;
  };
  constexpr std::array<Known, 5> KnownFormats{{{Whole, 8, PA_SAMPLE_U8},
                                               {Whole, 16, PA_SAMPLE_S16LE},
                                               {Whole, 24, PA_SAMPLE_S24LE},
                                               {Whole, 32, PA_SAMPLE_S32LE},
                                               {Float, 32, PA_SAMPLE_FLOAT32LE}}};
  for (const Known& known : KnownFormats) {
    if (known.Kind == kind && known.Bits == bits) return known.Format;
  }
  return PA_SAMPLE_INVALID;
}

}  // namespace

WaveFile::WaveFile(const std::string& path) : file_(OpenOrdinary(AT_FDCWD, path.c_str())) {
  std::array<std::byte, 12> head;
  if (!file_ || ReadBytes(head) < head.size() || NameAt(head, 0) != "RIFF" ||
      NameAt(head, 8) != "WAVE") {
    return;
  }
  std::array<std::byte, 8> chunk;
  bool formKnown = false;
  while (ReadBytes(chunk) == chunk.size()) {
    const std::size_t size = NumberAt(chunk, 4, 4);
    if (NameAt(chunk, 0) == "data") {
      if (formKnown) left_ = size;
      return;
    }
    const off_t content = lseek(file_.Number(), 0, SEEK_CUR);
    if (NameAt(chunk, 0) == "fmt ") formKnown = ReadForm(size);
    lseek(file_.Number(), content + static_cast<off_t>(size + size % 2), SEEK_SET);
  }
}

bool WaveFile::ReadForm(std::size_t size) {
  constexpr std::size_t Least = 16;
  constexpr std::size_t KindBehind = 24;  // where an extended form tells what it is
  constexpr std::uint32_t Extended = 0xFFFE;
  std::array<std::byte, KindBehind + 2> bytes{};
  if (ReadBytes(std::span(bytes).first(std::min(size, bytes.size()))) < Least) return false;
  std::uint32_t kind = NumberAt(bytes, 0, 2);
  if (kind == Extended) kind = NumberAt(bytes, KindBehind, 2);
  form_.channels = static_cast<std::uint8_t>(std::min(NumberAt(bytes, 2, 2), 255U));
  form_.rate = NumberAt(bytes, 4, 4);
  form_.format = FormatOf(kind, NumberAt(bytes, 14, 2));
  return pa_sample_spec_valid(&form_) != 0;
}

std::size_t WaveFile::Read(std::span<std::byte> room) {
  const std::size_t frame = pa_frame_size(&form_);
  const std::size_t most = std::min(room.size(), left_);
  const std::size_t got = ReadBytes(room.first(most - most % frame));
  left_ = got < frame ? 0 : left_ - got;
  return got - got % frame;
}

std::size_t WaveFile::ReadBytes(std::span<std::byte> room) {
  std::size_t size = 0;
  while (size < room.size()) {
    const ssize_t got = read(file_.Number(), room.data() + size, room.size() - size);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) break;
    size += static_cast<std::size_t>(got);
  }
  return size;
}

}  // namespace platform
