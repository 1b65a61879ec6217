"""The private session of ./run ends in every way without leaving a process or a file behind.

Real PipeWire, players and signals; the program itself is a stand-in, so that this is about the
script alone.
"""

import os
import pathlib
import pty
import signal
import subprocess
import tempfile
import time
import unittest
import uuid

ROOT = pathlib.Path(__file__).resolve().parents[2]

SERVICE = """#!/bin/sh
trap 'exit 0' TERM
while :; do sleep 0.1; done
"""
CONTROL = """#!/bin/sh
echo "$@" >>"$(dirname "$0")/calls"
[ "$1" = watch ] || exit 0
while echo row; do sleep 0.1; done
"""


class PrivateSession(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.bin = pathlib.Path(folder.name)
        for name, text in (("plemora", SERVICE), ("plemoractl", CONTROL)):
            (self.bin / name).write_text(text)
            (self.bin / name).chmod(0o755)
        # Inherited by everything that the script starts, and so a way to find it.
        self.mark = f"PLEMORA_TEST_MARK={uuid.uuid4()}"
        name, value = self.mark.split("=")
        self.environment = {**os.environ, "PLEMORA_BIN": str(self.bin), name: value}

    def start(self, *arguments, **options):
        return subprocess.Popen(
            [ROOT / "tools/private_session.sh", *arguments],
            env=self.environment,
            stdin=options.pop("stdin", subprocess.DEVNULL),
            start_new_session=True,
            **options,
        )

    def environments(self):
        """The environments of the living processes that the script started."""
        found = []
        for path in pathlib.Path("/proc").glob("[0-9]*/environ"):
            try:
                variables = path.read_bytes().decode(errors="replace").split("\0")
            except OSError:
                continue
            if self.mark in variables:
                found.append(dict(v.split("=", 1) for v in variables if "=" in v))
        return found

    def wait_until(self, condition, what):
        deadline = time.monotonic() + 30
        while not condition():
            self.assertLess(time.monotonic(), deadline, what)
            time.sleep(0.05)

    def wait_for_watch(self):
        calls = self.bin / "calls"
        self.wait_until(lambda: calls.exists() and "watch" in calls.read_text(), "no watch")
        folders = {e["XDG_RUNTIME_DIR"] for e in self.environments() if "XDG_RUNTIME_DIR" in e}
        folders = {pathlib.Path(f).parent for f in folders if "/plemora-session." in f}
        self.assertEqual(len(folders), 1)
        self.folder = folders.pop()
        # Bus, sound server, session manager, pulse server, players, the program and its table.
        self.assertGreaterEqual(len(self.environments()), 10)

    def assert_nothing_left(self):
        self.wait_until(lambda: not self.environments(), "processes are left")
        self.assertFalse(self.folder.exists())

    def test_ends_after_the_given_time(self):
        process = self.start("--seconds", "2", stdout=subprocess.PIPE, text=True)
        self.wait_for_watch()
        output, _ = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 0)
        self.assertIn("row\n", output)
        self.assertTrue(output.endswith("nothing of it is left running.\n"), output[-200:])
        self.assert_nothing_left()

    def test_ends_on_signals(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            with self.subTest(signal=number.name):
                (self.bin / "calls").unlink(missing_ok=True)
                process = self.start(stdout=subprocess.DEVNULL)
                self.wait_for_watch()
                process.send_signal(number)
                self.assertEqual(process.wait(timeout=30), 0)
                self.assert_nothing_left()

    def test_ends_when_its_output_is_closed(self):
        process = self.start(stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        self.wait_for_watch()
        process.stdout.close()
        process.wait(timeout=30)
        self.assert_nothing_left()

    def test_ends_with_its_terminal(self):
        # Not the controlling terminal: no hang-up signal comes, only the terminal is gone.
        near, far = pty.openpty()
        process = self.start(stdin=far, stdout=far, stderr=far)
        os.close(far)
        self.wait_for_watch()
        os.close(near)
        process.wait(timeout=30)
        self.assert_nothing_left()

    def test_ends_when_the_program_ends(self):
        (self.bin / "plemora").write_text("#!/bin/sh\nsleep 2\necho out of luck\nexit 1\n")
        process = self.start(stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.wait_for_watch()
        output, _ = process.communicate(timeout=30)
        self.assertEqual(process.returncode, 1)
        self.assertIn("out of luck", output)
        self.assert_nothing_left()

    def test_killed_takes_everything_along(self):
        process = self.start(stdout=subprocess.DEVNULL)
        self.wait_for_watch()
        process.kill()
        process.wait(timeout=30)
        self.wait_until(lambda: not self.environments(), "processes are left")
        # Nobody is left to remove it.
        subprocess.run(["rm", "-rf", self.folder], check=True)


if __name__ == "__main__":
    unittest.main()
