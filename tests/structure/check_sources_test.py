"""The checks of the sources find what they are there to find."""

import pathlib
import tempfile
import unittest

import check_sources

# Check, files of the checkout, what must be complained about (a file's name) or None.
CASES = [
    ("listed", {"src/CMakeLists.txt": "add_library(a a.cpp)", "src/a.cpp": ""}, None),
    ("listed", {"src/CMakeLists.txt": "add_library(a data.cpp)", "src/data.cpp": "",
                "src/a.cpp": ""}, "src/a.cpp"),
    ("listed", {"tests/CMakeLists.txt": "# a_test.cpp\n", "tests/a_test.cpp": ""},
     "tests/a_test.cpp"),
    ("listed", {"tests/x/CMakeLists.txt": "t(../support/a.cpp)", "tests/support/a.cpp": ""}, None),
    ("listed", {"fuzz/CMakeLists.txt": "f(${PROJECT_SOURCE_DIR}/fuzz/a.cpp)", "fuzz/a.cpp": ""},
     None),
    ("guards", {"src/a.h": "// Words.\n#pragma once\n"}, None),
    ("guards", {"src/a.h": "#include <vector>\n#pragma once\n"}, "src/a.h"),
    ("format", {"src/a.cpp": "int  a;\n", "src/b.cpp": "int b;\n"}, "src/a.cpp"),
    ("scripts", {"tools/a.sh": "#!/bin/bash\nif true; then\n"}, "tools/a.sh"),
    ("scripts", {"tools/a": "#!/usr/bin/env bash\ncd $1\n"}, "tools/a"),
    ("documents", {"README.md": "[a](docs/a.md)\n"}, "docs/a.md"),
    ("documents", {"README.md": "```\n./runn --fast\n```\n"}, "runn"),
    ("documents", {"README.md": "```\n./run --fast\n```\n[a](docs/b.md#c)", "docs/b.md": ""}, None),
]


class CheckSources(unittest.TestCase):
    def test_planted_faults(self):
        for check, files, expected in CASES:
            with self.subTest(check=check, files=files), tempfile.TemporaryDirectory() as folder:
                root = pathlib.Path(folder).resolve()
                for name in ("run", "test", ".ci/run"):
                    files.setdefault(name, "#!/bin/sh\n")
                for name, text in files.items():
                    path = root / name
                    path.parent.mkdir(parents=True, exist_ok=True)
                    path.write_text(text)
                    path.chmod(0o755)
                found = list(check_sources.CHECKS[check](root))
                if expected is None:
                    self.assertEqual(found, [])
                else:
                    self.assertEqual(len(found), 1, found)
                    self.assertIn(expected, found[0])


if __name__ == "__main__":
    unittest.main()
