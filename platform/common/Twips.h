#pragma once

namespace platform {

/// A twip is 1/1440 inch and a device independent pixel 1/96 inch, at any scale of the screen.
inline constexpr int TwipsPerPixel = 15;

/// To the nearest pixel.
constexpr int ToPixels(int twips) {
  return twips >= 0 ? (twips + TwipsPerPixel / 2) / TwipsPerPixel
                    : (twips - TwipsPerPixel / 2) / TwipsPerPixel;
}
constexpr int ToTwips(int pixels) { return pixels * TwipsPerPixel; }

}  // namespace platform
