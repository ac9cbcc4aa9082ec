"""tavolo-setup.exe as a user of Windows has it, through Wine: install, start, take out a table, remove.

Usage: windows_setup_test.py FOLDER      (build/windows: what packaging/windows/build has made)
Pictures go to FOLDER/pictures/setup.
"""

import os
import subprocess
import sys
import unittest
from pathlib import Path

FOLDER = Path(sys.argv.pop()).resolve()
os.environ["TAVOLO_BUILD"] = str(FOLDER)
from wine_desktop import Wine, driver  # noqa: E402

CLASSES = r"HKCU\Software\Classes"
LISTED = r"HKCU\Software\Microsoft\Windows\CurrentVersion\Uninstall\Tavolo"


class WindowsSetupTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desktop = driver.Desktop("setup").__enter__()
        cls.wine = Wine(cls.desktop).__enter__()
        cls.prefix, cls.installed, cls.data = cls.wine.prefix, cls.wine.installed, cls.wine.data

    @classmethod
    def tearDownClass(cls):
        cls.wine.__exit__()
        cls.desktop.__exit__()

    def registry(self, key, name=None):
        """The text of a value, the unnamed one for None; None: there is none."""
        ran = self.wine.run("reg", "query", key, *(["/v", name] if name else ["/ve"]))
        lines = [line for line in ran.stdout.splitlines() if "REG_" in line]
        return lines[0].split("REG_SZ")[1].strip() if ran.returncode == 0 and lines else None

    def start(self, *words):
        program = self.wine.start(self.installed / "bin/tavolo.exe", *words)
        self.addCleanup(program.wait)
        return program

    def wait_window(self, begin):
        return driver.wait_for(lambda: next((title for title in self.desktop.window_titles() if title.startswith(begin)), None),
                               f"a window {begin!r}", timeout=90)

    def close(self, title, program):
        subprocess.run(["wmctrl", "-F", "-c", title], env=self.wine.env, check=True)
        self.assertEqual(program.wait(timeout=60), 0)

    def test_what_is_installed_is_removed_and_nothing_else(self):
        self.wine.run("reg", "add", CLASSES + r"\.vpt", "/ve", "/d", "Other.Kind", "/f")
        self.assertEqual(self.wine.set_up(), 0)
        staged = FOLDER / "tavolo"
        beside = {"bin/pinball.mdb", "bin/tavolo.chm", "bin/Pinball.wav", "bin/slingshot.wav"}  # of the folder that is carried about
        wanted = {str(path.relative_to(staged)) for path in staged.rglob("*") if path.is_file()} - beside
        found = {str(path.relative_to(self.installed)) for path in self.installed.rglob("*") if path.is_file()}
        self.assertEqual(found, wanted | {"uninstall.exe"})
        self.assertEqual(len(list(self.prefix.rglob("Start Menu/Programs/Tavolo.lnk"))), 1)
        self.assertEqual(self.registry(LISTED, "DisplayName"), "Tavolo")
        self.assertEqual(self.registry(CLASSES + r"\.vpt"), "Tavolo.Table")
        self.assertIn(r"bin\tavolo.exe", self.registry(CLASSES + r"\Tavolo.Table\shell\open\command"))
        # Once more, over it: what opened table files before is not forgotten.
        self.assertEqual(self.wine.set_up(), 0)
        self.data.mkdir(exist_ok=True)
        (self.data / "kept").write_text("of the user")
        self.wine.remove()
        self.assertFalse(self.installed.exists())
        self.assertEqual(list(self.prefix.rglob("Tavolo.lnk")), [])
        self.assertIsNone(self.registry(LISTED, "DisplayName"))
        self.assertEqual(self.registry(CLASSES + r"\.vpt"), "Other.Kind")
        self.assertTrue((self.data / "kept").exists())

    def test_the_installed_programs_work(self):
        self.assertEqual(self.wine.set_up(), 0)
        program = self.start("--demo")
        title = self.wait_window("Tavolo")
        driver.time.sleep(3)
        self.desktop.picture("example")
        self.assertEqual(self.wine.set_up(), 2)  # while it runs
        self.close(title, program)
        catalogue = next(self.data.rglob("pinball.mdb"))
        checked = self.wine.run(self.installed / "bin/tavolo-dbcheck.exe", catalogue)
        self.assertEqual(checked.returncode, 0, checked.stdout + checked.stderr)
        listed = self.wine.run(self.installed / "bin/tavolo-cli.exe", "--folder", catalogue.parent, "list")
        self.assertEqual(listed.returncode, 0, listed.stderr)
        self.assertIn("Harbour Lights", listed.stdout)

        # The first start in earnest: an empty catalogue among the user's data, and the search for tables.
        program = self.start()
        self.wait_window("Find New Visual Pinball Tables")
        driver.time.sleep(2)  # for the picture: it is there before it is painted
        self.desktop.picture("first-start")
        self.assertTrue((self.data / "pinball.mdb").exists())
        subprocess.run(["wineserver", "--kill", "--wait"], env=self.wine.env)
        program.wait(timeout=60)


if __name__ == "__main__":
    unittest.main(verbosity=2)
