"""An assistive client: finds the parts of the program's window by role and name, reads them and acts on them; and the
program in a trial, over a home folder of its own."""

import contextlib
import os
import signal
import subprocess
import time

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi  # noqa: E402

PATIENCE = 30.0  # seconds; nothing that is waited for takes as long


class Moved(Exception):
    """What was looked at went while it was looked at."""


def wait_for(what, probe):
    """The first answer of the probe that is not false; fails, naming what was waited for, when none comes."""
    deadline = time.monotonic() + PATIENCE
    while time.monotonic() < deadline:
        while gi.repository.GLib.MainContext.default().iteration(False):
            pass  # what an Ear hears
        try:
            answer = probe()
        except (Moved, gi.repository.GLib.Error):
            answer = None
        if answer:
            return answer
        time.sleep(0.05)
    raise AssertionError(f"{what} did not come")


def children(node):
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield child


def find(node, role, name=None):
    """The first part below with that role and, unless None, that name; None where there is none."""
    for child in children(node):
        if child.get_role_name() == role and name in (None, child.get_name()):
            return child
        found = find(child, role, name)
        if found is not None:
            return found
    return None


def everything(node):
    """All parts below, each before its own."""
    for child in children(node):
        yield child
        yield from everything(child)


def application(name):
    """The application of that name; None where none runs."""
    return next((child for child in children(Atspi.get_desktop(0)) if child.get_name() == name), None)


def has_state(node, state):
    return node.get_state_set().contains(state)


def is_showing(node):
    return has_state(node, Atspi.StateType.SHOWING)


def actions(node):
    interface = node.get_action_iface()
    return [interface.get_action_name(index) for index in range(interface.get_n_actions())]


def act(node, action):
    assert action in actions(node), f"{node.get_role_name()} {node.get_name()!r} cannot {action}"
    assert node.get_action_iface().do_action(actions(node).index(action))


class Ear:
    """Hears what the program tells its clients, as long as it is waited for something."""

    KINDS = (
        "object:property-change:accessible-name",
        "object:property-change:accessible-description",
        "object:property-change:accessible-value",
        "object:state-changed",
        "object:children-changed",
    )

    def __init__(self):
        self.heard = []  # (time, kind, role, name)
        self.listener = Atspi.EventListener.new(self.hear)
        for kind in self.KINDS:
            self.listener.register(kind)

    def hear(self, event):
        try:
            if event.source.get_application().get_name() == "Brimvault":
                name, role = event.source.get_name(), event.source.get_role_name()
                self.heard.append((time.monotonic(), event.type, role, name))
        except (AttributeError, gi.repository.GLib.Error):
            pass  # it went before it was looked at

    def names(self, kind, role):
        """Of the parts of that role that told of such a change."""
        return [name for _, heard, who, name in self.heard if heard.startswith(kind) and who == role]

    def has_told(self, kind, name):
        return any(heard.startswith(kind) and who == name for _, heard, _, who in self.heard)

    def most_in_a_second(self):
        times = [when for when, *_ in self.heard]
        return max((sum(first <= when < first + 1 for when in times) for first in times), default=0)


class Window:
    """The program's window; where it does not speak English, `sections` is the name of its list of sections."""

    def __init__(self, sections="Sections"):
        self.sections = sections
        self.application = wait_for("the program", lambda: application("Brimvault"))
        self.frame = wait_for("the window", lambda: find(self.application, "frame", "Brimvault"))

    def button(self, name):
        return wait_for(f"button {name!r}", lambda: find(self.frame, "push button", name))

    def press(self, name):
        act(self.button(name), "Press")

    def is_enabled(self, name):
        return has_state(self.button(name), Atspi.StateType.ENABLED)

    def is_idle(self):
        return find(self.frame, "push button", "Scan") and self.is_enabled("Scan")

    def section(self, title):
        return wait_for(f"section {title!r}", lambda: find(find(self.frame, "list", self.sections), "list item", title))

    def show_section(self, title):
        act(self.section(title), "SetFocus")

    def table(self, title):
        return wait_for(f"list {title!r}", lambda: find(self.frame, "table", title)).get_table_iface()

    def rows(self, title):
        """Name to (size text, checked, check cell) of every row."""
        table = self.table(title)
        rows = {}
        for row in range(table.get_n_rows()):
            check, name, size = (table.get_accessible_at(row, column) for column in (0, 2, 3))
            if None in (check, name, size):
                raise Moved
            rows[name.get_name()] = (size.get_name(), has_state(check, Atspi.StateType.CHECKED), check)
        return rows

    def select(self, title, name):
        """Selects the row of that name, as the arrow keys would."""

        def cell():
            table = self.table(title)
            cells = (table.get_accessible_at(row, 2) for row in range(table.get_n_rows()))
            return next((cell for cell in cells if cell is not None and cell.get_name() == name), None)

        act(wait_for(f"row {name!r}", cell), "SetFocus")
        wait_for(f"the selection of {name!r}", lambda: has_state(cell(), Atspi.StateType.SELECTED))

    def question(self):
        return find(self.application, "alert") or find(self.application, "dialog")

    def question_text(self):
        question = wait_for("a question", self.question)
        return [part.get_name() for part in everything(question) if part.get_role_name() == "label" and part.get_name()]

    def answer(self, button):
        dialog = wait_for("a question", self.question)
        act(wait_for(f"button {button!r}", lambda: find(dialog, "push button", button)), "Press")


@contextlib.contextmanager
def running(command, environment=(), ends_itself=False):
    """The process of the program; it is to be under way at the end, unless it ends itself, and is ended then."""
    # A group of its own, so that the wrappers and the program in them end together.
    process = subprocess.Popen(command, start_new_session=True, env={**os.environ, **dict(environment)})
    try:
        yield process
        assert ends_itself or process.poll() is None, "the program ended"
    finally:
        if process.poll() is None:
            os.killpg(process.pid, signal.SIGTERM)
            process.wait()


def make_home(sample_home, home):
    subprocess.run([sample_home, home], check=True, stdout=subprocess.DEVNULL)
