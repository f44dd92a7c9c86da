"""A tray of the newer kind: a StatusNotifierWatcher on the session bus, and what its hosts do.

As a program it is the watcher; `NotifierTray` starts it and plays the host.
"""

import sys
import time

from gi.repository import Gio, GLib

NAME = "org.kde.StatusNotifierWatcher"
PATH = "/StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
INTERFACE = f"""<node><interface name="{NAME}">
  <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
  <property name="RegisteredStatusNotifierItems" type="as" access="read"/>
  <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
</interface></node>"""


def watch():
    """The watcher: keeps the list of items, whose owners leave it when they leave the bus."""
    items = []
    bus = Gio.bus_get_sync(Gio.BusType.SESSION)

    def register(_bus, sender, _path, _interface, _method, arguments, invocation):
        text, = arguments.unpack()
        service, path = (sender, text) if text.startswith("/") else (text, "/StatusNotifierItem")
        items.append((service, path))
        Gio.bus_watch_name_on_connection(
            bus, service, 0, None,
            lambda _bus, name: [items.remove(item) for item in items[:] if item[0] == name])
        invocation.return_value(None)

    def read(_bus, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", [a + b for a, b in items]),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True)}[name]

    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], register, read)
    Gio.bus_own_name_on_connection(bus, NAME, 0, None, lambda *_: sys.exit("the name is taken"))
    GLib.MainLoop().run()


class NotifierTray:
    def __init__(self, desktop):
        self.process = desktop.start("/usr/bin/python3", __file__)
        self.bus = Gio.DBusConnection.new_for_address_sync(
            desktop.env["DBUS_SESSION_BUS_ADDRESS"],
            Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT
            | Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION)

    def _call(self, service, path, interface, method, types, *arguments):
        return self.bus.call_sync(service, path, interface, method, GLib.Variant(types, arguments),
                                  None, 0, 20000)

    def _property(self, service, path, interface, name):
        return self._call(service, path, "org.freedesktop.DBus.Properties", "Get", "(ss)",
                          interface, name).unpack()[0]

    def items(self):
        if not self.is_up():
            return []
        items = self._property(NAME, PATH, NAME, "RegisteredStatusNotifierItems")
        return [(item[:item.index("/")], item[item.index("/"):]) for item in items]

    def is_up(self):
        return self._call("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "NameHasOwner",
                          "(s)", NAME).unpack()[0]

    def tool_tip(self):
        return self._property(*self.items()[0], ITEM, "ToolTip")[2]

    def click(self, button=1):
        """By the right button as a host does it that draws no menus."""
        method = {1: "Activate", 3: "ContextMenu"}[button]
        self._call(*self.items()[0], ITEM, method, "(ii)", 0, 0)

    def double_click(self):
        """Hosts of this kind know whole clicks only."""
        self.click()
        self.click()

    def _menu(self):
        item = self.items()[0]
        return item[0], self._property(*item, ITEM, "Menu"), MENU

    def menu(self):
        """The menu that hosts draw: number and caption of each entry."""
        self._call(*self._menu(), "AboutToShow", "(i)", 0)
        layout = self._call(*self._menu(), "GetLayout", "(iias)", 0, -1, []).unpack()[1]
        return [(number, values.get("label", "-")) for number, values, _ in layout[2]]

    def choose(self, caption):
        number = next(number for number, label in self.menu() if label == caption)
        # No answer is waited for: "Exit" ends the program before it could come.
        self.bus.call(*self._menu(), "Event", GLib.Variant(
            "(isvu)", (number, "clicked", GLib.Variant("i", 0), int(time.time()))), None, 0, 20000)
        self.bus.flush_sync()


if __name__ == "__main__":
    watch()
