"""The main job from the first start on: an empty application folder, the scan, the tree, the simulator's path, a play, a second start."""

import tempfile
from pathlib import Path

from driver import (BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for)

TABLES = {
    "Attack From Space.vpt": {"TableName": "Attack", "AuthorName": "Bob O'Brien", "TableVersion": "1.1",
                              "TableBlurb": "Short and fast", "CompanyName": "Bally", "CompanyYear": "1999"},
    "UPPER.VPT": {"TableName": "Upper Deck"},
    "deep/er/and deeper/it's here.Vpt": {"TableName": "  Bob's Table  "},
    "deep/no name.vpt": None,
    "RECYCLER/old.vpt": {"TableName": "From the bin"},
}
NAMES = ["Attack", "Bob''s Table", "From the bin", "no name", "Upper Deck"]


def make_tables(root):
    for name, texts in TABLES.items():
        make_table_file(root / name, texts)
    (root / "note.vpt.bak").write_text("no table")
    (root / "empty.txt").write_text("")


def table_nodes(program):
    """The texts of the nodes below the root, details left out."""
    details = ("File Date: ", "Author: ", "Company: ", "Year: ", "Last Played: ", "Date Added: ")
    return [text for text in program.items()[1:] if not text.startswith(details)]


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo main ") as temporary, Desktop("main_job") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        tables = work / "my tables"
        make_tables(tables)
        log = work / "simulator.log"
        simulator = BUILD / "bin" / "x11_simulator"
        check(simulator.exists(), f"{simulator} was not built")

        end_file = work / "end of the play"
        with Tavolo(desktop, folder, env={"TAVOLO_SIMULATOR_LOG": str(log), "TAVOLO_SIMULATOR_END_FILE": str(end_file)}) as program:
            first_start(program, tables, simulator)
            browse(program)
            play(program, folder, log, end_file)
            choose_filter(program)
            program.picture("before the end")
            program.close()

        check_equal(len(export_rows(folder / "pinball.mdb")), len(TABLES), "rows in the catalogue")

        with Tavolo(desktop, folder) as program:
            second_start(program)
            program.close()


def first_start(program, tables, simulator):
    program.wait_window("Find New Visual Pinball Tables")
    program.picture("scan dialog by itself")
    program.click_until("cmdgo", lambda: program.visible("fileNameEdit"), "the folder dialog")
    program.choose_file(tables)
    program.wait_text("Label2", "Process Complete")
    check_equal(program.text("lbltime"), f"New Tables Found and added to your database: {len(TABLES)}", "the count of the scan")
    program.picture("scan done")
    program.click("cmdExit")
    program.wait_window("Settings")
    program.picture("settings by itself")
    program.type_into("txtDet_0", str(simulator))
    program.click("OKButton")
    program.wait_window_gone("Settings")
    wait_for(lambda: table_nodes(program) == NAMES, f"the tables in the tree (it shows {table_nodes(program)})")
    check_equal(program.items()[0], "All", "the root")
    program.check_tree_and_panels("All", *NAMES)
    program.picture("the tree")


def browse(program):
    program.click_item("Attack")
    wait_for(lambda: program.visible("txtDet_2") and program.visible("txtDet_2")["text"] == "Attack", "the details of Attack")
    program.check_tree_and_panels(*NAMES)
    program.wait_painted("sbrDB_2")
    for index, text in {1: "1999", 4: "Bob O''Brien", 5: "1.1", 6: "Bally", 9: "Short and fast"}.items():
        check_equal(program.text(f"txtDet_{index}"), text, f"field {index}")
    wait_for(lambda: program.visible("lblComments") and program.text("lblComments") == "Short and fast", "the notes summary")
    program.wait_painted("lblComments")
    program.picture("details")


def play(program, folder, log, end_file):
    """The watch does not wait for the simulator's first window, so the first play leaves it running; the second one, on the same table,
    finds it playing, watches it and closes it when the play has ended."""
    desktop = program.desktop
    playing = "Visual Pinball - [Attack From Space*]"

    def counted(times):
        row = next(r for r in export_rows(folder / "pinball.mdb") if r["DisplayName"] == "Attack")
        return row["TimesPlayed"] == str(times) and row["LastPlayed"]

    program.double_click_item("Attack")
    wait_for(lambda: playing in desktop.window_titles(), "the simulator's window")
    report = log.read_text().splitlines()
    check("argv[1]=/Play" in report, f"no /Play in {report}")
    check(any(line.startswith("argv[2]=-") and line.endswith("my tables/Attack From Space.vpt") for line in report),
          f"the table's path in {report}")
    check(any(line.startswith("cwd=") and line.endswith("my tables") for line in report), f"the working folder in {report}")
    wait_for(lambda: counted(1), "the counted play as mdb-export reads it")
    program.picture("playing")

    program.double_click_item("Attack")
    wait_for(lambda: "already open" in log.read_text(), "the second start of the simulator")
    check("closed by request" not in log.read_text(), "the simulator was closed while it played")
    end_file.touch()
    wait_for(lambda: "closed by request" in log.read_text(), "the close request to the simulator")
    wait_for(lambda: not any("Visual Pinball" in title for title in desktop.window_titles()), "the end of the simulator")
    wait_for(lambda: counted(2), "the second play as mdb-export reads it")
    wait_for(lambda: program.text("txtDet_2") == "Attack", "the details after the play")
    program.check_tree_and_panels(*NAMES)
    program.picture("played")


def choose_filter(program):
    """A value filter, and its values; then the whole list again, backwards."""
    program.choose("cboFilter", "Company")
    program.wait_text("cboFilterDet", "")
    check_equal(program.items("cboFilterDet"), ["Bally"], "the companies")
    program.type_into("cboFilterDet", "Bally")
    program.click("cmdGo")
    wait_for(lambda: program.items()[:1] == ["Company = Bally"] and table_nodes(program) == ["Attack"], "one table of Bally")
    program.check_tree_and_panels("Company = Bally", "Attack")
    program.picture("filtered")
    program.choose("cboFilter", "All")
    program.click("lblDirection")
    check_equal(table_nodes(program), ["Attack"], "the tree before Refresh Tree")
    program.click("cmdGo")
    wait_for(lambda: table_nodes(program) == NAMES[::-1], "the tree backwards")
    program.check_tree_and_panels("All", *NAMES)
    program.click_item("Upper Deck")
    wait_for(lambda: program.text("txtDet_2") == "Upper Deck", "the details of Upper Deck")


def second_start(program):
    wait_for(lambda: table_nodes(program) == NAMES[::-1], f"the same selection again (it shows {table_nodes(program)})")
    program.check_tree_and_panels("All", *NAMES)
    check_equal(program.text("lblDirection"), "Desc", "the direction")
    wait_for(lambda: program.text("txtDet_2") == "Upper Deck", "the last table's details")
    check_equal(program.ask("item", name="tvwDB", text="Upper Deck")["selected"], True, "the last node is selected")
    check(not program.window("Settings") and not program.window("Find New Visual Pinball Tables"), "no dialog at the second start")
    program.picture("second start")


run(main)
