"""A catalogue that came from another computer: its paths lie on a drive that is not here. The path map is proposed from a folder, and the tables
are marked, shown, played, scanned, updated and kept by the purge where they are; the paths in the catalogue stay as they are."""

import subprocess
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for

TURNS = 100
PATHS = ("FileName", "ImageFile", "FlyerFile", "RulesFile")
# What the other computer calls them, and what they are here: other folders, another letter case.
STORED = {
    "Alpha": (r"C:\VP\TABLES\old\ALPHA.VPT", "Data/Tables/Old/Alpha.vpt"),
    "Beta": (r"c:\vp\Tables\Beta.vpt", "Data/Tables/Beta.vpt"),
    "Gone": (r"C:\VP\Tables\Gone.vpt", None),
}
PICTURE = r"C:\VP\Pics\ALPHA.png"


def cli(desktop, folder, *words):
    done = subprocess.run([BUILD / "bin" / "tavolo-cli", "--folder", folder, *words], env=desktop.env, capture_output=True, text=True, timeout=60)
    check_equal(done.returncode, 0, f"tavolo-cli {words}: {done.stderr}")


def paths(folder):
    return sorted(tuple(row[column] for column in PATHS) for row in export_rows(folder / "pinball.mdb"))


def make_picture(path):
    path.parent.mkdir(parents=True)
    subprocess.run(["convert", "-size", "320x240", "plasma:red-blue", str(path)], check=True)


def make_catalogue(desktop, folder, work):
    """With the paths of the other computer."""
    for name, (_, here) in STORED.items():
        make_table_file(work / (here or "Gone.vpt"), {"TableName": name, "AuthorName": "Of the file"})
    make_picture(work / "Data" / "pics" / "Alpha.PNG")
    cli(desktop, folder, "scan", str(work))
    (work / "Gone.vpt").unlink()
    ids = {row["DisplayName"]: row["ID"] for row in export_rows(folder / "pinball.mdb")}
    for name, (stored, _) in STORED.items():
        cli(desktop, folder, "set", ids[name], f"FileName={stored}", "Author=Me")
    cli(desktop, folder, "set", ids["Alpha"], f"ImageFile={PICTURE}")


def make_simulator(desktop, work):
    simulator = work / "simulator"
    simulator.write_text(f'#!/bin/sh\nprintf "%s\\n" "$PWD" "$@" >> "{work}/played"\n')
    simulator.chmod(0o755)
    settings = desktop.home / "config" / "TAVOLO.ini"
    settings.parent.mkdir(parents=True, exist_ok=True)
    settings.write_text(f"[General]\nVPEXE={simulator}\n")


def colours(program, name):
    rect = program.widget(name)
    area = f"{rect['w']}x{rect['h']}+{rect['x']}+{rect['y']}"
    out = subprocess.run(["import", "-silent", "-window", "root", "-crop", area, "+repage", "-format", "%k", "info:-"], env=program.desktop.env,
                         check=True, capture_output=True, text=True).stdout
    return int(out)


def without_a_map(program, work):
    program.wait_active()
    program.check_tree_and_panels("Alpha", "Beta", "Gone")
    program.picture("nothing is found")
    program.double_click_item("Alpha")
    program.wait_text("txtDet_2", "Alpha")
    check(not (work / "played").exists(), "a table is played that is not there")


def propose(program, work):
    program.menu("mnuData", "mnuPathMap")
    program.wait_window("Path Map")
    program.wait_text("lblOthers", "0 of the 4 paths in the catalogue are found here.")
    program.click_until("cmdLookInFolder", lambda: program.visible("fileNameEdit"), "the folder dialog")
    program.choose_file(work / "Data")
    told = program.message()
    check(told.startswith(f"C:\\VP\\ is here {work}/Data/: 3 of 4 missing files are found"), f"the proposal: {told!r}")
    program.picture("proposed")
    program.answer("alt+y")
    program.wait_text("lblOthers", "Of the paths that begin otherwise 0 of 0 are found here.")
    check_equal(program.items("lstPairs"), ["C:\\VP\\"], "the lines of the map")
    program.picture("path map")
    program.click("cmdClose")
    program.wait_window_gone("Path Map")


def found_here(program, work):
    program.click_item("Alpha")
    program.wait_text("txtDet_2", "Alpha")
    check_equal(program.text("txtDet_3"), STORED["Alpha"][0], "the path in the details")
    program.click_tab(1)
    wait_for(lambda: colours(program, "imgShot") > 200, "the screenshot")
    program.picture("found")
    program.click_tab(0)
    program.double_click_item("Alpha")
    played = [str(work / "Data/Tables/Old"), "/Play", "-" + str(work / "Data/Tables/Old/Alpha.vpt")]
    wait_for(lambda: (work / "played").exists() and (work / "played").read_text().splitlines() == played,
             f"the simulator, started with {played}")


def scan(program, work):
    program.menu("mnuFile", "mnuTblScan")
    program.wait_window("Find New Visual Pinball Tables")
    program.click_until("cmdgo", lambda: program.visible("fileNameEdit"), "the folder dialog")
    program.choose_file(work / "Data")
    program.wait_text("Label2", "Process Complete")
    check_equal(program.text("lbltime"), "New Tables Found and added to your database: 0", "the end of the scan")
    program.click("cmdExit")
    program.wait_window_gone("Find New Visual Pinball Tables")


def purge(program):
    program.menu("mnuUtilities", "mnuPurge")
    program.message()
    program.answer("alt+y")
    wait_for(lambda: "Gone" not in program.items(), "the table without a file to go")
    check("Alpha" in program.items() and "Beta" in program.items(), "tables that are there are purged")
    program.picture("purged")


def wall(program):
    program.press("F9")
    wait_for(lambda: program.visible("PictureWall"), "the wall")
    wait_for(lambda: colours(program, "PictureWall") > 200, "the screenshot on the wall")
    program.picture("wall")
    program.press("F9")
    wait_for(lambda: program.visible("tvwDB"), "the tree")


def turns(desktop, folder, wanted):
    """The catalogue is opened as the program opens it, in turn on this computer and on one that has no map."""
    other = dict(desktop.env, XDG_CONFIG_HOME=str(desktop.home / "other"))
    for turn in range(TURNS):
        env = other if turn % 2 else desktop.env
        subprocess.run([BUILD / "bin" / "tavolo-cli", "--folder", folder, "crc"], env=env, check=True, capture_output=True, timeout=60)
    check_equal(paths(folder), wanted, f"the paths after {TURNS} turns")


def main():
    with tempfile.TemporaryDirectory() as temporary, Desktop("path_map_e2e") as desktop:
        work = Path(temporary)
        folder = work / "application"
        folder.mkdir()
        make_catalogue(desktop, folder, work)
        make_simulator(desktop, work)
        before = paths(folder)
        with Tavolo(desktop, folder) as program:
            without_a_map(program, work)
            propose(program, work)
            found_here(program, work)
            scan(program, work)
            purge(program)
            wall(program)
            program.close()
        kept = [row for row in before if row[0] != STORED["Gone"][0]]
        check_equal(paths(folder), kept, "the paths as mdb-export reads them")
        rows = {row["DisplayName"]: row for row in export_rows(folder / "pinball.mdb")}
        check_equal((rows["Alpha"]["Author"], rows["Alpha"]["TimesPlayed"]), ("Of the file", "1"), "what the scan has read, and the play")
        turns(desktop, folder, kept)
        with Tavolo(desktop, folder) as program:
            program.wait_text("txtDet_3", STORED["Alpha"][0])
            program.check_tree_and_panels("Alpha", "Beta")
            program.close()
        check_equal(paths(folder), kept, "the paths after another start")


run(main)
