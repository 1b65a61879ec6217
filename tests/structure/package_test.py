"""Makes the Debian package of a build folder and looks into it; installs nothing.

    package_test.py CPACK BUILD_FOLDER
"""

import gzip
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

EXPECTED = {
    "usr/bin/plemora": 0o755,
    "usr/bin/plemoractl": 0o755,
    "usr/lib/plemora/plemora-gallery.so": 0o644,
    "usr/lib/plemora/plemora-panel.so": 0o644,
    "usr/lib/plemora/plemora-ui.so": 0o644,
    "usr/lib/systemd/user/plemora.service": 0o644,
    "usr/share/applications/com.quorvane.mixer.desktop": 0o644,
    "usr/share/bash-completion/completions/plemora": 0o644,
    "usr/share/bash-completion/completions/plemoractl": 0o644,
    "usr/share/dbus-1/services/com.quorvane.mixer.service": 0o644,
    "usr/share/doc/plemora/changelog.gz": 0o644,
    "usr/share/doc/plemora/copyright": 0o644,
    "usr/share/fish/vendor_completions.d/plemoractl.fish": 0o644,
    "usr/share/icons/hicolor/scalable/apps/com.quorvane.mixer.svg": 0o644,
    "usr/share/icons/hicolor/symbolic/apps/com.quorvane.mixer-symbolic.svg": 0o644,
    "usr/share/man/man1/plemora.1.gz": 0o644,
    "usr/share/man/man1/plemoractl.1.gz": 0o644,
    "usr/share/metainfo/com.quorvane.mixer.metainfo.xml": 0o644,
    "usr/share/zsh/site-functions/_plemoractl": 0o644,
}

CPACK, BUILD = None, None


def run(*command):
    result = subprocess.run(command, capture_output=True, text=True)
    if result.returncode != 0:
        raise AssertionError(f"{' '.join(map(str, command))}:\n{result.stdout}{result.stderr}")
    return result.stdout


class PackageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        made = pathlib.Path(cls.folder.name)
        run(CPACK, "-G", "DEB", "--config", BUILD / "CPackConfig.cmake", "-B", made)
        (cls.package,) = made.glob("plemora_*.deb")
        cls.root = made / "root"
        run("dpkg-deb", "--raw-extract", cls.package, cls.root)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def field(self, name):
        return run("dpkg-deb", "--field", self.package, name).strip()

    def test_holds_these_files_and_no_others(self):
        found = {
            path.relative_to(self.root).as_posix(): path.stat().st_mode & 0o7777
            for path in self.root.rglob("*")
            if path.is_file() and "DEBIAN" not in path.parts
        }
        self.assertEqual(found, EXPECTED)

    def test_needs_what_it_links_and_what_it_loads(self):
        names = set(re.findall(r"(?:^|[,|] *)([a-z0-9.+-]+)", self.field("Depends")))
        for name in ("libc6", "libpipewire-0.3-0", "libqt6core6", "libqt6dbus6",
                     "qml6-module-qtquick", "qml6-module-qtqml-workerscript"):
            self.assertIn(name, names)
        self.assertEqual(self.field("Package"), "plemora")
        self.assertRegex(self.field("Version"), r"^\d+\.\d+\.\d+$")

    def test_nothing_names_the_place_where_it_was_built(self):
        for path in self.root.rglob("*"):
            if not path.is_file() or "bin" in path.parts:
                continue
            data = path.read_bytes()
            if path.suffix == ".gz":
                data = gzip.decompress(data)
            for word in (b"/usr/local", bytes(BUILD), b"@"):
                if word != b"@" or path.suffix in (".service", ".desktop"):
                    self.assertNotIn(word, data, path)
        for service in ("usr/lib/systemd/user/plemora.service",
                        "usr/share/dbus-1/services/com.quorvane.mixer.service"):
            self.assertIn("/usr/bin/plemora --no-ui", (self.root / service).read_text())

    def test_programs_are_stripped_and_run(self):
        for program in ("plemora", "plemoractl"):
            file = self.root / "usr/bin" / program
            self.assertNotIn(b".debug_info", file.read_bytes(), program)
            self.assertRegex(run(file, "--version"), r"^plemora")

    def test_desktop_files_are_valid(self):
        share = self.root / "usr/share"
        entry = share / "applications/com.quorvane.mixer.desktop"
        self.assertIn("MimeType=x-scheme-handler/com.quorvane.mixer;", entry.read_text())
        if shutil.which("desktop-file-validate"):
            self.assertEqual(run("desktop-file-validate", entry), "")
        if shutil.which("appstreamcli"):
            run("appstreamcli", "validate", "--no-net",
                share / "metainfo/com.quorvane.mixer.metainfo.xml")


if __name__ == "__main__":
    CPACK, BUILD = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    unittest.main(argv=sys.argv[:1])
