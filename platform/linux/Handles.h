#pragma once

#include <cstdint>

#include <QIcon>

#include "platform/Forms.h"

// The numbers by which controls and pictures are named: `Control::hWnd` and `Image::Picture`.

namespace platform {

std::uint32_t AddHandle(Control& control);
void RemoveHandle(std::uint32_t handle);
/// None for a number that names no control.
Control* ControlByHandle(std::uint32_t handle);

std::uint32_t AddPicture(const QIcon& picture);
/// A null icon for a number that names no picture.
QIcon PictureByHandle(std::uint32_t handle);

}  // namespace platform
