#pragma once

#include "platform/windows/System.h"

#include <utility>

namespace platform {

/// Something of the system's that is open, closed at its end.
class SystemHandle {
 public:
  SystemHandle() = default;
  explicit SystemHandle(::HANDLE handle) : handle_(handle == nullptr ? NoSystemHandle : handle) {}
  SystemHandle(SystemHandle&& other) noexcept
      : handle_(std::exchange(other.handle_, NoSystemHandle)) {}
  SystemHandle& operator=(SystemHandle&& other) noexcept {
    std::swap(handle_, other.handle_);
    return *this;
  }
  ~SystemHandle() {
    if (*this) CloseHandle(handle_);
  }

  explicit operator bool() const { return handle_ != NoSystemHandle; }
  ::HANDLE Get() const { return handle_; }

 private:
  ::HANDLE handle_ = NoSystemHandle;
};

}  // namespace platform
