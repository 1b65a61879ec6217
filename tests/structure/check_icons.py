"""Checks the icons: each symbol that the sources name is drawn, and drawn so that it can be shown.

    check_icons.py ROOT

A symbol is a template: black on nothing, tinted when it is shown, and told apart by its name alone.
What Qt's renderer would silently leave out (masks, filters, style sheets) is refused here.
"""

import pathlib
import re
import sys
import xml.etree.ElementTree

SVG = "{http://www.w3.org/2000/svg}"

SHAPES = {"svg", "g", "path", "rect", "circle", "ellipse"}
PAINT = {"defs", "linearGradient", "stop"}
COLOURS = {"none", "#000"}

# Icons that are shown in the colours that they are drawn in.
COLOURED = {"questionmark.app", "com.quorvane.mixer"}

# Parts that are shown on their own, in the order in which they are drawn: the waves of a
# loudspeaker fade one after the other.
GROUPS = {
    "speaker.wave.1.fill": ["body", "wave1"],
    "speaker.wave.2.fill": ["body", "wave1", "wave2"],
    "speaker.wave.3.fill": ["body", "wave1", "wave2", "wave3"],
}

LITERAL = re.compile(r"\"((?:[^\"\\\n]|\\.)*)\"|(?<![0-9])'((?:[^'\\\n]|\\.)*)'")
COMMENT = re.compile(r"(?<![:/])//.*")
# Nothing but the words tells the name of a symbol from any other text.
SYMBOL = re.compile(
    r"(?:[a-z0-9]+\.)+fill"
    r"|(?:airplay|arrow|beats|chevron|checkmark|hifispeaker|music|speaker|xmark)(?:\.[a-z0-9]+)+"
    r"|airpods(?:[a-z]+)?|(?:desktop|laptop)computer|checkmark|display|headphones|tv|xmark")
# Symbols of the simulated desktop, which the program itself does without.
STAGE_ICONS = "src/main/stage/symbols"
STAGE_SOURCES = ("src/main/stage/", "src/adapters/stage/")
ADDRESS = re.compile(r"plemora/icons/([a-z0-9.]+)\.svg$")


def symbols_named_by(text):
    """(name, line) of each symbol that a source names in a string."""
    text = COMMENT.sub("", text)
    for match in LITERAL.finditer(text):
        literal = match[1] if match[1] is not None else match[2]
        address = ADDRESS.search(literal)
        if address or SYMBOL.fullmatch(literal):
            yield address[1] if address else literal, text.count("\n", 0, match.start()) + 1


def faults_of_drawing(path, side):
    """What is wrong with one icon; side: of its view box, in its own units."""
    name = path.name.removesuffix(".svg")
    try:
        root = xml.etree.ElementTree.parse(path).getroot()
    except xml.etree.ElementTree.ParseError as error:
        yield f"is no XML: {error}"
        return
    if root.tag != f"{SVG}svg" or root.get("viewBox") != f"0 0 {side} {side}":
        yield f'has the view box "{root.get("viewBox")}"; draw it in "0 0 {side} {side}"'
    coloured = name in COLOURED
    for element in root.iter():
        tag = element.tag.removeprefix(SVG)
        if tag not in SHAPES and not (coloured and tag in PAINT):
            yield f"holds <{tag}>, which is not drawn everywhere; use {', '.join(sorted(SHAPES))}"
        for attribute in ("style", "class", "mask", "filter", "clip-path"):
            if element.get(attribute) is not None:
                yield f"<{tag}> has {attribute}=, which is not drawn everywhere"
        for attribute in ("fill", "stroke", "color"):
            colour = element.get(attribute)
            if not coloured and colour is not None and colour not in COLOURS:
                yield f"<{tag}> has {attribute}={colour}; a symbol is black, #000"
    groups = [g.get("id") for g in root.findall(f"{SVG}g") if g.get("id")]
    if name in GROUPS and groups != GROUPS[name]:
        yield f"has the groups {groups}; what shows it needs {GROUPS[name]}"


def faults(root):
    root = pathlib.Path(root)
    folder = root / "src/views/icons"
    drawn = {path.name.removesuffix(".svg"): path for path in sorted(folder.glob("*.svg"))}

    on_stage = {path.name.removesuffix(".svg"): path
                for path in sorted((root / STAGE_ICONS).glob("*.svg"))}

    sides = [(path, 24) for path in [*drawn.values(), *on_stage.values()]]
    sides.append((root / "packaging/icons/com.quorvane.mixer.svg", 128))
    sides.append((root / "packaging/icons/com.quorvane.mixer-symbolic.svg", 16))
    for path, side in sides:
        shown = path.relative_to(root)
        if not path.is_file():
            yield f"{shown}: is missing"
            continue
        for fault in faults_of_drawing(path, side):
            yield f"{shown}: {fault}"

    catalogue = (folder / "icons.qrc").read_text(encoding="utf-8")
    listed = set(re.findall(r"<file>(.*)\.svg</file>", catalogue))
    for name in sorted(listed ^ set(drawn)):
        what = "is not drawn" if name in listed else "is drawn but not listed"
        yield f"src/views/icons/icons.qrc: {name}.svg {what}"

    for path in sorted((root / "src").rglob("*")):
        if path.suffix in (".h", ".cpp", ".qml", ".js"):
            shown = path.relative_to(root).as_posix()
            is_stage = shown.startswith(STAGE_SOURCES)
            for name, line in symbols_named_by(path.read_text(encoding="utf-8")):
                if name not in drawn and not (is_stage and name in on_stage):
                    place = STAGE_ICONS if is_stage else "src/views/icons"
                    yield f"{shown}:{line}: names the symbol {name}; draw {place}/{name}.svg"


if __name__ == "__main__":
    problems = list(faults(sys.argv[1]))
    print("\n".join(problems) or "Every symbol is drawn.")
    sys.exit(1 if problems else 0)
