"""The check of the icons finds what it is there to find, and nothing else."""

import pathlib
import tempfile
import unittest

import check_icons


def drawing(content, side=24):
    return (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {side} {side}">'
            f"{content}</svg>")


PLAIN = drawing('<path d="M1 1H9"/>')
WAVES = "".join(f'<g id="{name}"/>' for name in ("body", "wave1", "wave2", "wave3"))
ICONS = "src/views/icons/"
STAGE = "src/main/stage/"

# Files beside the sound ones below, and what must be said of them (None: nothing).
CASES = [
    ({"src/a.cpp": 'return "speaker.fill";'}, None),
    ({"src/a.cpp": 'return mac ? "display" : "speaker.fill";\n'}, "symbol display;"),
    ({"src/a.cpp": '\n  Rule{"airpods max", "airpodsmax"}'}, "src/a.cpp:2: names"),
    ({"src/views/A.qml": "Symbol { name: 'chevron.up' }"}, "symbol chevron.up;"),
    ({"src/views/A.qml": 'source: "qrc:/plemora/icons/gear.svg"'}, "symbol gear;"),
    ({"src/a.cpp": """f(48'000, "speaker.none", 96'000);"""}, "symbol speaker.none;"),
    ({"src/a.cpp": 'f("https://a", "chevron.up");'}, "symbol chevron.up;"),
    # Other texts with dots, other words, and comments.
    ({"src/a.cpp": 'f("app.js", "com.quorvane.mixer", "fill", "display name", "speaker");'}, None),
    ({"src/a.h": '// Such as "hifispeaker.fill".'}, None),
    ({ICONS + "speaker.fill.svg": "<svg"}, "is no XML"),
    ({ICONS + "speaker.fill.svg": drawing("", 16)}, "view box"),
    ({ICONS + "speaker.fill.svg": drawing("<mask/>")}, "holds <mask>"),
    ({ICONS + "speaker.fill.svg": drawing("<linearGradient/>")}, "holds <linearGradient>"),
    ({ICONS + "speaker.fill.svg": drawing('<path style="fill:none"/>')}, "has style="),
    ({ICONS + "speaker.fill.svg": drawing('<path stroke="#111"/>')}, "stroke=#111"),
    ({ICONS + "speaker.wave.3.fill.svg": drawing(WAVES.replace("wave2", "two"))}, "the groups"),
    ({ICONS + "questionmark.app.svg": drawing('<linearGradient/><path fill="red"/>')}, None),
    ({ICONS + "tv.svg": PLAIN}, "tv.svg is drawn but not listed"),
    ({ICONS + "speaker.fill.svg": None}, "speaker.fill.svg is not drawn"),
    # What is drawn for the stage is the stage's alone.
    ({STAGE + "symbols/play.fill.svg": PLAIN, STAGE + "a.cpp": 'f("play.fill");'}, None),
    ({STAGE + "symbols/play.fill.svg": PLAIN, "src/a.cpp": 'f("play.fill");'}, "symbol play.fill;"),
    ({STAGE + "a.cpp": 'f("play.fill");'}, "draw src/main/stage/symbols/play.fill.svg"),
    ({STAGE + "symbols/play.fill.svg": drawing("<mask/>")}, "holds <mask>"),
    ({"packaging/icons/com.quorvane.mixer.svg": None}, "is missing"),
    ({"packaging/icons/com.quorvane.mixer-symbolic.svg": drawing("", 24)}, "view box"),
]

SOUND = {
    ICONS + "speaker.fill.svg": PLAIN,
    ICONS + "speaker.wave.3.fill.svg": drawing(WAVES),
    ICONS + "questionmark.app.svg": PLAIN,
    ICONS + "icons.qrc": "<file>speaker.fill.svg</file>\n<file>speaker.wave.3.fill.svg</file>\n"
                         "<file>questionmark.app.svg</file>\n",
    "packaging/icons/com.quorvane.mixer.svg": drawing('<path fill="#f80"/>', 128),
    "packaging/icons/com.quorvane.mixer-symbolic.svg": drawing("<path/>", 16),
}


class CheckIcons(unittest.TestCase):
    def test_planted_faults(self):
        for files, expected in CASES:
            with self.subTest(files=files), tempfile.TemporaryDirectory() as root:
                for name, text in (SOUND | files).items():
                    path = pathlib.Path(root) / name
                    path.parent.mkdir(parents=True, exist_ok=True)
                    if text is not None:
                        path.write_text(text)
                found = list(check_icons.faults(root))
                if expected is None:
                    self.assertEqual(found, [])
                else:
                    self.assertEqual(len(found), 1, found)
                    self.assertIn(expected, found[0])


if __name__ == "__main__":
    unittest.main()
