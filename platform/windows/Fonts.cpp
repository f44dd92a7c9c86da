#include "platform/windows/SystemWindows.h"

#include "platform/windows/Fonts.h"

#include <algorithm>
#include <map>
#include <utility>

namespace platform {

HFONT DialogFont(int dpi, bool underlined) {
  static std::map<std::pair<int, bool>, HFONT> fonts;
  HFONT& font = fonts[{dpi, underlined}];
  if (font != nullptr) return font;
  constexpr int EightAndAQuarterPoints = 11;  // pixels at a scale of 96
  constexpr int Unscaled = 96;
  // The scalable face of the same letters and widths as the bitmaps of "MS Sans Serif".
  font = CreateFontW(-MulDiv(EightAndAQuarterPoints, dpi, Unscaled), 0, 0, 0, FW_NORMAL, FALSE,
                     underlined, FALSE, DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                     DEFAULT_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Microsoft Sans Serif");
  return font;
}

}  // namespace platform
