"""Work on so many tables that it takes its time: an undo shows how far it is, Escape stops it and leaves the catalogue as it was, and the
window is painted all the while."""

import subprocess
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, run, wait_for

COUNT = 30_000
LONGEST_GAP_MS = 1000  # of a machine that does other things beside; the benchmark holds it to 100
STOPPED = "Stopped. Nothing was changed"
UNDONE = "Undo Reset Times Played (30,000 tables)"


def make_catalogue(folder):
    folder.mkdir()
    rows = folder.parent / "rows.csv"
    rows.write_text("DisplayName,FileName,TimesPlayed\n" + "".join(
        f"Table {n:05},/tables/Table {n:05}.vpt,3\n" for n in range(COUNT)))
    cli = [BUILD / "bin" / "tavolo-cli", "--folder", folder]
    subprocess.run([BUILD / "bin" / "tavolo-new-catalogue", folder / "pinball.mdb"], check=True)
    subprocess.run([*cli, "import", rows, "--match", "file"], check=True, stdout=subprocess.DEVNULL)


def played(folder):
    """How often all tables together were played, as another program reads it."""
    text = subprocess.run(["mdb-export", str(folder / "pinball.mdb"), "Tables"], check=True, capture_output=True, text=True).stdout
    head, *lines = text.splitlines()
    place = head.split(",").index("TimesPlayed")
    return sum(int(line.split(",")[place] or 0) for line in lines)


def wait_told(program, text):
    wait_for(lambda: program.text("sbrDB") == text, f"the status bar to say {text!r} (it says {program.text('sbrDB')!r})", 120)


def press_in_main_window(program, *keys):
    """At once, so that the second key waits for the program when the first one has its effect."""
    wait_for(lambda: program.desktop.active_window() == program.main_window()["id"], "the keyboard in the window")
    program.desktop.xdotool("key", "--clearmodifiers", "--delay", 1, *keys)


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-long-work-") as temporary, Desktop("long_work_e2e") as desktop:
        folder = Path(temporary) / "app"
        make_catalogue(folder)
        config = desktop.home / "config"
        config.mkdir()
        (config / "TAVOLO.ini").write_text("[General]\nVPEXE=/bin/true\n")
        with Tavolo(desktop, folder) as program:
            program.main_window()
            wait_for(lambda: program.text("sbrDB_1") == f"{COUNT} Tables in list.  ", "the tree")
            check_equal(played(folder), 3 * COUNT, "plays at the start")
            program.menu("mnuUtilities", "mnuResetTimes")
            program.message()
            program.answer("alt+y")
            wait_for(lambda: played(folder) == 0, "the plays to be set back", 120)
            wait_for(lambda: program.visible("sbrDB_1"), "the tree after the command")

            press_in_main_window(program, "ctrl+z", "Escape")
            wait_told(program, STOPPED)
            program.picture("stopped")
            check_equal(played(folder), 0, "plays after an undo that was stopped")

            program.ask("watch")
            press_in_main_window(program, "ctrl+z")
            wait_told(program, UNDONE)
            gap = program.ask("stall")["time"]
            check(gap < LONGEST_GAP_MS, f"the window did not answer for {gap:.0f} ms")
            program.picture("undone")
            wait_for(lambda: played(folder) == 3 * COUNT, "the plays to be back", 120)
            # Passing the menus wipes nothing.
            menu = program.ask("menubar", name="mnuEdit")
            desktop.xdotool("mousemove", menu["x"] + 5, menu["y"] + 5)
            desktop.xdotool("mousemove", menu["x"] + 5, menu["y"] + 200)
            check_equal(program.text("sbrDB"), UNDONE, "the result after the pointer has moved")
            program.close()


run(main)
