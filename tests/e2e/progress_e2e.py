"""A list so long that its progress can be seen: the bar is painted, the panels are back after it, and the tree is on the screen."""

import shutil
import tempfile
from pathlib import Path

from driver import Desktop, Tavolo, check_equal, make_table_file, run, wait_for

COUNT = 6000  # whose file dates take several times as long to read as the bar waits before it is painted


def names():
    return [f"Table {number:04}" for number in range(COUNT)]


def make_tables(folder):
    folder.mkdir()
    first = folder / f"{names()[0]}.vpt"
    make_table_file(first)
    for name in names()[1:]:
        shutil.copyfile(first, folder / f"{name}.vpt")


def wait_seen(program, before, what):
    """The bar was painted again, and then made way for the panels and the tree."""
    wait_for(lambda: program.times_painted("prgLoad") > before, f"the progress bar while {what}")
    wait_for(lambda: not program.visible("prgLoad"), f"the end of the progress bar after {what}")
    check_shown(program, what)


def check_shown(program, what):
    check_equal(program.text("sbrDB_1"), f"{COUNT} Tables in list.  ", f"the count after {what}")
    program.check_tree_and_panels("All", *names()[:3])


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-progress-") as temporary, Desktop("progress_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        make_tables(work / "tables")
        with Tavolo(desktop, folder) as program:
            program.wait_window("Find New Visual Pinball Tables")
            program.click_until("cmdgo", lambda: program.visible("fileNameEdit"), "the folder dialog")
            program.choose_file(work / "tables")
            program.wait_text("Label2", "Process Complete", 240)
            program.click_until("cmdExit", lambda: program.window("Settings"), "the settings")
            program.click_until("CancelButton", lambda: not program.window("Settings"), "the end of the settings")
            program.check_tree_and_panels("All", *names()[:3])

            # Too quick for a bar.
            painted = program.times_painted("tvwDB")
            program.click("cmdGo")
            wait_for(lambda: program.times_painted("tvwDB") > painted, "the tree to be painted again")
            check_shown(program, "the tree is built")
            program.picture("refreshed")

            before = program.times_painted("prgLoad")
            program.menu("mnuUtilities", "mnuDates")
            check_equal(program.message(), "Update all file dates?", "the question about file dates")
            program.answer("alt+y")
            wait_seen(program, before, "file dates are read")
            program.picture("file dates")
            program.close()


run(main)
