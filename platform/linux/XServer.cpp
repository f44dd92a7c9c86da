#include "platform/linux/XServer.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

#include <QGuiApplication>

namespace platform {

static constexpr const char* Platform = "QT_QPA_PLATFORM";

static QtMessageHandler otherMessages = nullptr;

static std::string SettingOf(const std::string& variable) {
  const char* const value = std::getenv(variable.c_str());
  return variable + (value && *value ? std::string("=") + value : " is not set");
}

/// The toolkit only says that "Reinstalling the application may fix this problem", and aborts.
static void EndWithoutDisplay(QtMsgType type, const QMessageLogContext& context,
                              const QString& message) {
  if (type != QtFatalMsg) return otherMessages(type, context, message);
  const char* const platform = std::getenv(Platform);
  const bool isX11 = !platform || platform == std::string_view("xcb");
  std::cerr << "quillmere: no window can be shown (" << SettingOf(isX11 ? "DISPLAY" : Platform)
            << "). It takes an X server: X11 or, in a Wayland session, XWayland.\n";
  std::_Exit(EXIT_FAILURE);
}

X11Choice::X11Choice()
    : made_(std::getenv(Platform) == nullptr && std::getenv("DISPLAY") != nullptr &&
            setenv(Platform, "xcb", 0) == 0) {
  otherMessages = qInstallMessageHandler(EndWithoutDisplay);
}

X11Choice::~X11Choice() {
  qInstallMessageHandler(otherMessages);
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

}  // namespace platform
