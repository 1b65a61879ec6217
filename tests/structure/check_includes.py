"""Checks who includes whom: what each folder of src/ may see of the others and of the system.

    check_includes.py ROOT

Prints every include that the plan of the house forbids and fails if there is one. The plan is the
table below; docs/architecture.md draws it.
"""

import pathlib
import re
import sys

# Room (a folder below src) -> the rooms whose headers it may include, beside its own.
# A room that another one may see brings along what it may see itself.
ROOMS = {
    "base": [],
    "platform": ["base"],
    "audio/objects": ["platform"],
    "audio/render": ["platform"],
    "devices": ["audio/objects"],
    "audio": ["audio/objects", "audio/render", "devices"],
    "skin/look": ["platform"],
    "app/services": ["platform"],
    "controlcenter": ["platform"],
    "menubar": ["audio", "devices", "controlcenter", "skin/look", "app/services"],
    "skin": ["menubar"],
    "onboarding": ["menubar"],
    "app": ["menubar", "skin", "onboarding"],
    "glass": ["skin/look"],
    "views": ["skin", "onboarding", "glass"],
    "adapters/files": ["platform"],
    "adapters/stage": ["audio"],
    "adapters/stage/desktop": ["adapters/stage"],
    "adapters/linux/desktop": ["audio", "adapters/files"],
    "adapters/linux/pipewire": ["audio", "adapters/linux/desktop"],
    "adapters/linux/dbus": ["audio"],
    "adapters/linux/windows": ["views", "adapters/linux/desktop"],
    "adapters/linux/tray": ["views", "adapters/linux/desktop"],
    "main/process": [],
    "main/ctl": ["adapters/linux/dbus", "main/process"],
    "main/gallery": ["adapters/stage", "views"],
    "main/stage": [
        "app",
        "views",
        "main/process",
        "main/gallery",
        "adapters/files",
        "adapters/stage/desktop",
        "adapters/linux/pipewire",
    ],
    "main": [
        "main/ctl",
        "main/process",
        "controlcenter",
        "adapters/files",
        "adapters/linux/pipewire",
    ],
    "main/ui": ["main", "main/gallery", "adapters/linux/windows", "adapters/linux/tray"],
}

# Rooms that know nothing of an operating system or a toolkit: the C++ standard library (names
# without a dot or a slash, none of which begins with a capital) and what is listed here.
PORTABLE = {
    "base": {"plist/plist.h"},
    "platform": set(),
    "audio/objects": set(),
    "audio/render": {"arm_neon.h", "emmintrin.h", "immintrin.h"},
    "devices": set(),
    "skin/look": set(),
    "app/services": set(),
    "controlcenter": {"nlohmann/json.hpp"},
    "menubar": set(),
    "skin": {"nlohmann/json.hpp"},
    "onboarding": set(),
    "app": set(),
    "glass": {"arm_neon.h", "emmintrin.h", "immintrin.h"},
    "audio": {"nlohmann/json.hpp"},
    "adapters/stage": {"nlohmann/json.hpp"},
    "adapters/stage/desktop": {"nlohmann/json.hpp", "plist/plist.h"},
}

INCLUDE = re.compile(r'^\s*#\s*(?:include|import)\s*([<"])([^>"]+)[>"]', re.MULTILINE)
STANDARD = re.compile(r"^[a-z_0-9]+$")


def room_of(path):
    """The innermost room that holds a path relative to src/, or None."""
    parts = path.split("/")[:-1]
    while parts:
        if "/".join(parts) in ROOMS:
            return "/".join(parts)
        parts.pop()
    return None


def visible_from(room):
    seen, left = {room}, list(ROOMS[room])
    while left:
        other = left.pop()
        if other not in seen:
            seen.add(other)
            left += ROOMS[other]
    return seen


def faults_of_include(room, kind, name, source):
    if kind == "<":
        if room in PORTABLE and not STANDARD.match(name) and name not in PORTABLE[room]:
            return f"src/{room} is portable and may not include <{name}>"
        return None
    if name.startswith(".") or "/../" in name:
        return f'"{name}" is relative; write the path below src/'
    if "/" not in name:
        # Made by Qt's code generator beside the source.
        if name.endswith(".moc") or name.startswith("moc_"):
            return None
        return f'"{name}" has no folder; write the path below src/'
    target = room_of(name)
    if target is None or not (source / name).is_file():
        return f'"{name}" is no file below src/'
    if target not in visible_from(room):
        return f"src/{room} may not include src/{target} ({name})"
    return None


def faults(root):
    """Every fault as 'file:line: what'."""
    source = pathlib.Path(root) / "src"
    found = []
    for path in sorted(source.rglob("*")):
        if path.suffix not in (".h", ".cpp"):
            continue
        relative = path.relative_to(source).as_posix()
        room = room_of(relative)
        if room is None:
            found.append(f"src/{relative}:1: is in no room; add its folder to ROOMS in {__file__}")
            continue
        text = path.read_text(encoding="utf-8")
        for match in INCLUDE.finditer(text):
            fault = faults_of_include(room, match[1], match[2], source)
            if fault:
                line = text.count("\n", 0, match.start(1)) + 1
                found.append(f"src/{relative}:{line}: {fault}")
    return found


if __name__ == "__main__":
    problems = faults(sys.argv[1])
    print("\n".join(problems) or "Every include follows the plan.")
    sys.exit(1 if problems else 0)
