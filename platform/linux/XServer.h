#pragma once

#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace platform {

/// Has an application that is made meanwhile take X11, or XWayland, where the user names no
/// platform, and end with a word on its display where it can show no window. What the program
/// starts later chooses for itself.
class X11Choice {
 public:
  X11Choice();
  X11Choice(const X11Choice&) = delete;
  X11Choice& operator=(const X11Choice&) = delete;
  ~X11Choice();

 private:
  bool made_;
};

/// The connection to the X server, or none on another kind of display.
xcb_connection_t* XConnection();

xcb_atom_t XAtom(std::string_view name);

/// An answer of the server, which its library allocates.
struct FreeReply {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename T>
using XReply = std::unique_ptr<T, FreeReply>;

}  // namespace platform
