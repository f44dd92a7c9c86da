"""A tray of the newer kind: a StatusNotifierWatcher, which this program is; and its host's work."""

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

    def register(_bus, _sender, _path, _interface, _method, arguments, invocation):
        items.extend(arguments.unpack())
        Gio.bus_watch_name_on_connection(
            bus, items[-1], 0, None, lambda _, name: items.remove(name))
        invocation.return_value(None)

    def read(_bus, _sender, _path, _interface, name):
        return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
                "IsStatusNotifierHostRegistered": GLib.Variant("b", True)}[name]

    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], register, read)
    Gio.bus_own_name_on_connection(bus, NAME, 0, None, lambda *_: sys.exit("the name is taken"))
    GLib.MainLoop().run()


class NotifierTray:
    def __init__(self, desktop):
        self.process = desktop.start("/usr/bin/python3", __file__)
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.bus.set_exit_on_close(False)

    def _proxy(self, *service_path_interface):
        return Gio.DBusProxy.new_sync(self.bus, 0, None, *service_path_interface)

    def is_up(self):
        return self._proxy(NAME, PATH, NAME).get_name_owner()

    def items(self):
        return self._proxy(NAME, PATH, NAME).get_cached_property("RegisteredStatusNotifierItems")

    def _item(self):
        return self._proxy(self.items()[0], "/StatusNotifierItem", ITEM)

    def tool_tip(self):
        return self._item().get_cached_property("ToolTip").unpack()[2]

    def click(self, button=1):
        """By the right button as a host does it that draws no menus."""
        {1: self._item().Activate, 3: self._item().ContextMenu}[button]("(ii)", 0, 0)

    def double_click(self):  # hosts of this kind know whole clicks only
        self.click()
        self.click()

    def _menu(self):
        item = self._item()
        return self._proxy(item.get_name(), item.get_cached_property("Menu").unpack(), MENU)

    def menu(self):
        """The menu that hosts draw: number and caption of each entry."""
        self._menu().AboutToShow("(i)", 0)
        _, (_, _, entries) = self._menu().GetLayout("(iias)", 0, -1, [])
        return [(number, values.get("label", "-")) for number, values, _ in entries]

    def choose(self, caption):
        number = next(number for number, label in self.menu() if label == caption)
        # No answer is waited for: "Exit" ends the program before it could come.
        self._menu().call("Event", GLib.Variant("(isvu)", (
            number, "clicked", GLib.Variant("i", 0), int(time.time()))), 0, 20000)
        self.bus.flush_sync()


if __name__ == "__main__":
    watch()
