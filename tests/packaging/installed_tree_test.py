"""What `cmake --install` puts where, held against the tools that desktops and Debian check it with.

Usage: installed_tree_test.py BUILD SOURCE
"""

import configparser
import os
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as xml
from pathlib import Path

SOURCE = Path(sys.argv.pop())
BUILD = Path(sys.argv.pop())
ID = "org.tavolo.tavolo"
MIME = "application/x-visual-pinball-table"


def output(*command, **options):
    ran = subprocess.run([str(word) for word in command], capture_output=True, text=True, **options)
    return ran.returncode, (ran.stdout + ran.stderr).strip()


class InstalledTreeTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory(prefix="tavolo-installed-")
        cls.root = Path(cls.temporary.name)
        subprocess.run(["cmake", "--install", str(BUILD), "--prefix", str(cls.root)], check=True, capture_output=True)
        cls.share = cls.root / "share"

    @classmethod
    def tearDownClass(cls):
        cls.temporary.cleanup()

    def desktop_entry(self):
        parser = configparser.ConfigParser(interpolation=None)
        parser.optionxform = str
        parser.read(self.share / "applications" / f"{ID}.desktop")
        return parser["Desktop Entry"]

    def test_all_of_the_program_is_there(self):
        for name in ("bin/tavolo", "bin/tavolo-cli", "bin/tavolo-dbcheck", "share/tavolo/pinball.mdb", "share/tavolo/Pinball.wav",
                     "share/tavolo/slingshot.wav", "share/tavolo/tavolo.chm", "share/tavolo/help/index.html", "share/tavolo/help/help.css",
                     "share/tavolo/help/images/main-window.png", f"share/icons/hicolor/scalable/apps/{ID}.svg",
                     "share/tavolo/example/pinball.mdb", "share/tavolo/example/tables/Harbour Lights.vpt",
                     "share/tavolo/example/pictures/Hollow Hills flyer.jpg", "share/bash-completion/completions/tavolo-cli"):
            with self.subTest(name=name):
                self.assertTrue((self.root / name).is_file())

    def test_every_page_of_the_help_is_there(self):
        pages = {page.name for page in (SOURCE / "docs" / "help").glob("*.html")}
        self.assertEqual({page.name for page in (self.share / "tavolo" / "help").glob("*.html")}, pages)

    def test_no_tool_or_file_of_the_build_is_there(self):
        names = [str(path.relative_to(self.root)) for path in self.root.rglob("*")]
        self.assertFalse([name for name in names if "tests" in name or name.startswith(("include", "lib"))])

    def test_the_desktop_entry(self):
        status, said = output("desktop-file-validate", self.share / "applications" / f"{ID}.desktop")
        self.assertEqual((status, said), (0, ""))
        entry = self.desktop_entry()
        self.assertEqual((entry["Icon"], entry["StartupWMClass"]), (ID, ID))
        self.assertRegex(entry["Exec"], r"^tavolo %[fF]$")
        self.assertEqual(entry["MimeType"], MIME + ";")

    def test_the_metadata(self):
        metadata = self.share / "metainfo" / f"{ID}.metainfo.xml"
        status, said = output("appstreamcli", "validate", "--pedantic", "--no-net", metadata)
        self.assertEqual(status, 0, said)
        root = xml.parse(metadata).getroot()
        self.assertEqual(root.findtext("id"), ID)
        self.assertLess(len(root.findtext("summary")), 35)
        self.assertTrue(root.findall("screenshots/screenshot"))
        self.assertTrue(root.find("content_rating") is not None and root.find("developer") is not None)
        changes = " ".join((SOURCE / "CHANGELOG.md").read_text("utf-8").replace("`", "").replace("*", "").split())
        notes = [item.text for item in root.findall("releases/release/description/ul/li")]
        self.assertGreater(len(notes), 2)
        for note in notes:
            self.assertIn(note, changes)

    def test_the_manual_pages(self):
        pages = sorted((self.share / "man" / "man1").iterdir())
        self.assertEqual([page.name for page in pages], ["tavolo-cli.1", "tavolo-dbcheck.1", "tavolo.1"])
        for page in pages:
            with self.subTest(page=page.name):
                self.assertEqual(output("mandoc", "-Tlint", "-Wwarning", page), (0, ""))

    def test_table_files_have_a_type_of_their_own_and_other_compound_files_do_not(self):
        packages = self.root / "mime-test" / "mime" / "packages"
        packages.mkdir(parents=True)
        shutil.copy(self.share / "mime" / "packages" / f"{ID}.xml", packages)
        for name in ("freedesktop.org.xml",):
            shutil.copy(Path("/usr/share/mime/packages") / name, packages)
        subprocess.run(["update-mime-database", str(packages.parent)], check=True, capture_output=True)
        environment = dict(os.environ, XDG_DATA_HOME=str(packages.parent.parent), XDG_DATA_DIRS=str(packages.parent.parent))

        def type_of(path):
            said = subprocess.run(["gio", "info", "-a", "standard::content-type", str(path)], env=environment, capture_output=True, text=True,
                                  check=True).stdout
            return said.split("standard::content-type:")[1].split()[0]
        tables = sorted((SOURCE / "tests" / "data" / "tables").glob("*.vpt"))
        self.assertGreater(len(tables), 3)
        for table in tables:
            with self.subTest(table=table.name):
                self.assertEqual(type_of(table), MIME)
        # By what is in them: a storage's name among the first 4 KB, which is all that gio looks at.
        for storage, is_table in (("GameStg", True), ("WordDocument", False), ("GameStgs", False)):
            nameless = self.root / "nameless"
            nameless.write_bytes(bytes.fromhex("d0cf11e0a1b11ae1") + bytes(1144) + f"{storage}\0".encode("utf-16-le") + bytes(4096))
            with self.subTest(storage=storage):
                self.assertEqual(type_of(nameless) == MIME, is_table)


unittest.main()
