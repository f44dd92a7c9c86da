#include "platform/linux/XServer.h"

#include <array>
#include <cstdint>

#include <QGuiApplication>

namespace platform {

static constexpr const char* Platform = "QT_QPA_PLATFORM";

X11Choice::X11Choice()
    : made_(std::getenv(Platform) == nullptr && std::getenv("DISPLAY") != nullptr &&
            setenv(Platform, "xcb", 0) == 0) {}

X11Choice::~X11Choice() {
  if (made_) unsetenv(Platform);
}

xcb_connection_t* XConnection() {
  // Other platform plugins offer the interface too, without a connection.
  if (QGuiApplication::platformName() != QLatin1String("xcb")) return nullptr;
  auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  return x11 ? x11->connection() : nullptr;
}

xcb_atom_t XAtom(std::string_view name) {
  const auto length = static_cast<std::uint16_t>(name.size());
  xcb_connection_t* connection = XConnection();
  const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      connection, xcb_intern_atom(connection, 0, length, name.data()), nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_NONE};
}

void LeaveTaskbar(xcb_window_t window) {
  xcb_connection_t* connection = XConnection();
  if (!connection) return;
  static const xcb_atom_t state = XAtom("_NET_WM_STATE");
  static const std::array<xcb_atom_t, 2> skip{XAtom("_NET_WM_STATE_SKIP_TASKBAR"),
                                              XAtom("_NET_WM_STATE_SKIP_PAGER")};
  // The toolkit adds its own states to what it finds there when it shows the window.
  constexpr std::uint8_t AtomBits = 32;
  xcb_change_property(connection, XCB_PROP_MODE_REPLACE, window, state, XCB_ATOM_ATOM, AtomBits,
                      static_cast<std::uint32_t>(skip.size()), skip.data());
}

}  // namespace platform
