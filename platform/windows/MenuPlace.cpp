#include "platform/windows/SystemWindows.h"

#include "platform/windows/MenuPlace.h"

#include <optional>

namespace platform {

namespace {

std::optional<POINT> place;

}  // namespace

MenuPlace::MenuPlace(POINT at) { place = at; }
MenuPlace::~MenuPlace() { place.reset(); }

POINT MenuPlace::Now() {
  if (place) return *place;
  POINT pointer{};
  GetCursorPos(&pointer);
  return pointer;
}

}  // namespace platform
