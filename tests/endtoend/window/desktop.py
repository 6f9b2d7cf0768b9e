#!/usr/bin/python3
"""The desktop around a program's window: an X display, assistive technology and notifications.

Reads commands from the pipe given as its argument: one JSON list per line, with a method of `Desktop` and its
arguments. Answers each with a line of JSON on standard output, or with {"error": text}. Prints the display's
name first. Needs the session bus of its environment.
"""

import json
import os
import subprocess
import sys
import time
import zlib

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, Gio, GLib
from Xlib import X, display
from Xlib.protocol import event

SIZE = (1280, 900)
LAUNCHERS = [folder + "/at-spi-bus-launcher" for folder in ("/usr/libexec", "/usr/lib/at-spi2-core", "/usr/lib")]
NOTIFICATIONS = "org.freedesktop.Notifications"
METHODS = """<node><interface name="org.freedesktop.Notifications">
<method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
<arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
<method name="CloseNotification"><arg type="u" direction="in"/></method></interface></node>"""


def start(*command, **options):
    """Starts a program that ends with this one."""
    return subprocess.Popen(["setpriv", "--pdeathsig", "TERM", *command], **{"stdout": subprocess.DEVNULL, **options})


def wait_for(what, condition, seconds=10.0):
    """Returns the condition's first true answer; serves signals and calls meanwhile."""
    end = time.monotonic() + seconds
    while True:
        while GLib.MainContext.default().iteration(False):
            pass
        if answer := condition():
            return answer
        if time.monotonic() > end:
            raise LookupError("waited in vain for " + what)
        time.sleep(0.02)


def role_of(name):
    name = name.upper().replace(" ", "_")
    return getattr(Atspi.Role, name, None) or getattr(Atspi.Role, "PUSH_" + name)


def shown_below(at):
    """Yields an object and its visible descendants with their depths; skips vanished ones."""
    stack = [(at, 0)]
    while stack:
        at, depth = stack.pop()
        yield at, depth
        try:
            children = [at.get_child_at_index(i) for i in range(at.get_child_count())]
            shown = [c for c in children if c and c.get_state_set().contains(Atspi.StateType.VISIBLE)]
            stack += [(child, depth + 1) for child in reversed(shown)]
        except GLib.Error:
            pass


def facts(at):
    value, text, states = at.get_value_iface(), at.get_text_iface(), at.get_state_set()
    return {
        "role": at.get_role_name(),
        "name": at.get_name(),
        "description": at.get_description(),
        "value": value and value.get_current_value(),
        "text": text and Atspi.Text.get_text(text, 0, -1),
        **{word: states.contains(getattr(Atspi.StateType, word.upper())) for word in ("checked", "focused", "selected")},
    }


class Desktop:
    def __init__(self):
        server = start("Xvfb", "-displayfd", "1", "-screen", "0", "%dx%dx24" % SIZE, "-noreset", "-nolisten", "tcp",
                       stdout=subprocess.PIPE, text=True)
        self.name = os.environ["DISPLAY"] = ":" + server.stdout.readline().strip()
        self.display = display.Display(self.name)
        self.display.set_error_handler(lambda *_: None)
        self.root = self.display.screen().root
        start(next(path for path in LAUNCHERS if os.path.exists(path)), "--launch-immediately")
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        # Only for this process: programs ask the session bus for the address, as on any desktop.
        os.environ["AT_SPI_BUS_ADDRESS"] = wait_for("the accessibility bus", self.accessibility_bus)
        Atspi.init()
        Atspi.set_timeout(5000, 5000)
        self.program = self.service = None
        self.note, self.notes = {"id": 0}, 0

    def accessibility_bus(self):
        try:
            return self.bus.call_sync("org.a11y.Bus", "/org/a11y/bus", "org.a11y.Bus", "GetAddress", None, None, 0, -1).unpack()[0]
        except GLib.Error:
            return ""

    # Assistive technology

    def meet(self, process):
        """Selects the program for all later commands; waits until it has a window."""

        def program():
            desktop = Atspi.get_desktop(0)
            desktop.set_cache_mask(Atspi.Cache.NONE)
            for index in range(desktop.get_child_count()):
                each = desktop.get_child_at_index(index)
                if each and each.get_process_id() == process and each.get_child_count() > 0:
                    each.set_cache_mask(Atspi.Cache.NONE)
                    return each
            return None

        self.program = wait_for("a window that assistive technology knows of", program)

    def look_up(self, role, name, description):
        for at, _ in shown_below(self.program):
            try:
                if at.get_role() == role_of(role) and name in ("", at.get_name()) and description in ("", at.get_description()):
                    return at
            except GLib.Error:
                pass
        return None

    def find(self, role, name, description):
        """Returns the first match in reading order; an empty name or description matches any."""
        what = f"{role} {name} ({description})"
        return wait_for(what, lambda: self.look_up(role, name, description), 5.0)

    def read(self, *sought):
        return facts(self.find(*sought))

    def hides(self, *sought):
        return wait_for("the end of " + sought[1], lambda: self.look_up(*sought) is None, 5.0)

    def press(self, *sought):
        action = self.find(*sought).get_action_iface()
        names = [action.get_action_name(i) for i in range(action.get_n_actions())]
        return action.do_action(names.index("Press" if "Press" in names else "Toggle"))

    def set(self, value, *sought):
        return self.find(*sought).get_value_iface().set_current_value(value)

    def type(self, text):
        """Types into the focused item, because Qt Quick up to 6.4 cannot set a field's content."""
        return Atspi.generate_keyboard_event(0, text, Atspi.KeySynthType.STRING)

    def tree(self):
        return "\n".join("  " * depth + str(facts(at)) for at, depth in shown_below(self.program))

    # The display; this program is its window manager

    def windows(self):
        """Yields each window, its title (possibly empty) and whether it is shown, lowest first."""
        title = self.display.intern_atom("_NET_WM_NAME")
        for window in self.root.query_tree().children:
            try:
                text = window.get_full_property(title, X.AnyPropertyType)
                yield window, text.value.decode() if text else "", window.get_attributes().map_state == X.IsViewable
            except Exception:  # the window has gone
                pass

    def frame(self):
        return wait_for("the window", lambda: [each for each, title, _ in self.windows() if title == "Ostrafine"])[-1]

    def shows_window(self):
        return any(title == "Ostrafine" and shown for _, title, shown in self.windows())

    def is_in_front(self):
        return [title for _, title, shown in self.windows() if shown][-1:] == ["Ostrafine"]

    def picture(self):
        """Checksum of the whole screen."""
        return zlib.crc32(self.root.get_image(0, 0, *SIZE, X.ZPixmap, 0xFFFFFFFF).data)

    def cover(self):
        """Covers the display with another program's window, until the display ends."""
        self.root.create_window(0, 0, *SIZE, 0, X.CopyFromParent).map()
        self.display.sync()

    def close(self):
        protocols, delete = (self.display.intern_atom("WM_" + name) for name in ("PROTOCOLS", "DELETE_WINDOW"))
        frame = self.frame()
        frame.send_event(event.ClientMessage(window=frame, client_type=protocols, data=(32, [delete, 0, 0, 0, 0])))
        self.display.sync()

    def minimise(self):
        """Minimises the window as window managers do (ICCCM 4.1.3.1 and 4.1.4)."""
        state = self.display.intern_atom("WM_STATE")
        frame = self.frame()
        frame.change_property(state, state, 32, [3, 0])
        frame.unmap()
        self.display.sync()

    # Notifications

    def notify(self, is_there):
        """Switches the notification service on or off; off at first."""

        def answer(_bus, _sender, _path, _interface, method, arguments, call):
            self.note = {"id": 0}
            if method == "Notify":
                self.notes += 1
                self.note = {"id": self.notes, "summary": arguments[3], "actions": arguments[5]}
            call.return_value(GLib.Variant("(u)", (self.notes,)) if method == "Notify" else None)

        if is_there:
            interface = Gio.DBusNodeInfo.new_for_xml(METHODS).interfaces[0]
            self.service = self.bus.register_object("/org/freedesktop/Notifications", interface, answer, None, None)
        else:
            self.bus.unregister_object(self.service)
        self.bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "RequestName" if is_there else "ReleaseName",
                           GLib.Variant("(su)", (NOTIFICATIONS, 0)) if is_there else GLib.Variant("(s)", (NOTIFICATIONS,)),
                           None, 0, -1)

    def notification(self):
        return self.note

    def choose(self, action):
        """Presses a button of the notification."""
        self.bus.emit_signal(None, "/org/freedesktop/Notifications", NOTIFICATIONS, "ActionInvoked",
                             GLib.Variant("(us)", (self.note["id"], action)))


def main():
    desktop = Desktop()
    pipe = os.open(sys.argv[1], os.O_RDWR)
    pending = b""

    def take(_pipe, _condition):
        nonlocal pending
        pending += os.read(pipe, 65536)
        *lines, pending = pending.split(b"\n")
        for line in lines:
            command, *arguments = json.loads(line)
            try:
                answer = getattr(desktop, command)(*arguments)
            except Exception as problem:  # reports any failure to the test
                answer = {"error": f"{command}: {problem!r}"}
            print(json.dumps(answer), flush=True)
        return True

    GLib.io_add_watch(pipe, GLib.IO_IN, take)
    print(json.dumps(desktop.name), flush=True)
    GLib.MainLoop().run()


main()
