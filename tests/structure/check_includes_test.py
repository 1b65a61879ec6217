"""The check of the includes finds what it is there to find, and nothing else."""

import pathlib
import tempfile
import unittest

import check_includes

# A file, what it includes, and what the check says of it (None: nothing).
CASES = [
    ("devices/a.cpp", '"audio/mixer_model.h"', "may not include src/audio "),
    ("audio/a.cpp", '"devices/output_devices.h"', None),
    ("audio/objects/a.cpp", '"audio/mixer_model.h"', "may not include src/audio "),
    ("audio/objects/a.cpp", '"base/log.h"', None),
    ("audio/a.cpp", '"adapters/stage/simulated_hal.h"', "may not include src/adapters/stage"),
    ("base/a.h", '"platform/clock.h"', "may not include src/platform"),
    ("platform/a.h", '"devices/output_devices.h"', "may not include src/devices"),
    ("adapters/stage/a.cpp", '"adapters/linux/dbus/mixer_names.h"', "may not include"),
    ("adapters/linux/dbus/a.cpp", '"adapters/linux/pipewire/pipewire_audio.h"', "may not include"),
    ("adapters/linux/dbus/a.cpp", '"main/ctl/ctl_program.h"', "may not include src/main/ctl"),
    ("main/a.cpp", '"adapters/linux/pipewire/pipewire_audio.h"', None),
    ("audio/a.cpp", '"../devices/output_devices.h"', "is relative"),
    ("audio/a.cpp", '"audio/../devices/output_devices.h"', "is relative"),
    ("audio/a.cpp", '"mixer_model.h"', "has no folder"),
    ("audio/a.cpp", '"audio/gone.h"', "is no file"),
    ("audio/a.cpp", "<QString>", "is portable"),
    ("audio/a.cpp", "<QtCore/qstring.h>", "is portable"),
    ("devices/a.cpp", "<unistd.h>", "is portable"),
    ("platform/a.h", "<sys/types.h>", "is portable"),
    ("adapters/stage/a.cpp", "<pipewire/pipewire.h>", "is portable"),
    ("audio/a.cpp", "<nlohmann/json.hpp>", None),
    ("devices/a.cpp", "<nlohmann/json.hpp>", "is portable"),
    ("audio/render/a.cpp", "<immintrin.h>", None),
    ("audio/a.cpp", "<shared_mutex>", None),
    ("adapters/linux/pipewire/a.cpp", "<pipewire/pipewire.h>", None),
    ("nowhere/a.cpp", "<vector>", "is in no room"),
]

EXISTING = [
    "adapters/linux/dbus/mixer_names.h",
    "adapters/linux/pipewire/pipewire_audio.h",
    "adapters/stage/simulated_hal.h",
    "audio/mixer_model.h",
    "base/log.h",
    "devices/output_devices.h",
    "main/ctl/ctl_program.h",
    "platform/clock.h",
]


class CheckIncludes(unittest.TestCase):
    def test_planted_includes(self):
        for file, include, expected in CASES:
            with self.subTest(file=file, include=include), tempfile.TemporaryDirectory() as root:
                for name in [*EXISTING, file]:
                    path = pathlib.Path(root) / "src" / name
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.touch()
                path.write_text(f"// A comment.\n#include {include}\n")
                found = check_includes.faults(root)
                if expected is None:
                    self.assertEqual(found, [])
                else:
                    self.assertEqual(len(found), 1)
                    self.assertTrue(found[0].startswith(f"src/{file}:"), found[0])
                    self.assertIn(expected, found[0])


if __name__ == "__main__":
    unittest.main()
