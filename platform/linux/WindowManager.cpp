#include "platform/linux/WindowManager.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <vector>

#include "platform/linux/XServer.h"

namespace platform {

namespace {

constexpr std::uint32_t NormalState = 1;
constexpr std::uint32_t IconicState = 3;
constexpr std::uint8_t NumberBits = 32;
constexpr const char* StateOfWindow = "_NET_WM_STATE";
constexpr const char* DesktopOfWindow = "_NET_WM_DESKTOP";
constexpr const char* DesktopInSight = "_NET_CURRENT_DESKTOP";
// Who a wish comes from.
constexpr std::uint32_t FromProgram = 1;
constexpr std::uint32_t FromUser = 2;
constexpr std::uint32_t EveryDesktop = 0xFFFFFFFF;

xcb_window_t Root() { return xcb_setup_roots_iterator(xcb_get_setup(XConnection())).data->root; }

/// A property of numbers; empty where the window has none of that name.
std::vector<std::uint32_t> Numbers(xcb_window_t window, const char* name) {
  constexpr std::uint32_t Most = 16;
  xcb_connection_t* connection = XConnection();
  if (!connection) return {};
  const XReply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      connection,
      xcb_get_property(connection, 0, window, XAtom(name), XCB_GET_PROPERTY_TYPE_ANY, 0, Most),
      nullptr));
  if (!reply || reply->format != NumberBits) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

std::optional<std::uint32_t> Number(xcb_window_t window, const char* name) {
  const std::vector<std::uint32_t> numbers = Numbers(window, name);
  return numbers.empty() ? std::nullopt : std::optional(numbers.front());
}

void SetProperty(xcb_window_t window, const char* name, xcb_atom_t type,
                 std::span<const std::uint32_t> values) {
  xcb_change_property(XConnection(), XCB_PROP_MODE_REPLACE, window, XAtom(name), type, NumberBits,
                      static_cast<std::uint32_t>(values.size()), values.data());
}

XReply<xcb_query_tree_reply_t> Tree(xcb_window_t window) {
  return XReply<xcb_query_tree_reply_t>(
      xcb_query_tree_reply(XConnection(), xcb_query_tree(XConnection(), window), nullptr));
}

/// The root's own child that holds a window.
xcb_window_t Frame(xcb_window_t window) {
  for (;;) {
    const auto found = Tree(window);
    if (!found || found->parent == found->root || found->parent == XCB_NONE) return window;
    window = found->parent;
  }
}

/// A wish to the window manager.
void Ask(xcb_window_t window, const char* wish, std::initializer_list<std::uint32_t> values) {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = NumberBits;
  message.window = window;
  message.type = XAtom(wish);
  std::copy(values.begin(), values.end(), message.data.data32);
  xcb_send_event(XConnection(), 0, Root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
  xcb_flush(XConnection());
}

}  // namespace

std::optional<bool> IsMinimised(xcb_window_t window) {
  if (!XConnection()) return {};
  if (Number(window, "WM_STATE").value_or(IconicState) != IconicState) return false;
  const std::vector<std::uint32_t> states = Numbers(window, StateOfWindow);
  const bool isHidden = std::ranges::count(states, XAtom("_NET_WM_STATE_HIDDEN")) > 0;
  return isHidden || !IsOnOtherDesktop(window);
}

void LeaveTaskbar(xcb_window_t window) {
  if (!XConnection()) return;
  // The toolkit adds its own states to what it finds there when it shows the window.
  static const std::array<xcb_atom_t, 2> skip{XAtom("_NET_WM_STATE_SKIP_TASKBAR"),
                                              XAtom("_NET_WM_STATE_SKIP_PAGER")};
  SetProperty(window, StateOfWindow, XCB_ATOM_ATOM, skip);
}

void ComeUpIconic(xcb_window_t window, bool iconic) {
  constexpr std::uint32_t StateIsGiven = 2;
  std::vector<std::uint32_t> hints = Numbers(window, "WM_HINTS");
  if (hints.size() < 3) return;
  hints[0] |= StateIsGiven;
  hints[2] = iconic ? IconicState : NormalState;
  SetProperty(window, "WM_HINTS", XCB_ATOM_WM_HINTS, hints);
}

bool IsOnOtherDesktop(xcb_window_t window) {
  const auto own = Number(window, DesktopOfWindow);
  if (!own || *own == EveryDesktop) return false;
  return Number(Root(), DesktopInSight).value_or(*own) != *own;
}

void ComeToThisDesktop(xcb_window_t window) {
  if (!IsOnOtherDesktop(window)) return;
  const auto here = Number(Root(), DesktopInSight);
  if (here) Ask(window, DesktopOfWindow, {*here, FromProgram});
}

bool LiesBelow(xcb_window_t window, xcb_window_t other) {
  if (!XConnection()) return false;
  const auto order = Tree(Root());
  if (!order) return false;
  const std::span<const xcb_window_t> frames(
      xcb_query_tree_children(order.get()),
      static_cast<std::size_t>(xcb_query_tree_children_length(order.get())));
  return std::ranges::find(frames, Frame(window)) < std::ranges::find(frames, Frame(other));
}

void Restack(xcb_window_t window) {
  constexpr std::uint32_t Remove = 0;
  constexpr std::uint32_t Add = 1;
  if (!XConnection()) return;
  const xcb_atom_t topmost = XAtom("_NET_WM_STATE_ABOVE");
  for (const std::uint32_t change : {Add, Remove}) {
    Ask(window, StateOfWindow, {change, topmost, 0, FromProgram});
  }
}

void AskForFront(xcb_window_t window) {
  if (XConnection()) Ask(window, "_NET_ACTIVE_WINDOW", {FromUser});
}

void SetOwner(xcb_window_t window, xcb_window_t owner) {
  constexpr const char* Owner = "WM_TRANSIENT_FOR";
  if (!XConnection()) return;
  if (owner == XCB_NONE) {
    xcb_delete_property(XConnection(), window, XAtom(Owner));
  } else {
    SetProperty(window, Owner, XCB_ATOM_WINDOW, {{owner}});
  }
}

}  // namespace platform
