"""Every command of the Utilities menu that works on the whole catalogue, by hand in a real window; the rows are read back by mdb-export."""

import os
import shutil
import subprocess
import tempfile
import zlib
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for

NAMES = ["Attack From Space", "Bob's Table", "Grüße aus Köln", "Old/Deep Dive"]


def crc(path):
    """The catalogue's form of a file's checksum, from a library that is not the program's."""
    return format(zlib.crc32(Path(path).read_bytes()), "X")


class Catalogue:
    """The rows as another program reads them, by the name of the table file."""

    def __init__(self, folder):
        self.database = folder / "pinball.mdb"

    def rows(self):
        return {Path(row["FileName"].replace("\\", "/")).stem: row for row in export_rows(self.database)}

    def wait(self, condition, what):
        """The program's writer brings what it has stored into the file within a second."""
        wait_for(lambda: condition(self.rows()), what)


def utility(program, action):
    program.menu("mnuUtilities", action)


def fill_catalogue(program, work):
    program.first_scan(work / "tables")
    program.picture("settings")
    program.type_into("txtDet_0", str(work / "missing"))
    program.click("OKButton")
    check_equal(program.message(), "Please select a valid Executable", "the answer to a missing simulator")
    program.answer()
    program.type_into("txtDet_0", str(work / "simulator"))
    program.click("OKButton")
    program.wait_window_gone("Settings")


def reset_file_dates(program, catalogue, work):
    moment = 1049566029  # 2003-04-05 18:07:09 UTC
    os.utime(work / "tables" / "Bob's Table.vpt", (moment, moment))
    utility(program, "mnuDates")
    check_equal(program.message(), "Update all file dates?", "the question about file dates")
    program.picture("file dates")
    program.answer("alt+n")
    utility(program, "mnuDates")
    program.message()
    program.answer("alt+y")
    catalogue.wait(lambda rows: rows["Bob's Table"]["FileDate"] == "2003-04-05 18:07:09", "the file date")
    program.check_tree_and_panels("All", "Bob's Table")


def reset_times_played(program, catalogue):
    program.double_click_item("Attack From Space")
    catalogue.wait(lambda rows: rows["Attack From Space"]["TimesPlayed"] == "1", "the counted play")
    utility(program, "mnuResetTimes")
    check_equal(program.message(), "This function sets the number of times played for all tables back to 0\n"
                "Are you sure you want to continue?", "the question about play counts")
    program.picture("times played")
    program.answer("alt+y")
    catalogue.wait(lambda rows: all(r["TimesPlayed"] == "0" and r["LastPlayed"] == "" for r in rows.values()),
                   "the play counts")


def reset_paths(program, catalogue, work):
    shutil.copytree(work / "tables", work / "moved")
    utility(program, "mnuRest")
    program.wait_window("Global Path Change")
    program.click("OKButton")
    check_equal(program.message(), "Both EXISTING and NEW paths are required!", "the warning about empty paths")
    program.answer()
    program.wait_window_gone("Global Path Change")
    utility(program, "mnuRest")
    program.type_into("txtExisting", str(work / "TABLES"))
    program.type_into("txtNew", str(work / "moved"))
    program.picture("reset paths")
    program.click("OKButton")
    check_equal(program.message(), "Paths Changed", "the end of the path change")
    program.answer()
    program.wait_window_gone("Global Path Change")
    catalogue.wait(lambda rows: rows["Bob's Table"]["FileName"] == str(work / "moved" / "Bob's Table.vpt"), "the new path")
    check_equal(catalogue.rows()["Deep Dive"]["FileName"], str(work / "tables" / "Old" / "Deep Dive.vpt"),
                "the path in the subfolder")


def update_crcs(program, catalogue, work):
    with open(work / "moved" / "Attack From Space.vpt", "ab") as file:
        file.write(b"changed")
    utility(program, "mnuCRC")
    check(program.message().startswith("This will function will update the database"), "the question about checksums")
    program.picture("crc")
    program.answer()
    program.wait_window_gone("CRC Utility - Update all CRC Values in database")
    files = {Path(name).name: work / "moved" / (name + ".vpt") for name in NAMES[:3]}
    catalogue.wait(lambda rows: all(rows[name]["CRC"] == crc(path) for name, path in files.items()),
                   "the checksums as zlib computes them")


def import_launcher_data(program, catalogue, folder, work):
    lines = [
        "Attack\\1.1\\$" + crc(work / "moved" / "Attack From Space.vpt") + "\\Jürgen O'Brien\\1999\\-\\VPinMame",
        "Bob\\2.0\\" + crc(work / "moved" / "Bob's Table.vpt") + "\\Bob\\1987\\Bally\\",
        "Nobody\\1\\$FFFFFFFF\\x\\1900\\y\\z",
        "short\\line",
    ]
    (folder / "vpLauncher.dat").write_bytes("\r\n".join(lines).encode("cp1252"))
    utility(program, "mnuImport")
    program.wait_window("Import VPLauncher Data")
    program.click("optImport_1", at=(8, 8))
    program.click("cmdImport")
    check_equal(program.message(), "Please enter a valid date", "the answer without a date")
    program.answer()
    program.click("optImport_0", at=(8, 8))
    program.click("cmdImport")
    wait_for(lambda: program.visible("fileNameEdit"), "the file dialog")
    program.picture("import file")
    program.press("Escape")  # the preset file is used
    program.wait_text("lblWriting", "Task Complete!")
    program.picture("import done")
    check_equal(program.text("cmdImport"), "Done", "the button after the import")
    program.click("cmdImport")
    program.wait_window_gone("Import VPLauncher Data")

    def imported(rows):
        attack, bob = rows["Attack From Space"], rows["Bob's Table"]
        return ([attack[c] for c in ("Version", "Author", "Year", "Company", "PinMame")]
                == ["1.1", "Jürgen O'Brien", "1999", "VPinMame", "1"]
                and [bob[c] for c in ("Version", "Author", "Year", "Company", "PinMame")]
                == ["2.0", "Bob", "1987", "Bally", "0"])
    catalogue.wait(imported, "the imported rows")


def purge(program, catalogue, work):
    (work / "moved" / "Grüße aus Köln.vpt").unlink()
    utility(program, "mnuPurge")
    check(program.message().startswith("This function will remove all tables that cannot befound"), "the question before the purge")
    program.picture("purge")
    program.answer("alt+n")
    check_equal(len(catalogue.rows()), 4, "rows after No")
    utility(program, "mnuPurge")
    program.message()
    program.answer("alt+y")
    catalogue.wait(lambda rows: sorted(rows) == ["Attack From Space", "Bob's Table", "Deep Dive"], "the purged rows")
    wait_for(lambda: "Grüße aus Köln" not in program.items(), "the rebuilt tree")
    program.check_tree_and_panels("All", "Bob's Table", "Deep Dive")


def undo_and_redo(program, catalogue):
    """The purge, taken back and done again; the window of all changes tells of it."""
    program.press("ctrl+z")
    catalogue.wait(lambda rows: len(rows) == 4, "the row that comes back")
    wait_for(lambda: "Grüße aus Köln" in program.items(), "the table in the tree")
    program.menu("mnuEdit", "mnuHistory")
    program.wait_front("History")
    wait_for(lambda: program.items("tblFields"), "the fields of the newest change")
    program.picture("history")
    program.press("Escape")
    program.wait_window_gone("History")
    program.press("ctrl+shift+z")
    catalogue.wait(lambda rows: len(rows) == 3, "the row that goes again")


def restore_snapshot(program, catalogue):
    """The state before the purge, out of the snapshot that was made then."""
    program.menu("mnuEdit", "mnuRestoreSnapshot")
    program.wait_front("Restore")
    program.wait_text("lblDifferences", "Compared with today:\nTables: 1 more, 0 fewer, 0 different")
    program.picture("snapshots")
    program.click("cmdRestore")
    check(program.message().startswith("The catalogue becomes what it was on "), "the question before restoring")
    program.answer("alt+n")
    check_equal(len(catalogue.rows()), 3, "rows after No")
    program.click("cmdRestore")
    program.message()
    program.answer("alt+y")
    wait_for(lambda: any(text.startswith("The catalogue was restored.") for text in program.messages()), "the end of the restore")
    program.picture("restored")
    program.answer()
    program.wait_window_gone("Restore")
    catalogue.wait(lambda rows: len(rows) == 4, "the rows of the snapshot")
    wait_for(lambda: "Grüße aus Köln" in program.items(), "the table in the tree")
    # Undone by another restore, of the state that was saved before it.
    program.menu("mnuEdit", "mnuRestoreSnapshot")
    program.wait_front("Restore")
    program.wait_text("lblDifferences", "Compared with today:\nTables: 0 more, 1 fewer, 0 different")
    program.click("cmdRestore")
    program.message()
    program.answer("alt+y")
    wait_for(lambda: any(text.startswith("The catalogue was restored.") for text in program.messages()), "the end of the restore")
    program.answer()
    program.wait_window_gone("Restore")
    catalogue.wait(lambda rows: len(rows) == 3, "the rows after the purge")
    wait_for(lambda: "Grüße aus Köln" not in program.items(), "the tree after the purge")


def backup(program, catalogue, folder):
    utility(program, "mnuBackup")
    check_equal(program.message(), f"Database copied to:{folder}/pinball.BU\nRename to {folder}/pinball.mdb "
                "WHILE TAVOLO IS NOT RUNNING to restore.", "where the backup is")
    program.picture("backup")
    program.answer()
    # What another program reads in the backup while the catalogue is open is what the catalogue holds.
    restored = folder / "restored.mdb"
    shutil.copy(folder / "pinball.BU", restored)
    check_equal(export_rows(restored), export_rows(catalogue.database), "the rows of the backup")
    subprocess.run([str(BUILD / "bin" / "tavolo-dbcheck"), str(restored)], check=True)
    check_equal([p.name for p in folder.glob("pinball.BU*")], ["pinball.BU"], "files of the backup")
    restored.unlink()


def come_and_go(program, catalogue, work):
    """Many tables that are imported and purged again: their space stays in the file."""
    gone = work / "gone.csv"
    gone.write_text("\n".join(["DisplayName,FileName,Notes"] + [f"Gone {i},/gone/{i}.vpt,{'n' * 1500}" for i in range(100)]))
    program.menu("mnuData", "mnuImportTables")
    wait_for(lambda: program.visible("fileNameEdit"), "the file dialog")
    program.choose_file(gone)
    check(program.message().startswith("100 tables will be added"), "the question before the import")
    program.answer("alt+y")
    catalogue.wait(lambda rows: len(rows) == 103, "the imported rows")
    utility(program, "mnuPurge")
    program.message()
    program.answer("alt+y")
    catalogue.wait(lambda rows: len(rows) == 3, "the rows that are left")


def compact(program, catalogue, work):
    come_and_go(program, catalogue, work)
    rows = export_rows(catalogue.database)
    before = catalogue.database.stat().st_size
    program.menu("mnuEdit", "mnuCompact")
    check(program.message().startswith("The catalogue takes "), "what compacting will bring")
    program.picture("compact")
    program.answer("alt+n")
    check_equal(catalogue.database.stat().st_size, before, "the size after No")
    program.menu("mnuEdit", "mnuCompact")
    program.message()
    program.answer("alt+y")
    wait_for(lambda: catalogue.database.stat().st_size < before, "the smaller file")
    wait_for(lambda: program.visible("tvwDB") and "Bob's Table" in program.items(), "the tree")
    program.picture("compacted")
    check_equal(export_rows(catalogue.database), rows, "the rows of the compacted catalogue")
    check_equal(sorted(p.name for p in catalogue.database.parent.glob("pinball.mdb*")), ["pinball.mdb", "pinball.mdb-folders", "pinball.mdb-history", "pinball.mdb-history.old", "pinball.mdb-snapshots"],
                "files left beside it")
    # The program goes on writing to the new file.
    program.click_item("Bob's Table")
    utility(program, "mnuResetTimes")
    program.message()
    program.answer("alt+y")
    catalogue.wait(lambda rows: all(r["TimesPlayed"] == "0" for r in rows.values()), "a change of the new file")


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-maintenance-") as temporary, Desktop("maintenance_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        (work / "simulator").write_text("#!/bin/sh\n")
        (work / "simulator").chmod(0o755)
        for name in NAMES:
            make_table_file(work / "tables" / (name + ".vpt"), filler=20000)
        catalogue = Catalogue(folder)
        with Tavolo(desktop, folder) as program:
            fill_catalogue(program, work)
            reset_file_dates(program, catalogue, work)
            reset_times_played(program, catalogue)
            reset_paths(program, catalogue, work)
            update_crcs(program, catalogue, work)
            import_launcher_data(program, catalogue, folder, work)
            purge(program, catalogue, work)
            undo_and_redo(program, catalogue)
            restore_snapshot(program, catalogue)
            backup(program, catalogue, folder)
            compact(program, catalogue, work)
            program.picture("end")
            program.close()
        restore(desktop, folder)
        subprocess.run([str(BUILD / "bin" / "tavolo-dbcheck"), str(folder / "pinball.mdb")], check=True)


def restore(desktop, folder):
    """The rename that the message describes."""
    (folder / "pinball.mdb").unlink()
    (folder / "pinball.BU").rename(folder / "pinball.mdb")
    with Tavolo(desktop, folder) as program:
        wait_for(lambda: "Bob's Table" in program.items(), "the restored catalogue")
        program.close()


run(main)
