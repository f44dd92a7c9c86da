#include "platform/linux/TrayHosts.h"

#include <cstdint>
#include <utility>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVariant>

#include "platform/linux/XServer.h"

namespace platform {

namespace {

const QString Watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString WatcherPath = QStringLiteral("/StatusNotifierWatcher");

/// A watcher can be there long before the first tray that shows what it watches.
bool AskIsNotifierThere() {
  const QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected() || !bus.interface()->isServiceRegistered(Watcher)) return false;
  QDBusMessage question = QDBusMessage::createMethodCall(
      Watcher, WatcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
      QStringLiteral("Get"));
  question << Watcher << QStringLiteral("IsStatusNotifierHostRegistered");
  constexpr int Patience = 1000;  // milliseconds; with one that hangs there is no tray
  const QDBusMessage answer = bus.call(question, QDBus::Block, Patience);
  return answer.type() == QDBusMessage::ReplyMessage &&
         answer.arguments().value(0).value<QDBusVariant>().variant().toBool();
}

}  // namespace

TrayHosts::TrayHosts()
    : notifierWatcher_(Watcher, QDBusConnection::sessionBus(),
                       QDBusServiceWatcher::WatchForOwnerChange) {
  connect(&notifierWatcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          &TrayHosts::AskForNotifier);
  for (const char* news : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    QDBusConnection::sessionBus().connect(Watcher, WatcherPath, Watcher, news, this,
                                          SLOT(AskForNotifier()));
  }
  AskForNotifier();
  if (!XConnection()) return;
  selection_ = XAtom("_NET_SYSTEM_TRAY_S0");
  manager_ = XAtom("MANAGER");
  qApp->installNativeEventFilter(this);
  LookForEmbedding();
}

void TrayHosts::AskForNotifier() {
  const bool isThere = AskIsNotifierThere();
  if (std::exchange(notifies_, isThere) != isThere) emit Changed();
}

void TrayHosts::LookForEmbedding() {
  xcb_connection_t* connection = XConnection();
  const XReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, selection_), nullptr));
  const xcb_window_t now = reply ? reply->owner : xcb_window_t{XCB_NONE};
  if (std::exchange(embedding_, now) == now) return;
  if (now != XCB_NONE) {  // its end is told; the toolkit asks for the same
    constexpr std::uint32_t Events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, now, XCB_CW_EVENT_MASK, &Events);
  }
  emit Changed();
}

bool TrayHosts::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
  constexpr std::uint8_t SentByClient = 0x80;
  const auto* event = static_cast<xcb_generic_event_t*>(message);
  const auto* news = static_cast<xcb_client_message_event_t*>(message);
  const auto* end = static_cast<xcb_destroy_notify_event_t*>(message);
  const int type = event->response_type & ~SentByClient;
  const bool came =
      type == XCB_CLIENT_MESSAGE && news->type == manager_ && news->data.data32[1] == selection_;
  const bool went =
      type == XCB_DESTROY_NOTIFY && embedding_ != XCB_NONE && end->window == embedding_;
  if (came || went) {
    QMetaObject::invokeMethod(this, &TrayHosts::LookForEmbedding, Qt::QueuedConnection);
  }
  return false;
}

}  // namespace platform
