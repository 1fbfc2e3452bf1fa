"""An authentication agent for one process: agent.py PROCESS grant|refuse|hesitate QUESTIONS

Runs as the administrator, until its standard input is closed. Grants or refuses whatever is asked, and writes a line
to the file QUESTIONS each time; the first line says that it is ready. One that hesitates answers when the question is
withdrawn, and writes "withdrawn".
"""
import sys

from gi.repository import Gio, GLib

AUTHORITY = ("org.freedesktop.PolicyKit1", "/org/freedesktop/PolicyKit1/Authority",
             "org.freedesktop.PolicyKit1.Authority")
AGENT = "/com/quorvel/brimvault/agent"
INTERFACE = """<node><interface name="org.freedesktop.PolicyKit1.AuthenticationAgent">
  <method name="BeginAuthentication">
    <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="s" direction="in"/>
    <arg type="a{ss}" direction="in"/><arg type="s" direction="in"/><arg type="a(sa{sv})" direction="in"/>
  </method>
  <method name="CancelAuthentication"><arg type="s" direction="in"/></method>
</interface></node>"""

process, decision, questions = int(sys.argv[1]), sys.argv[2], sys.argv[3]
pending = []
bus = Gio.bus_get_sync(Gio.BusType.SYSTEM)


def tell(line):
    with open(questions, "a", encoding="ascii") as file:
        file.write(line + "\n")


def ask(method, parameters):
    bus.call_sync(*AUTHORITY, method, parameters, None, Gio.DBusCallFlags.NONE, -1, None)


def called(_bus, _sender, _path, _interface, method, parameters, invocation):
    if method == "BeginAuthentication":
        action, _message, _icon, _details, cookie, identities = parameters
        tell(action)
        if decision == "hesitate":
            pending.append(invocation)
            return
        if decision == "refuse":
            invocation.return_dbus_error("org.freedesktop.PolicyKit1.Error.Cancelled", "not now")
            return
        kind, details = identities[0]
        identity = (kind, {name: GLib.Variant("u", number) for name, number in details.items()})
        ask("AuthenticationAgentResponse2", GLib.Variant("(us(sa{sv}))", (0, cookie, identity)))
    if method == "CancelAuthentication":
        tell("withdrawn")
        for waiting in pending:
            waiting.return_value(None)
    invocation.return_value(None)


bus.register_object(AGENT, Gio.DBusNodeInfo.new_for_xml(INTERFACE).interfaces[0], called, None, None)
subject = ("unix-process", {"pid": GLib.Variant("u", process), "start-time": GLib.Variant("t", 0)})
ask("RegisterAuthenticationAgent", GLib.Variant("((sa{sv})ss)", (subject, "C", AGENT)))
tell("ready")
loop = GLib.MainLoop()
GLib.io_add_watch(0, GLib.IO_HUP, lambda *_: loop.quit())
loop.run()
