#pragma once

#include "platform/windows/SystemWindows.h"

#include <string>

// The pictures in the executable, by the names of their files.

namespace platform {

/// An icon in the size that is asked for, in pixels. Kept until the process ends.
HICON IconOfSize(const std::string& name, int size);

/// A picture of `width` by `height` pixels on a background of that colour; the caller frees it.
HBITMAP PictureOfSize(const std::string& name, int width, int height, COLORREF background);

/// A pointer, by the scale in dots to the inch.
HCURSOR PointerForScale(const std::string& name, int dpi);

/// A number for a picture, and the icon in a size of what has that number.
std::uint32_t NumberPicture(const std::string& name);
HICON PictureByHandle(std::uint32_t handle, int size);

}  // namespace platform
