"""A folder choice that is cancelled: the search starts at the root of the file system, and the window stays until it is done."""

import tempfile
from pathlib import Path

from driver import Desktop, Tavolo, check, run, wait_for


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo cancelled ") as temporary, Desktop("cancelled_scan") as desktop:
        folder = Path(temporary) / "app"
        folder.mkdir()
        with Tavolo(desktop, folder) as program:
            program.wait_window("Find New Visual Pinball Tables")
            program.click_until("cmdgo", lambda: program.visible("fileNameEdit"), "the folder dialog")
            program.press("Escape")
            wait_for(lambda: program.text("lbltime").startswith("Searching . . . /"), "the search")
            check(not program.visible("cmdgo"), "a search that runs can be started again")
            program.picture("searching from the root")
            program.press("Escape")
            wait_for(lambda: "Still scanning. Please wait..." in program.messages(), "the message")
            program.picture("still scanning")
            # It would go through the whole machine.
            program.kill()


run(main)
