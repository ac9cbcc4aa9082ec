"""The help file as another program unpacks it: every page is there, and no link is dead.

Usage: help_file_test.py tavolo.chm docs/help
"""

import html.parser
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

HELP_FILE, SOURCES = Path(sys.argv[1]), Path(sys.argv[2])


class Page(html.parser.HTMLParser):
    """What a page links to and what can be linked to in it."""

    def __init__(self, text):
        super().__init__()
        self.links, self.anchors, self.title, self.in_title = [], set(), "", False
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        values = dict(attributes)
        self.in_title = tag == "title"
        if "id" in values:
            self.anchors.add(values["id"])
        if tag == "a" and "name" in values:
            self.anchors.add(values["name"])
        if tag in ("a", "link") and "href" in values:
            self.links.append(values["href"])
        if tag == "img":
            self.links.append(values["src"])
        if tag == "param" and values.get("name") == "Local":
            self.links.append(values["value"])

    def handle_data(self, data):
        if self.in_title:
            self.title += data.strip()


class HelpFileTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        unpacker = shutil.which("extract_chmLib")
        assert unpacker, "extract_chmLib (package libchm-bin) is not installed"
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = Path(cls.folder.name)
        subprocess.run([unpacker, str(HELP_FILE), str(cls.root)], check=True, capture_output=True)
        cls.pages = {
            path.name: Page(path.read_text("ascii"))
            for path in cls.root.iterdir()
            if path.suffix in (".html", ".hhc", ".hhk")
        }

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_every_source_is_in_it_unchanged(self):
        sources = [p for p in SOURCES.rglob("*") if p.suffix in (".html", ".css", ".png", ".hhc", ".hhk")]
        self.assertGreater(len(sources), 30)
        for source in sources:
            inside = self.root / source.relative_to(SOURCES)
            self.assertTrue(inside.exists(), f"{source.name} is missing")
            self.assertEqual(inside.read_bytes(), source.read_bytes(), source.name)

    def test_no_link_is_dead(self):
        count = 0
        for name, page in self.pages.items():
            for link in page.links:
                target, _, anchor = link.partition("#")
                self.assertNotIn(":", target, f"{name} leads out of the file: {link}")
                self.assertTrue((self.root / (target or name)).is_file(), f"{name}: {link}")
                if anchor:
                    self.assertIn(anchor, self.pages[target or name].anchors, f"{name}: {link}")
                count += 1
        self.assertGreater(count, 100)

    def test_every_page_is_in_the_contents_and_in_the_index(self):
        pages = {name for name in self.pages if name.endswith(".html")}
        self.assertEqual(set(self.pages["toc.hhc"].links), pages)
        self.assertEqual(set(self.pages["index.hhk"].links), pages)

    def test_every_page_can_be_reached_from_the_first_one(self):
        reached, open_pages = set(), ["index.html"]
        while open_pages:
            name = open_pages.pop()
            if name in reached or not name.endswith(".html"):
                continue
            reached.add(name)
            open_pages += [link.partition("#")[0] or name for link in self.pages[name].links]
        self.assertEqual(reached, {name for name in self.pages if name.endswith(".html")})

    def test_every_page_has_a_title_of_its_own(self):
        titles = [page.title for name, page in self.pages.items() if name.endswith(".html")]
        self.assertNotIn("", titles)
        self.assertEqual(len(titles), len(set(titles)))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
