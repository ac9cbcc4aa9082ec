#!/usr/bin/env python3
"""How long the real window's long commands take on a catalogue of 100,000 tables, and how long the window does not answer meanwhile.

    TAVOLO_BUILD=build/release bench/long_work_bench.py [--tables N] [--only TEXT] [--keep FOLDER]

Needs what tests/e2e needs, and the targets tavolo, tavolo_probe and make_catalogue. Each command starts from a copy of the made catalogue,
in a program of its own. Its time begins with the last answer that it is given, and ends when the window has shown its tree again. The gap is
the longest time between two ticks of a timer of two milliseconds in the program's thread, which is how late a frame can be; "bar" says
whether the progress bar was painted. --keep makes the catalogue in FOLDER, or takes the one that an earlier run has left there.
"""

import argparse
import json
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "tests" / "e2e"))
from driver import BUILD, Desktop, Tavolo, wait_for  # noqa: E402

AIM_GAP_MS = 100
SHORT_S = 0.5
FOLDERS = 300
PATIENCE_S = 120
QUIET_S = 0.5
COPY_NAME = "exported.csv"


def make(folder, tables):
    if (folder / "pinball.mdb").exists():
        return
    folder.mkdir(parents=True, exist_ok=True)
    subprocess.run([BUILD / "bin" / "make_catalogue", "--folder", folder, "--tables", str(tables)], check=True, stdout=subprocess.DEVNULL)
    for number in range(min(FOLDERS, tables)):
        (folder / "tables" / f"folder {number}").mkdir(parents=True)
    for number in range(tables):
        open(folder / "tables" / f"folder {number % FOLDERS}" / f"Table number {number} of many.vpt", "xb").close()


class Run:
    """The program on a copy of the catalogue."""

    def __init__(self, desktop, made, tables):
        self.desktop, self.made, self.tables = desktop, made, tables
        self.folder = Path(tempfile.mkdtemp(prefix="long-work-", dir=made.parent))
        shutil.copyfile(made / "pinball.mdb", self.folder / "pinball.mdb")

    def __enter__(self):
        self.program = Tavolo(self.desktop, self.folder)
        self.program.start()
        self.program.main_window()
        self.rest()
        return self

    def __exit__(self, *_):
        self.program.__exit__(None)
        shutil.rmtree(self.folder)

    def rest(self):
        """Until the tree is shown and nothing more is painted."""
        wait_for(lambda: (self.program.visible("sbrDB_1") or {"text": ""})["text"].endswith("in list.  "), "the tree", PATIENCE_S)
        time.sleep(0.7)

    def menu(self, menu, action):
        self.program.menu(menu, action)

    def begin(self):
        self.painted = self.program.times_painted("prgLoad")
        self.program.ask("watch")
        self.began = time.monotonic()
        self.ended = None

    def boxes(self):
        return [w["id"] for w in self.program.windows() if w["class"].endswith("MessageBox")]

    def answer(self, key):
        """Answers the question in front; what follows is measured."""
        self.program.message(PATIENCE_S)
        wait_for(lambda: self.desktop.active_window() in self.boxes(), "the keyboard in the question", PATIENCE_S)
        self.begin()
        self.desktop.xdotool("key", "--clearmodifiers", key)

    def told(self, *words):
        """Until a message box or the status bar says it."""
        def is_told():
            texts = self.program.messages() + [self.program.widget("sbrDB")["text"]]
            return any(all(word in text for word in words) for text in texts)
        wait_for(is_told, f"{words}", PATIENCE_S)

    def measured(self):
        took = (self.ended or time.monotonic()) - self.began
        stall = self.program.ask("stall")
        return took, stall["time"], self.program.times_painted("prgLoad") > self.painted

    def wait_changed(self):
        """Until no progress was shown for a while; that while is none of the command's time."""
        last = time.monotonic()
        while time.monotonic() - last < QUIET_S:
            if self.program.visible("prgLoad") or not self.program.visible("sbrDB_1") or self.program.text("sbrDB_1") == "":
                last = time.monotonic()
            time.sleep(0.01)
            if time.monotonic() - self.began > PATIENCE_S:
                raise SystemExit("the command does not end")
        self.ended = last

    def undo_key(self, key, said):
        wait_for(lambda: self.desktop.active_window() == self.program.main_window()["id"], "the keyboard in the window")
        self.begin()
        self.desktop.xdotool("key", "--clearmodifiers", key)
        self.told(said)


def settle(run):
    """Between a command that is not measured and the one that is."""
    wait_for(lambda: not run.boxes() and not run.program.visible("prgLoad"), "the end of the command", PATIENCE_S)
    time.sleep(1)


def reset_times(run):
    run.menu("mnuUtilities", "mnuResetTimes")
    run.answer("alt+y")
    run.wait_changed()


def file_dates(run):
    run.menu("mnuUtilities", "mnuDates")
    run.answer("alt+y")
    run.wait_changed()


def update_crcs(run):
    run.menu("mnuUtilities", "mnuCRC")
    run.answer("Return")
    run.program.wait_window_gone("CRC Utility - Update all CRC Values in database", PATIENCE_S)
    run.wait_changed()


def import_vpts(run):
    run.begin()
    run.menu("mnuUtilities", "mnuVPT")
    run.wait_changed()


def reset_paths(run):
    run.menu("mnuUtilities", "mnuRest")
    run.program.type_into("txtExisting", str(run.made))
    run.program.type_into("txtNew", "/elsewhere")
    run.begin()
    run.program.click("OKButton")
    run.told("Paths Changed")


def purge(run):
    (run.made / "tables").rename(run.made / "away")
    try:
        run.menu("mnuUtilities", "mnuPurge")
        run.answer("alt+y")
        run.told("No matching records found")
        run.program.answer()
    finally:
        (run.made / "away").rename(run.made / "tables")


def undo_after(command):
    """The command, not measured; then undo, measured."""
    def undo(run):
        command(run)
        settle(run)
        run.undo_key("ctrl+z", "Undo ")
    return undo


def redo_after(command, said="Redo "):
    def redo(run):
        undo_after(command)(run)
        run.program.ask("stall")
        settle(run)
        run.undo_key("ctrl+shift+z", said)
    return redo


def put_back(run):
    reset_times(run)
    settle(run)
    run.menu("mnuEdit", "mnuHistory")
    run.program.wait_window("History")
    wait_for(lambda: (run.program.visible("cmdAll") or {}).get("enabled"), "the change", PATIENCE_S)
    run.program.click("cmdAll")
    run.answer("alt+y")
    time.sleep(0.2)
    wait_for(lambda: len(run.program.items("tblChanges")) == 2, "the change that put back", PATIENCE_S)
    wait_for(lambda: (run.program.visible("cmdAll") or {}).get("enabled"), "its lines", PATIENCE_S)


def export(run):
    run.menu("mnuData", "mnuExportTables")
    run.program.type_into("fileNameEdit", str(run.folder / COPY_NAME))
    run.begin()
    run.program.press("Return")
    run.told("tables exported to")


def import_rows(run):
    export(run)
    run.program.ask("stall")
    run.program.answer()
    copy = run.folder / COPY_NAME
    copy.write_text(copy.read_text().replace("Company ", "Firm "))
    run.menu("mnuData", "mnuImportTables")
    run.program.type_into("fileNameEdit", str(copy))
    run.begin()
    run.program.press("Return")


def import_reads(run):
    import_rows(run)
    run.told("Are you sure")


def import_writes(run):
    import_rows(run)
    run.told("Are you sure")
    run.program.ask("stall")
    run.answer("alt+y")
    run.wait_changed()


def compact_measures(run):
    run.begin()
    run.menu("mnuEdit", "mnuCompact")
    wait_for(lambda: run.program.messages(), "what compacting would bring", PATIENCE_S)


def compact(run):
    run.menu("mnuEdit", "mnuCompact")
    if "no unused space" in run.program.message(PATIENCE_S):
        raise SystemExit("the catalogue has no unused space")
    run.answer("alt+y")
    run.told("compacted")


def backup(run):
    run.begin()
    run.menu("mnuUtilities", "mnuBackup")
    run.told("Database copied")


def restore(run):
    reset_times(run)
    settle(run)
    run.menu("mnuEdit", "mnuRestoreSnapshot")
    run.program.wait_window("Restore")
    wait_for(lambda: (run.program.visible("cmdRestore") or {}).get("enabled"), "the comparison", PATIENCE_S)
    run.program.click("cmdRestore")
    run.answer("alt+y")
    run.told("The catalogue was restored")


def look_for_new(run):
    (run.folder / "pinball.mdb-folders").write_text(json.dumps([str(run.made / "tables")]))
    run.begin()
    run.desktop.xdotool("key", "--clearmodifiers", "shift+F5")
    run.told("new tables")


def scan(run):
    run.menu("mnuFile", "mnuTblScan")
    run.program.wait_window("Find New Visual Pinball Tables")
    run.program.click_until("cmdgo", lambda: run.program.visible("fileNameEdit"), "the folder dialog")
    run.program.type_into("fileNameEdit", str(run.made / "tables"))
    run.begin()
    run.program.press("Return")
    run.program.wait_text("Label2", "Process Complete", PATIENCE_S)


def refresh(run):
    run.begin()
    run.desktop.xdotool("key", "--clearmodifiers", "F5")
    run.wait_changed()


COMMANDS = [
    ("Refresh Tree", refresh),
    ("Reset Times Played", reset_times),
    ("Undo Reset Times Played", undo_after(reset_times)),
    ("Redo Reset Times Played", redo_after(reset_times)),
    ("Put All Back (history)", put_back),
    ("Reset Paths", reset_paths),
    ("Purge Missing Tables", purge),
    ("Undo Purge Missing Tables", undo_after(purge)),
    ("Redo Purge Missing Tables", redo_after(purge, "No matching records found")),
    ("Reset File Dates", file_dates),
    ("Export", export),
    ("Import, until its question", import_reads),
    ("Import, after its question", import_writes),
    ("Compact, until its question", compact_measures),
    ("Compact, after its question", compact),
    ("Backup Data", backup),
    ("Restore", restore),
    ("Look for New Tables", look_for_new),
    ("Update CRC's", update_crcs),
    ("Import Data from VPTs", import_vpts),
    ("Scan for New Tables", scan),
]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tables", type=int, default=100_000)
    parser.add_argument("--only", default="")
    parser.add_argument("--keep", type=Path)
    options = parser.parse_args()
    root = options.keep or Path(tempfile.mkdtemp(prefix="long-work-bench-"))
    made = root / "made"
    make(made, options.tables)
    print(f"{'command':32} {'time':>9} {'gap':>9}  bar", flush=True)
    try:
        with Desktop("long_work_bench") as desktop:
            config = desktop.home / "config"
            config.mkdir()
            (config / "TAVOLO.ini").write_text("[General]\nVPEXE=/bin/true\n")
            for name, command in COMMANDS:
                if options.only.lower() not in name.lower():
                    continue
                with Run(desktop, made, options.tables) as run:
                    try:
                        command(run)
                        took, gap, bar = run.measured()
                    except Exception as failure:  # the others are measured all the same
                        run.program.picture("failure")
                        print(f"{name:32} failed: {failure}", flush=True)
                        continue
                note = "" if gap <= AIM_GAP_MS and (bar or took < SHORT_S) else "  over the aim"
                print(f"{name:32} {took:7.2f} s {gap:6.0f} ms  {'yes' if bar else 'no'}{note}", flush=True)
    finally:
        if not options.keep:
            shutil.rmtree(root)


main()
