"""Checks what the compiler does not: that every file takes part and looks as agreed.

    check_sources.py ROOT CHECK

listed    every .cpp below src, tests, fuzz and bench is named by a CMakeLists.txt
guards    every header says #pragma once before anything else but comments
format    clang-format would change nothing
scripts   shell scripts pass bash -n and shellcheck
documents links and commands in the documentation lead to files that exist
"""

import pathlib
import re
import subprocess
import sys

FOLDERS = ("src", "tests", "fuzz", "bench")


def files_of(root, *suffixes, folders=FOLDERS):
    """In a stable order, without anything that was built."""
    found = []
    for folder in folders:
        for path in (root / folder).rglob("*"):
            if path.suffix in suffixes and path.is_file():
                found.append(path)
    return sorted(found)


def check_listed(root):
    listed = set()
    for lists in [f for f in files_of(root, ".txt") if f.name == "CMakeLists.txt"]:
        text = re.sub(r"#.*", "", lists.read_text(encoding="utf-8"))
        text = text.replace("${PROJECT_SOURCE_DIR}", str(root))
        text = text.replace("${CMAKE_CURRENT_SOURCE_DIR}", str(lists.parent))
        listed.update((lists.parent / name).resolve() for name in re.findall(r"[^\s()\"]+\.cpp", text))
    for path in files_of(root, ".cpp"):
        if path not in listed:
            yield f"{path.relative_to(root)}: no CMakeLists.txt names it, so it is never built"


def check_guards(root):
    for path in files_of(root, ".h"):
        text = re.sub(r"^\s*(//.*\n\s*)*", "", path.read_text(encoding="utf-8"))
        if not text.startswith("#pragma once\n"):
            yield f"{path.relative_to(root)}: does not begin with #pragma once"


def check_format(root):
    paths = files_of(root, ".h", ".cpp")
    result = subprocess.run(
        ["clang-format-14", "--dry-run", "--ferror-limit=1", "-Werror", "--style=file", *paths],
        cwd=root, capture_output=True, text=True, check=False)
    unformatted = sorted(set(re.findall(r"^(\S+?):\d+:\d+: error", result.stderr, re.MULTILINE)))
    for path in unformatted:
        yield f"{pathlib.Path(path).relative_to(root)}: run clang-format-14 -i on it"
    if result.returncode != 0 and not unformatted:
        yield result.stderr


def shell_scripts(root):
    for path in [root / "run", root / "test", root / ".ci/run",
                 *files_of(root, "", ".sh", folders=("tools", "tests", "bench", "packaging"))]:
        with path.open("rb") as file:
            start = file.readline()
        if path.suffix == ".sh" or (start.startswith(b"#!") and b"sh" in start):
            yield path


def check_scripts(root):
    for path in shell_scripts(root):
        for command in (["bash", "-n"], ["shellcheck", "--external-sources"]):
            result = subprocess.run([*command, path], cwd=root, capture_output=True, text=True,
                                    check=False)
            if result.returncode != 0:
                yield f"{path.relative_to(root)}: {' '.join(command)}:\n{result.stdout}{result.stderr}"
                break


LINK = re.compile(r"\]\(([^)#\s]+)(?:#[^)]*)?\)")


def check_documents(root):
    for path in [*root.glob("*.md"), *files_of(root, ".md", folders=("docs",))]:
        text = path.read_text(encoding="utf-8")
        shown = path.relative_to(root)
        for target in LINK.findall(text):
            if "://" not in target and not (path.parent / target).exists():
                yield f"{shown}: links to {target}, which does not exist"
        for block in re.findall(r"^```\w*\n(.*?)^```", text, re.MULTILINE | re.DOTALL):
            for line in block.splitlines():
                command = re.match(r"(?:\$ )?\./([\w./-]+)|(?:\$ )?((?:tools|bench)/[\w./-]+)", line)
                name = command and (command[1] or command[2])
                if name and not name.startswith("build/"):
                    file = root / name
                    if not file.is_file() or not file.stat().st_mode & 0o100:
                        yield f"{shown}: tells to run {name}, which is no program here"


CHECKS = {
    "listed": check_listed,
    "guards": check_guards,
    "format": check_format,
    "scripts": check_scripts,
    "documents": check_documents,
}

if __name__ == "__main__":
    problems = list(CHECKS[sys.argv[2]](pathlib.Path(sys.argv[1]).resolve()))
    print("\n".join(problems) or "Nothing to complain about.")
    sys.exit(1 if problems else 0)
