"""One catalogue is carried to and fro between Windows and this machine and changed on each: every other cell, and every key, stays.

Usage: carried_catalogue_test.py FOLDER PROGRAMS HERE      (as windows_program_test.py)
mdb-export and mdb-schema read the catalogue after each change, and tavolo-dbcheck of both systems looks at it.
"""

import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

FOLDER, PROGRAMS, HERE = (Path(word).resolve() for word in sys.argv[1:])
os.environ.update(TAVOLO_BUILD=str(FOLDER), TAVOLO_TOOLS=str(HERE))
from wine_desktop import Wine, WindowsTavolo, driver, windows_path  # noqa: E402
from driver import check, check_equal, export_rows, wait_for  # noqa: E402

TURNS = 100
PATHS = ("FileName", "ImageFile", "FlyerFile", "RulesFile")
WINDOWS_FOLDER, FOLDER_HERE = "C:\\Games\\Tables\\", "/data/tables/"


class Machine:
    """Where the catalogue is now, and the programs there."""

    def __init__(self, name, folder, cli, dbcheck, start):
        self.name, self.folder, self.cli, self.dbcheck, self.start = name, folder, cli, dbcheck, start

    def database(self):
        return self.folder / "pinball.mdb"

    def run(self, *words):
        ran = self.cli(*words)
        check_equal(ran.returncode, 0, f"{self.name}: tavolo-cli {' '.join(words)}: {ran.stdout}{ran.stderr}")


def machines(wine, work):
    here_folder, windows_folder = work / "here", wine.prefix / "drive_c/catalogue"

    def cli_here(*words):
        return subprocess.run([HERE / "tavolo-cli", *words, "--folder", str(here_folder)], capture_output=True, text=True)

    def cli_windows(*words):
        return wine.run(PROGRAMS / "tavolo-cli.exe", *words, "--folder", "C:\\catalogue")

    def dbcheck_windows(database):
        return wine.run(PROGRAMS / "tavolo-dbcheck.exe", windows_path(database))

    def dbcheck_here(database):
        return subprocess.run([HERE / "tavolo-dbcheck", database], capture_output=True, text=True)

    here = Machine("here", here_folder, cli_here, dbcheck_here, lambda: driver.Tavolo(
        wine.desktop, here_folder, program=HERE / "tavolo", env={"QT_PLUGIN_PATH": str(HERE.parent / "plugins")}))
    windows = Machine("Windows", windows_folder, cli_windows, dbcheck_windows,
                      lambda: WindowsTavolo(wine, PROGRAMS / "probed/tavolo.exe", arguments=("--folder", "C:\\catalogue")))
    return here, windows


class Carried:
    """The catalogue, and what its rows must be."""

    def __init__(self, here, windows):
        self.all = (here, windows)
        self.rows = {row["ID"]: row for row in export_rows(here.database())}
        self.schema = schema(here.database())

    def change(self, machine, number, **cells):
        machine.run("set", number, *(f"{name}={text}" for name, text in cells.items()))
        self.rows[number].update(cells)
        self.check(machine)

    def check(self, machine):
        found = {row["ID"]: row for row in export_rows(machine.database())}
        check_equal(sorted(found), sorted(self.rows), f"{machine.name}: the rows")
        for number, row in self.rows.items():
            check_equal(found[number], row, f"{machine.name}: the row {number}")
        check_equal(schema(machine.database()), self.schema, f"{machine.name}: columns and keys")

    def carry(self, start, goal):
        """All of the folder, as one takes it along; both programs find the file sound."""
        shutil.rmtree(goal.folder, ignore_errors=True)
        shutil.move(start.folder, goal.folder)
        for machine in self.all:
            ran = machine.dbcheck(goal.database())
            check_equal(ran.returncode, 0, f"tavolo-dbcheck of {machine.name}: {ran.stdout}{ran.stderr}")
        self.check(goal)


def schema(database):
    return subprocess.run(["mdb-schema", "--indexes", "--relations", str(database)], check=True, capture_output=True, text=True).stdout


def edit_on_each(carried, here, windows):
    carried.change(here, "1", Author="Zoë 測試", Year="1999")
    carried.carry(here, windows)
    carried.change(windows, "2", Notes="von Windows – 「ここ」", Favorite="1")
    carried.change(windows, "3", DisplayName="It's called \"Fish & Chips\"")
    before = dict(carried.rows["3"])
    carried.change(windows, "3", Company="to be undone")
    windows.run("undo")
    carried.rows["3"] = before
    carried.check(windows)
    carried.carry(windows, here)
    # The history came along: what Windows did is undone here, and done again.
    here.run("undo")
    here.run("undo", "--redo")
    carried.check(here)
    carried.change(here, "4", Version="2.0", RulesText="hit it")


def moved(path, existing, new):
    """As the window does it: subfolders are other folders."""
    name = path[len(existing):]
    return new + name if path.lower().startswith(existing.lower()) and not {"/", "\\"} & set(name) else path


def reset_paths(carried, machine, kind, existing, new):
    """Of tables (0) or pictures (1), by the window."""
    column = ("FileName", "ImageFile")[kind]
    with machine.start() as program:
        wait_for(lambda: len(program.items()) > 1, "the tables")
        program.wait_window("Settings")  # as there is no simulator
        program.leave_settings()
        program.menu("mnuUtilities", "mnuRest")
        program.wait_window("Global Path Change")
        program.click(f"optType_{kind}", at=(8, 8))
        program.type_into("txtExisting", existing)
        program.type_into("txtNew", new)
        program.picture(f"{machine.name} {column}")
        program.click("OKButton")
        check_equal(program.message(), "Paths Changed", "the end of the path change")
        program.answer()
        program.wait_window_gone("Global Path Change")
        program.close()
    for row in carried.rows.values():
        row[column] = moved(row[column], existing, new)
    carried.check(machine)


def turns(carried, here, windows):
    """Opened by each in turn, a hundred times; a count is changed, so that each of them writes."""
    for turn in range(TURNS):
        carried.change(here, "5", TimesPlayed=str(2 * turn))
        carried.carry(here, windows)
        carried.change(windows, "5", TimesPlayed=str(2 * turn + 1))
        carried.carry(windows, here)


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo carried ") as temporary, driver.Desktop("carried", size="1280x900") as desktop, \
            Wine(desktop) as wine:
        work = Path(temporary)
        here, windows = machines(wine, work)
        here.folder.mkdir()
        shutil.copy(driver.DATA / "databases/catalogue-jet4.mdb", here.database())
        here.database().chmod(0o644)
        here.run("set", "1", "TimesPlayed=1")  # the first opening may add columns and dates
        carried = Carried(here, windows)
        paths = {number: [row[name] for name in PATHS] for number, row in carried.rows.items()}
        edit_on_each(carried, here, windows)
        print("edited on each")
        for kind in (0, 1):
            reset_paths(carried, here, kind, WINDOWS_FOLDER, FOLDER_HERE)
        check(any(row["FileName"].startswith(FOLDER_HERE) for row in carried.rows.values()), "no path was changed")
        carried.carry(here, windows)
        for kind in (0, 1):
            reset_paths(carried, windows, kind, FOLDER_HERE, WINDOWS_FOLDER)
        print("paths reset to and fro")
        carried.carry(windows, here)
        turns(carried, here, windows)
        print(f"opened by each {TURNS} times")
        check_equal({number: [row[name] for name in PATHS] for number, row in carried.rows.items()}, paths, "the paths in the end")


driver.run(main)
