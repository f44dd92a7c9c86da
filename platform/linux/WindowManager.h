#pragma once

#include <optional>
#include <xcb/xcb.h>

// What the toolkit does not ask of a window manager or tell it. Silent on a display other than X's.

namespace platform {

/// Whether a window is minimised, or not managed yet; nothing where nobody can be asked. A window
/// on another desktop can look minimised to the toolkit (fluxbox 1.3).
std::optional<bool> IsMinimised(xcb_window_t window);

/// Keeps a window that is not on the screen yet out of taskbars and pagers. The kind of window
/// alone is not enough for each of them.
void LeaveTaskbar(xcb_window_t window);

/// How a window that is not on the screen comes up, in the task bar or whole.
void ComeUpIconic(xcb_window_t window, bool iconic);

/// Of several virtual desktops, whether a window is on one that the user does not see.
bool IsOnOtherDesktop(xcb_window_t window);
void ComeToThisDesktop(xcb_window_t window);

/// Asks for the front and the keyboard, as the user's own wish: a window manager that guards the
/// keyboard refuses it to a program whose last click is older than another's, and a click on a tray
/// or on another program's button is no click on this one.
void AskForFront(xcb_window_t window);

/// Tells of the owner of a window that is on the screen, or that it has none.
void SetOwner(xcb_window_t window, xcb_window_t owner);
bool LiesBelow(xcb_window_t window, xcb_window_t other);
/// Over all windows of its kind, by way of the topmost ones: a raise can give the keyboard too.
void Restack(xcb_window_t window);

}  // namespace platform
