#include "platform/linux/Handles.h"

#include <QHash>

namespace platform {

namespace {

QHash<std::uint32_t, Control*>& Controls() {
  static QHash<std::uint32_t, Control*> controls;
  return controls;
}

QHash<std::uint32_t, QIcon>& Pictures() {
  static QHash<std::uint32_t, QIcon> pictures;
  return pictures;
}

std::uint32_t NextHandle() {
  static std::uint32_t last = 0;
  return ++last;
}

}  // namespace

std::uint32_t AddHandle(Control& control) {
  const std::uint32_t handle = NextHandle();
  Controls().insert(handle, &control);
  return handle;
}

void RemoveHandle(std::uint32_t handle) { Controls().remove(handle); }

Control* ControlByHandle(std::uint32_t handle) { return Controls().value(handle, nullptr); }

std::uint32_t AddPicture(const QIcon& picture) {
  const std::uint32_t handle = NextHandle();
  Pictures().insert(handle, picture);
  return handle;
}

QIcon PictureByHandle(std::uint32_t handle) { return Pictures().value(handle); }

}  // namespace platform
