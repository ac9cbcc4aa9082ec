"""The start of the real program: on an empty folder, and on files under the catalogue's name that are none."""

import hashlib
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent / "e2e"))
from driver import BUILD, DATA, SAMPLES, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for  # noqa: E402
from kept_edit import check_edit_is_kept, go_on_with_edit  # noqa: E402

EMPTY = BUILD / "share" / "tavolo" / "pinball.mdb"
ALL_COLUMNS = ["ID", "DisplayName", "FileName", "Author", "Company", "Year", "Version", "ImageFile", "FlyerFile", "Notes",
               "PinMame", "Favorite", "RulesFile", "FileDate", "RulesText", "TimesPlayed", "LastPlayed", "DateAdded", "CRC"]
NOBODY = 65534
ROOT = Path(__file__).resolve().parent.parent.parent


def digest(path):
    return hashlib.sha256(path.read_bytes()).hexdigest()


def columns(database):
    text = subprocess.run(["mdb-export", str(database), "Tables"], check=True, capture_output=True, text=True).stdout
    return text.splitlines()[0].split(",")


def first_start(desktop, folder):
    with Tavolo(desktop, folder) as program:
        program.wait_window("Find New Visual Pinball Tables")
        program.picture("first start")
        program.click("cmdExit")
        program.wait_window("Settings")
        program.leave_settings()
        check(program.window("Tavolo -    v. 1.6 - RC 1"), "the main window")
        program.picture("empty catalogue")
        program.close()
    check_equal(columns(folder / "pinball.mdb"), ALL_COLUMNS, "columns after the first start")


def refused(desktop, folder, label, key="Return"):
    """Starts the program on a folder whose catalogue cannot be opened; the text of the message box, which is answered with `key`."""
    before = {path.name: digest(path) for path in folder.iterdir()} if folder.exists() else None
    with Tavolo(desktop, folder) as program:
        text = program.message()
        wait_for(lambda: "Tavolo" in desktop.window_titles(), "the box on the screen")
        program.picture(label)
        program.press(key)
        program.process.wait(30)
        check_equal(program.process.returncode, 1, f"{label}: exit status")
    after = {path.name: digest(path) for path in folder.iterdir()} if folder.exists() else None
    check_equal(after, before, f"{label}: the folder's files")
    check(len(text) > 10, f"{label}: the message says only {text!r}")
    return text


def missing(desktop, work):
    folder = work / "no catalogue"
    folder.mkdir()
    (folder / "note.txt").write_text("there was a catalogue here")
    check("pinball.mdb" in refused(desktop, folder, "missing"), "the message names the file")
    check("no such folder" in refused(desktop, work / "no such folder", "no folder", "alt+n"), "the question names the folder")


def made(desktop, work):
    """A folder that is named and not there is made after a question."""
    folder = work / "a new folder"
    with Tavolo(desktop, folder) as program:
        program.message()
        program.answer("alt+y")
        program.wait_window("Find New Visual Pinball Tables")
        program.click("cmdExit")
        program.wait_window("Settings")
        program.leave_settings()
        check(program.visible("WelcomePage"), "the page of an empty catalogue")
        check(not program.visible("tvwDB"), "the tree is not shown")
        program.picture("welcome")
        program.close()
    check((folder / "pinball.mdb").exists(), "the new catalogue")


def example(desktop):
    """The example collection, in the user's folder, and once more in the same."""
    for _ in range(2):
        with Tavolo(desktop, None, ["--demo"]) as program:
            wait_for(lambda: program.text("sbrDB_1") == "12 Tables in list.  ", "a dozen tables")
            check(not program.messages(), "a message over the example collection")
            program.wait_front("Tavolo -    v. 1.6 - RC 1")
            program.wait_item_painted("Harbour Lights")
            program.click_item("Harbour Lights")
            program.wait_text("txtDet_4", "In\u00e8s Perrault")
            program.picture("example collection")
            program.close()
    folder = desktop.home / "data" / "tavolo" / "Example Collection"
    check_equal(len(export_rows(folder / "pinball.mdb")), 12, "rows of the example collection")
    check((folder / "TAVOLO.ini").exists(), "settings of its own")
    shutil.rmtree(desktop.home / "data" / "tavolo")


def lost(desktop, work):
    """A data folder of an earlier start whose catalogue is gone: told, nothing is put in its place."""
    folder = desktop.home / "data" / "tavolo"
    folder.mkdir(parents=True)
    shutil.copyfile(EMPTY, folder / "pinball.BU")
    check("pinball.mdb" in refused(desktop, folder, "lost catalogue"), "the message names the file")
    shutil.rmtree(folder)


def raw_names(desktop, work):
    """Folders and tables whose names are no UTF-8; links and the system's own folders among them."""
    folder = Path(os.fsdecode(os.fsencode(work) + b"/caf\xe9"))
    folder.mkdir()
    tables = work / "raw tables"
    inner = Path(os.fsdecode(os.fsencode(tables) + b"/S\xfcd"))
    inner.mkdir(parents=True)
    plain = work / "plain.vpt"
    make_table_file(plain)
    for name in (b"/T\xfc.vpt", b"/T\xf6.vpt"):
        shutil.copyfile(plain, os.fsdecode(os.fsencode(inner) + name))
    (tables / "a link").symlink_to(inner)
    (tables / "proc").symlink_to("/proc")
    (tables / "sys").symlink_to("/sys")
    with Tavolo(desktop, folder) as program:
        program.first_scan(tables)
        program.leave_settings()
        wait_for(lambda: program.text("sbrDB_1") == "2 Tables in list.  ", "two tables")
        program.picture("names that are no UTF-8")
        program.close()
    check_equal(len(export_rows(folder / "pinball.mdb")), 2, "rows of the catalogue")
    with Tavolo(desktop, folder) as program:
        program.wait_window("Settings")
        program.leave_settings()
        program.menu("mnuUtilities", "mnuPurge")
        program.click("cmdYes")
        wait_for(lambda: program.text("sbrDB_1") == "2 Tables in list.  ", "the tables are still there")
        program.menu("mnuUtilities", "mnuBackup")
        wait_for(lambda: (folder / "pinball.BU").exists(), "the backup")
        program.message()  # comes when the file is there
        program.press("Return")
        program.close()


def not_a_catalogue(desktop, work):
    folder = work / "text file"
    folder.mkdir()
    (folder / "pinball.mdb").write_text("dear diary, " * 2000)
    refused(desktop, folder, "text file")
    for size in (0, 100, 4096, 20000):
        cut = work / f"cut at {size}"
        cut.mkdir()
        shutil.copyfile(EMPTY, cut / "pinball.mdb")
        os.truncate(cut / "pinball.mdb", size)
        refused(desktop, cut, f"cut at {size}")


def held(desktop, work):
    folder = work / "held"
    folder.mkdir()
    with Tavolo(desktop, folder) as holder:
        holder.wait_window("Find New Visual Pinball Tables")
        holder.process.send_signal(signal.SIGSTOP)  # so that whatever is written now comes from the second one
        try:
            before = digest(folder / "pinball.mdb")
            with Tavolo(desktop, folder) as second:
                text = second.message()
                second.picture("held")
                second.press("Return")
                second.process.wait(30)
                check_equal(second.process.returncode, 1, "exit status of the second program")
            check("use" in text or "lock" in text, f"the message says that somebody holds the file: {text!r}")
            check_equal(digest(folder / "pinball.mdb"), before, "the file that is held")
        finally:
            holder.process.send_signal(signal.SIGCONT)


def asked_to_end(desktop, work):
    """SIGTERM during an edit, with a dialog open: nothing is left behind but the edit, which goes on at the next start."""
    folder = work / "asked to end"
    folder.mkdir()
    tables = work / "tables to end"
    make_table_file(tables / "Attack.vpt", {"TableName": "Attack"})
    with Tavolo(desktop, folder, [str(tables / "Attack.vpt")]) as program:
        program.wait_window("Settings")
        program.leave_settings()
        wait_for(lambda: program.text("txtDet_2") == "Attack", "the details")
        program.type_into("txtDet_4", "Anna")
        program.menu("mnuHelp", "mnuAbout")
        wait_for(lambda: program.visible("cmdOK"), "the about box")
        program.process.send_signal(signal.SIGTERM)
        program.wait_end()
    check_edit_is_kept(folder)
    go_on_with_edit(desktop, folder, "Anna")


def old_catalogue(desktop, work, source):
    """A catalogue of the first versions gains its columns and keeps every cell."""
    folder = work / source.stem
    folder.mkdir()
    shutil.copyfile(source, folder / "pinball.mdb")
    before = {row["ID"]: row for row in export_rows(source)}
    check(len(before) >= 40, f"{source.name} has rows")
    with Tavolo(desktop, folder) as program:
        program.wait_window("Settings")
        program.leave_settings()
        wait_for(lambda: program.text("sbrDB_1") == f"{len(before)} Tables in list.  ", "all tables")
        program.click_item("All")
        program.picture("old catalogue")
        program.close()
    after = {row["ID"]: row for row in export_rows(folder / "pinball.mdb")}
    check_equal(sorted(after), sorted(before), "the old rows")
    for number, row in before.items():
        check_equal({name: after[number][name] for name in row}, row, f"the old cells of row {number}")
        check(after[number]["DateAdded"], f"the date of addition of row {number}")
    check_equal(columns(folder / "pinball.mdb"), ALL_COLUMNS, "columns of the old catalogue")


def read_only(desktop, work):
    """A catalogue that may only be read is shown, without a message, and stays as it is."""
    folder = work / "read only"
    folder.mkdir()
    for name in ("One", "Two", "Three"):
        make_table_file(work / "tables" / f"{name}.vpt")
    with Tavolo(desktop, folder) as program:
        program.first_scan(work / "tables")
        program.leave_settings()
        program.close()
    (folder / "pinball.mdb").chmod(0o444)
    folder.chmod(0o555)
    before = digest(folder / "pinball.mdb")
    wrapper = work / "as nobody"
    as_nobody = f"setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups " if os.geteuid() == 0 else ""
    wrapper.write_text(f'#!/bin/sh\nexec {as_nobody}"{BUILD}/bin/tavolo" "$@"\n')
    wrapper.chmod(0o755)
    if os.geteuid() == 0:
        work.chmod(0o755)
        for path in (desktop.home, *desktop.home.rglob("*")):
            os.chown(path, NOBODY, NOBODY)
    with Tavolo(desktop, folder, program=wrapper) as program:
        program.wait_window("Settings")
        program.leave_settings()
        wait_for(lambda: program.text("sbrDB_1") == "3 Tables in list.  ", "three tables")
        program.picture("read only")
        program.close()
    folder.chmod(0o755)
    check_equal(digest(folder / "pinball.mdb"), before, "the read-only file")


def command_line():
    program = str(BUILD / "bin" / "tavolo")
    environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}

    def output(*arguments):
        return subprocess.run([program, *arguments], env=environment, capture_output=True, text=True, timeout=30)

    check(output("--help").stdout.startswith("usage: tavolo [--demo] [--folder DIR]"), "--help")
    check_equal(output("--version").stdout, "Tavolo 1.6.0\n", "--version")
    page = ROOT / "packaging" / "tavolo.1"
    rendered = subprocess.run(["groff", "-man", "-Tascii", "-ww", "-P-cbou", page], capture_output=True, text=True)
    check_equal((rendered.returncode, rendered.stderr), (0, ""), "the manual page")
    for word in re.findall(r"--[a-z]+", output("--help").stdout):
        check(word in rendered.stdout, f"{word} in the manual page")
    check("\nExec=tavolo %f\n" in (ROOT / "packaging" / "org.tavolo.tavolo.desktop").read_text(), "the file in the desktop's entry")
    wrong = output("--fast")
    check_equal(wrong.returncode, 2, "status of an unknown argument")
    check("unknown argument: --fast" in wrong.stderr, "the complaint about it")


def main():
    command_line()
    with tempfile.TemporaryDirectory(prefix="tavolo start ") as temporary, Desktop("start") as desktop:
        work = Path(temporary)
        (work / "first").mkdir()
        first_start(desktop, work / "first")
        missing(desktop, work)
        made(desktop, work)
        example(desktop)
        lost(desktop, work)
        raw_names(desktop, work)
        not_a_catalogue(desktop, work)
        held(desktop, work)
        asked_to_end(desktop, work)
        old_catalogue(desktop, work, DATA / "databases" / "catalogue-jet3.mdb")
        if SAMPLES:
            old_catalogue(desktop, work, SAMPLES / "catalogue" / "old-base-250.mdb")
        read_only(desktop, work)


run(main)
