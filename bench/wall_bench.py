#!/usr/bin/env python3
"""How long the wall of pictures takes, on a catalogue of 100,000 tables with pictures, beside the tree in the same window.

    TAVOLO_BUILD=build/release bench/wall_bench.py [--tables N] [--pictures P] [--keep FOLDER] [--verbose]

P (4,000) JPEG files of 1280 x 960 are shared by the tables, so that the first pass over them decodes and the second finds what was kept.
Measures, in the real window: the wall's first painting after a click on its menu entry (aim: 150 ms); how long the window was not answering at most while Page Down
is held (aim: 50 ms), with pictures to be made and with pictures that are kept; and the memory that it takes (aim: 128 MB). The peer is
the tree: the same keys, held as long. "Not answering" is the longest time between two ticks of a timer of the probe, which ticks every 2 ms;
"at work" is what the window's thread has worked between two, which other programs on the machine do not lengthen: the aim is for that.
Needs what window_bench.py needs, and ImageMagick.
"""

import argparse
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from window_bench import Window, wait_for  # noqa: E402

AIM_FIRST_MS = 150
AIM_STALL_MS = 50
AIM_MEMORY_MB = 128
PAGES = 60
KEY_MS = 60


def make_pictures(folder, pictures):
    """The first is painted by ImageMagick, the others differ from it in a comment at their end."""
    folder.mkdir(parents=True)
    first = folder / "0.jpg"
    subprocess.run(["convert", "-size", "1280x960", "plasma:red-blue", "-quality", "88", str(first)], check=True)
    data = first.read_bytes()
    for number in range(1, pictures):
        (folder / f"{number}.jpg").write_bytes(data + str(number).encode())


class WallWindow(Window):
    def __init__(self, folder, tables, pictures):
        super().__init__(folder, tables)
        self.pictures = pictures

    def make(self):
        if self.folder.exists():
            return
        super().make()
        make_pictures(self.folder / "pictures", self.pictures)
        subprocess.run([self.build() / "bin" / "tavolo-cli", f"--folder={self.folder}", "import", "-"], check=True,
                       input=self.rows(), text=True, stdout=subprocess.DEVNULL)

    @staticmethod
    def build():
        return Path(os.environ["TAVOLO_BUILD"]).resolve()

    def rows(self):
        lines = ["ID,ImageFile"]
        lines += [f"{number + 1},{self.folder}/pictures/{number % self.pictures}.jpg" for number in range(self.tables)]
        return "\n".join(lines) + "\n"

    def page(self, label, key="Next"):
        """Holds Page Down; the longest time without an answer, in milliseconds."""
        self.rest()
        self.program.ask("watch")
        for _ in range(PAGES):
            self.key(key)
            time.sleep(KEY_MS / 1000)
        stall = self.program.ask("stall")
        print(f"{label:54}{stall['time']:9.1f} ms not answering at most, of which {stall['work']:.1f} ms at work", flush=True)
        return stall


def point_at_the_entry(window):
    """Of the menu: a key that is a shortcut comes to no window, and could not be timed."""
    window.point_in(window.program.ask("menubar", name="mnuTable"))
    window.button()
    entry = wait_for(lambda: (lambda e: e if e and e["visible"] else None)(window.program.actions("mnuTable").get("mnuWall")), "the menu")
    window.rest()
    window.point_in(entry)
    window.rest()


def measure(window, missed):
    def note(name, value, aim):
        if value > aim:
            missed.append(f"{name}: {value:.0f}, aim {aim}")

    window.focus_tree()
    tree = window.page("the tree, Page Down held")
    window.key("Home")
    before = window.memory()[0]
    point_at_the_entry(window)
    # Painted last when the pictures of the first page have come.
    first = window.timed(window.button)
    print(f"the wall, from a click on its entry to all pictures of the first page: {first:.0f} ms", flush=True)
    window.key("F9")
    window.rest()
    point_at_the_entry(window)
    window.program.ask("mark", name="PictureWall")
    window.button()
    seen = wait_for(lambda: (lambda s: s if s["first"] >= 0 else None)(window.program.ask("answer")), "the first painting")
    first = seen["first"] - seen["input"]
    print(f"the wall, from a click on its entry to its first painting: {first:.1f} ms (aim: {AIM_FIRST_MS})", flush=True)
    note("first painting", first, AIM_FIRST_MS)
    window.rest()
    for label in ("the wall, Page Down held, pictures to be made", "the wall, Page Down held, pictures that are kept"):
        window.key("Home")
        time.sleep(1)
        stall = window.page(label)
        print(f"{'':54}{stall['work'] / max(tree['work'], 1):9.1f} times the tree's work", flush=True)
        note(label, stall["work"], AIM_STALL_MS)
    now, most = window.memory()
    print(f"memory: {before:.0f} MB with the tree, {now:.0f} MB with the wall, {most:.0f} MB at the most (aim: {AIM_MEMORY_MB} more)", flush=True)
    note("memory", most - before, AIM_MEMORY_MB)


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # so that the program is ended, too
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--tables", type=int, default=100_000)
    parser.add_argument("--pictures", type=int, default=4_000)
    parser.add_argument("--keep")
    options = parser.parse_args()
    if not shutil.which("convert"):
        sys.exit("ImageMagick is missing")
    missed = []
    with tempfile.TemporaryDirectory(prefix="tavolo-wall-") as temporary:
        window = WallWindow(Path(options.keep or temporary).resolve() / str(options.tables), options.tables, options.pictures)
        window.make()
        try:
            window.start()
            measure(window, missed)
        finally:
            if getattr(window, "program", None):
                window.stop()
    print("aims missed: " + ("none" if not missed else "; ".join(missed)))


if __name__ == "__main__":
    main()
