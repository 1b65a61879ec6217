#!/usr/bin/python3
"""What a screen reader finds in a program's windows.

usage: screen_reader.py PROCESS-ID

Reads commands, one a line, and answers each with one line of JSON:
  list            the controls, those of a parent after it: name, role, description, value,
                  frame [x, y, width, height] on the screen, states
  do ACTION NAME  does the action ("Increase", "Press") of the first control of that name;
                  whether there was one that did it
"""

import json
import sys

import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

STATES = {
    "showing": Atspi.StateType.SHOWING,
    "focused": Atspi.StateType.FOCUSED,
    "checked": Atspi.StateType.CHECKED,
    "enabled": Atspi.StateType.ENABLED,
}


def children(item):
    """The children that are there; those that go meanwhile are left out."""
    for index in range(item.get_child_count()):
        try:
            child = item.get_child_at_index(index)
        except GLib.Error:
            child = None
        if child is not None:
            yield child


def everything_in(item):
    for child in children(item):
        yield child
        yield from everything_in(child)


def program(process):
    """The program's own root, as it is now: nothing that was heard of it before counts."""
    while GLib.MainContext.default().iteration(False):
        pass
    desktop = Atspi.get_desktop(0)
    desktop.clear_cache()
    for item in children(desktop):
        if item.get_process_id() == process:
            item.clear_cache()
            return item
    return None


def described(item):
    value = item.get_value_iface()
    extents = item.get_extents(Atspi.CoordType.SCREEN)
    states = item.get_state_set()
    return {
        "name": item.get_name(),
        "role": item.get_role_name(),
        "description": item.get_description(),
        "value": value.get_current_value() if value else 0,
        "frame": [extents.x, extents.y, extents.width, extents.height],
        "states": [name for name, state in STATES.items() if states.contains(state)],
    }


def controls(root):
    found = []
    for item in everything_in(root):
        try:
            found.append(described(item))
        except GLib.Error:
            pass  # gone meanwhile
    return found


def do(root, action, name):
    for item in everything_in(root):
        if item.get_name() != name:
            continue
        for index in range(item.get_n_actions()):
            if item.get_action_name(index) == action:
                return item.do_action(index)
    return False


def main():
    process = int(sys.argv[1])
    for line in sys.stdin:
        command, *operands = line.rstrip("\n").split(" ", 2)
        root = program(process)
        try:
            if root is None:
                answer = [] if command == "list" else False
            elif command == "list":
                answer = controls(root)
            else:
                answer = do(root, *operands)
        except GLib.Error as error:
            print(f"screen_reader.py: {command}: {error}", file=sys.stderr)
            answer = [] if command == "list" else False
        print(json.dumps(answer), flush=True)


if __name__ == "__main__":
    main()
