#!/usr/bin/env python3
"""How long Find takes from a key to the painted answer, on a catalogue of 100,000 tables.

    TAVOLO_BUILD=build/release bench/find_bench.py [--tables N] [--keep FOLDER] [--verbose]

Types questions key by key into the Find field of the real window, and measures each key as window_bench.py does: from the moment the X
server has made it to the program's last painting before it has nothing more to do. Aims: 16 ms in the middle, 50 ms at most. Needs what
window_bench.py needs. --verbose prints every key.
"""

import argparse
import signal
import statistics
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from window_bench import Window, wait_for  # noqa: E402

AIM_MIDDLE_MS = 16
AIM_MOST_MS = 50
QUESTIONS = ["table", "99999", "author 910", "zebra", "number 5 company 3", "author:author 7", "year:>1980", "-many", "folder 17/", "is:favourite 77"]
KEYS = {" ": "space", ":": "colon", ">": "greater", "-": "minus", "/": "slash"}


def type_question(window, question, times, verbose):
    """Appends the milliseconds of each key to `times`."""
    for place, letter in enumerate(question):
        took = window.timed(lambda letter=letter: window.desktop.xdotool("key", KEYS.get(letter, letter)))
        times.append(took)
        if verbose:
            print(f"{question[:place + 1]:28}{took:8.1f}  {window.program.text('lblFindCount')}", flush=True)
    window.key("Escape")
    window.rest()


def open_find(window):
    window.focus_tree()
    window.key("ctrl+f")
    wait_for(lambda: window.program.has_keyboard("txtFind"), "the keyboard in the Find field")
    window.desktop.xdotool("key", "1")
    began = time.monotonic()
    wait_for(lambda: (window.program.visible("lblFindCount") or {"text": ""})["text"].endswith(tuple("0123456789")), "the first answer")
    print(f"the first answer after opening, at the latest {(time.monotonic() - began) * 1000:.0f} ms after its key")
    window.key("Escape")
    window.rest()


def main():
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))  # so that the program is ended, too
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--tables", type=int, default=100_000)
    parser.add_argument("--keep")
    parser.add_argument("--verbose", action="store_true")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory(prefix="tavolo-find-") as temporary:
        window = Window(Path(options.keep or temporary).resolve() / str(options.tables), options.tables)
        window.make()
        times = []
        try:
            window.start()
            open_find(window)
            for question in QUESTIONS:
                type_question(window, question, times, options.verbose)
            now, most = window.memory()
            print(f"{len(times)} keys: {statistics.median(times):.1f} ms in the middle (aim: {AIM_MIDDLE_MS}), {max(times):.1f} ms at most "
                  f"(aim: {AIM_MOST_MS}), {sum(took > AIM_MOST_MS for took in times)} over it")
            print(f"resident memory: {window.memory_at_start[0]:.0f} MB with the first tree, {now:.0f} MB with Find, {most:.0f} MB at the most")
        finally:
            if getattr(window, "program", None):
                window.stop()


if __name__ == "__main__":
    main()
