"""A tray of the older kind: a window that takes in the icons' windows, which this program is; and
its use with the mouse."""

import re

from Xlib import X, display
from Xlib.protocol.event import ClientMessage

from harness import double_click, run, wait_until

SIZE = 24
TITLE = "Tray host"


class Host:
    def __init__(self):
        self.display = display.Display()
        screen = self.display.screen()
        self.icons = []
        self.window = screen.root.create_window(
            0, screen.height_in_pixels - SIZE, SIZE, SIZE, 0, X.CopyFromParent, X.InputOutput,
            override_redirect=True, background_pixel=screen.white_pixel,
            event_mask=X.SubstructureNotifyMask)
        self.window.set_wm_name(TITLE)
        self.window.map()
        selection = self.display.get_atom("_NET_SYSTEM_TRAY_S0")
        self.window.set_selection_owner(selection, X.CurrentTime)
        self.tell(screen.root, "MANAGER", [X.CurrentTime, selection, self.window.id, 0, 0],
                  X.StructureNotifyMask)

    def tell(self, window, kind, values, mask=X.NoEventMask):
        window.send_event(ClientMessage(window=window, client_type=self.display.get_atom(kind),
                                        data=(32, values)), mask)

    def take_in(self, icon):
        """The icon outlives the tray, and then waits for the next one."""
        icon.change_save_set(X.SetModeInsert)
        icon.reparent(self.window, 0, 0)
        self.tell(icon, "_XEMBED", [X.CurrentTime, 0, 0, self.window.id, 0])  # it is embedded
        icon.map()
        self.icons.append(icon)

    def arrange(self):
        for number, icon in enumerate(self.icons):
            icon.configure(x=number * SIZE, y=0, width=SIZE, height=SIZE)
        self.window.configure(width=max(1, len(self.icons)) * SIZE)

    def serve(self):
        docking = self.display.get_atom("_NET_SYSTEM_TRAY_OPCODE")
        while True:
            event = self.display.next_event()
            if event.type == X.ClientMessage and event.client_type == docking:
                _, request, icon, *_ = event.data[1]
                if request == 0:
                    self.take_in(self.display.create_resource_object("window", icon))
                    self.arrange()
            elif event.type == X.DestroyNotify:
                self.icons.remove(event.window)
                self.arrange()


class EmbeddingTray:
    def __init__(self, desktop):
        self.process = desktop.start("/usr/bin/python3", "-B", __file__)

    def tree(self):  # it cannot be read while a window goes
        return wait_until(lambda: run("xwininfo", "-root", "-tree", check=False), "the windows")

    def is_up(self):
        return TITLE in self.tree()

    def items(self):
        """Where the icons are: windows of an icon's size at the top of the one that takes them in."""
        found = re.findall(r'"(?:quillmere|explorer.exe)" .* [123]\dx[123]\d\+\d+\+0 '
                           r' \+(\d+)\+(9\d\d|1\d{3})\n', self.tree())
        return [(int(left) + 5, int(top) + 5) for left, top in found]

    def point(self):
        """At the icon. Panels stay above, while nothing keeps this window there."""
        run("xdotool", "search", "--name", f"^{TITLE}$", "windowraise")
        run("xdotool", "mousemove", *self.items()[0])

    def click(self, button=1):
        self.point()
        run("xdotool", "click", button)

    def double_click(self):
        self.point()
        double_click(*self.items()[0])


if __name__ == "__main__":
    Host().serve()
