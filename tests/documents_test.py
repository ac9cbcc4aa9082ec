"""What the documents name is there: links, paths, and the constants of the books of formats.

Usage: documents_test.py ROOT
"""

import re
import sys
import unittest
from pathlib import Path

ROOT = Path(sys.argv.pop(1))
DOCUMENTS = sorted([*ROOT.glob("*.md"), *ROOT.glob("docs/*.md"), *ROOT.glob("docs/formats/*.md")])
FOLDERS = ("src", "tests", "docs", "scripts", "fuzz", "bench", "assets", "cmake", "packaging")


def prose(document):
    """The text without its blocks of code."""
    return re.sub(r"^```.*?^```$", "", document.read_text("utf-8"), flags=re.M | re.S)


def spans(document):
    """What stands between backticks."""
    return re.findall(r"`([^`\n]+)`", prose(document))


class DocumentsTest(unittest.TestCase):
    def test_every_link_leads_to_a_file(self):
        for document in DOCUMENTS:
            for target in re.findall(r"\]\(([^)#\s]+)", prose(document)):
                if "://" not in target:
                    with self.subTest(document=document.name, target=target):
                        self.assertTrue((document.parent / target).exists())

    def test_every_heading_that_is_linked_is_there(self):
        for document in DOCUMENTS:
            headings = re.findall(r"^#+ (.*)$", prose(document), flags=re.M)
            anchors = {re.sub(r"[^a-z0-9 -]", "", heading.lower()).replace(" ", "-") for heading in headings}
            for anchor in re.findall(r"\]\(#([^)]+)\)", prose(document)):
                with self.subTest(document=document.name, anchor=anchor):
                    self.assertIn(anchor, anchors)

    def test_every_path_is_there(self):
        for document in DOCUMENTS:
            for span in spans(document):
                if re.fullmatch(r"[\w./-]+", span) and span.split("/")[0] in FOLDERS and "/" in span:
                    with self.subTest(document=document.name, path=span):
                        self.assertTrue((ROOT / span).exists() or list(ROOT.glob(span + ".*")))

    def test_every_constant_of_a_format_is_in_the_code(self):
        code = {"jet.md": "src/jet", "compound-file.md": "src/cfb"}
        for book, folder in code.items():
            sources = "\n".join(path.read_text("utf-8") for path in sorted((ROOT / folder).rglob("*.[ch]*")))
            names = {span for span in spans(ROOT / "docs" / "formats" / book) if re.fullmatch(r"k[A-Z]\w*", span)}
            self.assertGreater(len(names), 10)
            for name in sorted(names):
                with self.subTest(book=book, name=name):
                    self.assertRegex(sources, rf"\b{name}\b")


if __name__ == "__main__":
    unittest.main()
