"""Details in a real window: edit, locked tree, Save, Cancel, Delete, pictures, rules from a file, favourite, table information."""

import subprocess
import tempfile
from pathlib import Path

from driver import Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for

FULL = {
    "TableName": "Attack", "AuthorName": "Anna", "TableVersion": "1.1", "ReleaseDate": "2003-05-17",
    "AuthorEmail": "anna@example.org", "AuthorWebSite": "www.example.org/a b", "TableBlurb": "Short and fast",
    "TableDescription": "A table with every stream.", "TableRules": "Hit it.\r\nTwice.",
    "CompanyName": "Playmatic", "CompanyYear": "1977", "Custom Note": "Only here",
}


class Work:
    """The folders and files of one run."""

    def __init__(self, root):
        self.root = Path(root)
        self.folder = self.root / "app"
        self.folder.mkdir()
        self.tables = self.root / "tables"
        self.picture = self.root / "screen shot.jpg"
        self.broken = self.root / "broken.jpg"
        self.rules = self.root / "rules.txt"
        self.opened = self.root / "opened.log"
        self.simulator = self.root / "simulator"
        self._fill()

    def _fill(self):
        subprocess.run(["convert", "-size", "1600x1200", "plasma:red-blue", str(self.picture)], check=True)
        small = self.root / "small.jpg"
        subprocess.run(["convert", "-size", "320x240", "gradient:navy-orange", str(small)], check=True)
        make_table_file(self.tables / "full.vpt", FULL, screenshot=small)
        make_table_file(self.tables / "plain.vpt")
        make_table_file(self.tables / "third's.vpt", {"TableName": "Third"})
        self.broken.write_bytes(b"this is no picture")
        self.rules.write_bytes("Käse – 5 €\nSecond line".encode("cp1252"))
        self.simulator.write_text("#!/bin/sh\n")
        self.simulator.chmod(0o755)

    def row(self, name):
        return next((r for r in export_rows(self.folder / "pinball.mdb") if r["DisplayName"] == name), None)

    def wait_row(self, name, **wanted):
        def stored():
            row = self.row(name)
            # The driver reads the export as text, with its line ends as Python's.
            return row and all(row[column] == value.replace("\r\n", "\n") for column, value in wanted.items())
        wait_for(stored, f"{wanted} in the row of {name} as mdb-export reads it (it reads {self.row(name)})")


def register_handler(desktop, work):
    """Makes a program of this test the desktop's handler of web and mail addresses; it writes down its arguments."""
    handler = work.root / "handler"
    handler.write_text(f'#!/bin/sh\nprintf "%s|%s\\n" "$#" "$1" >> "{work.opened}"\n')
    handler.chmod(0o755)
    applications = desktop.home / "data" / "applications"
    applications.mkdir(parents=True)
    types = ("x-scheme-handler/http", "x-scheme-handler/mailto")
    (applications / "handler.desktop").write_text(
        f"[Desktop Entry]\nType=Application\nName=Handler\nExec={handler} %u\nMimeType={';'.join(types)};\n")
    (desktop.home / "config").mkdir(exist_ok=True)
    (desktop.home / "config" / "mimeapps.list").write_text(
        "[Default Applications]\n" + "".join(f"{kind}=handler.desktop\n" for kind in types))


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-details-") as temporary, Desktop("details_e2e") as desktop:
        work = Work(temporary)
        register_handler(desktop, work)
        with Tavolo(desktop, work.folder, env={"XDG_CURRENT_DESKTOP": "", "BROWSER": "false"}) as program:
            first_start(program, work)
            edit_and_cancel(program, work)
            edit_and_save(program, work)
            missing_file(program, work)
            pictures(program, work)
            rules(program, work)
            favourite(program, work)
            information(program, work)
            utilities_menu(program)
            bulk_update(program, work)
            delete(program, work)
            program.close()
        check_equal(sorted(r["DisplayName"] for r in export_rows(work.folder / "pinball.mdb")),
                    ["Attack", "Third"], "the tables that are left")
        check((work.tables / "plain.vpt").exists(), "the deleted row's table file is still there")


def first_start(program, work):
    program.first_scan(work.tables)
    program.type_into("txtDet_0", str(work.simulator))
    program.click("OKButton")
    program.wait_window_gone("Settings")
    program.desktop.manage(program.main_window(), "-r", "-b", "add,maximized_vert,maximized_horz")
    wait_for(lambda: program.widget("tvwDB")["h"] > 400, "the maximised window")


def show(program, name):
    program.click_item(name)
    wait_for(lambda: program.text("txtDet_2") == name, f"the details of {name}")


def is_locked(program):
    return program.visible("pnlAlert") is not None


def wait_unlocked(program):
    wait_for(lambda: not is_locked(program) and program.widget("tvwDB")["enabled"], "the end of the edit")


def check_locked(program, current_tab):
    wait_for(lambda: is_locked(program), "the warning")
    check_equal(program.text("pnlAlert"), "Record Changed! Click CANCEL or SAVE to continue.", "the warning")
    for name in ("tvwDB", "cboFilter", "cmdGo", "cmdPlay"):
        check_equal(program.widget(name)["enabled"], False, f"{name} is usable during an edit")
    for name in ("mnuFile", "mnuUtilities"):
        check_equal(program.ask("menubar", name=name)["enabled"], False, f"{name} is usable during an edit")
    for index in range(5):
        check_equal(program.tab(index)["enabled"], index == current_tab, f"tab {index} during an edit")


def edit_and_cancel(program, work):
    show(program, "plain")
    check(not is_locked(program), "no warning after a record was shown")
    program.click("txtDet_4")
    program.type("Nobody")
    check_locked(program, 0)
    program.picture("edited")
    program.click_item("Attack")
    program.desktop.close_window(program.main_window())
    check_equal(program.text("txtDet_2"), "plain", "the record during an edit")
    check_equal(program.text("txtDet_4"), "Nobody", "the edit")
    program.click("cmdCancel")
    wait_unlocked(program)
    check(program.process.poll() is None, "the program goes on")
    check_equal(program.text("txtDet_4"), "", "the author after Cancel")
    check_equal(work.row("plain")["Author"], "", "the stored author after Cancel")


def edit_and_save(program, work):
    program.type_into("txtDet_4", "Bob O'Brien")
    program.type_into("txtDet_1", "1999")
    program.click("txtDet_9")
    for line in ("one", "two", "three"):
        program.type(line)
        program.press("Return")
    program.type("four")
    program.click("chkPinMame")
    check_locked(program, 0)
    program.click("cmdChange")
    wait_unlocked(program)
    work.wait_row("plain", Author="Bob O'Brien", Year="1999", Notes="one\r\ntwo\r\nthree\r\nfour", PinMame="1")
    wait_for(lambda: "three..." in program.text("lblComments"), "the notes summary")
    program.wait_painted("lblComments")
    program.check_tree_and_panels("All", "Attack", "plain", "Third")
    program.picture("saved")


def missing_file(program, work):
    program.type_into("txtDet_7", "/nowhere/picture.jpg")
    program.click("cmdChange")
    check_equal(program.message(), "Please select a valid file name or leave blank", "the message")
    program.picture("missing file")
    program.answer()
    wait_for(lambda: program.widget("txtDet_7")["focus"], "the focus in the image file")
    check(is_locked(program), "the edit goes on")
    program.click("cmdCancel")
    wait_unlocked(program)
    check_equal(work.row("plain")["ImageFile"], "", "the stored image file")


def pictures(program, work):
    program.click("Command2")
    program.choose_file(work.picture)
    program.wait_text("txtDet_7", str(work.picture))
    check_locked(program, 0)
    program.type_into("txtDet_8", str(work.broken))
    program.click("cmdChange")
    wait_unlocked(program)
    work.wait_row("plain", ImageFile=str(work.picture), FlyerFile=str(work.broken))
    program.click_tab(1)
    wait_for(lambda: program.visible("imgShot"), "the screenshot tab")
    program.wait_painted("imgShot", 0.1)
    shot = program.pixels("imgShot")
    program.picture("screenshot")
    program.click("imgShot")
    program.wait_window("screen shot.jpg")
    program.picture("large screenshot")
    program.press("Escape")
    program.wait_window_gone("screen shot.jpg")
    program.click_tab(2)
    wait_for(lambda: program.visible("imgFlyer"), "the flyer tab")
    program.picture("undecodable flyer")
    program.click_tab(1)
    show_by_tree(program, "Attack")
    embedded = program.wait_repainted("imgShot", shot)
    program.wait_painted("imgShot", 0.1)
    program.picture("embedded screenshot")
    show_by_tree(program, "plain")
    program.wait_repainted("imgShot", embedded)
    program.click_tab(0)


def show_by_tree(program, name):
    """For tabs on which the name's field is not seen."""
    program.click_item(name)
    wait_for(lambda: any(w["text"] == name for w in program.widgets("txtDet_2")), f"the details of {name}")


def rules(program, work):
    show(program, "plain")
    program.click_tab(3)
    program.click("cmdReadRule")
    program.choose_file(work.rules)
    wait_for(lambda: program.text("txtDet_12").startswith("Käse – 5 €\nSecond line"), "the rules of the file")
    check_locked(program, 3)
    program.picture("rules read")
    program.click("cmdSaveRules")
    wait_unlocked(program)
    work.wait_row("plain", RulesText="Käse – 5 €\r\nSecond line\r\n")
    program.click("txtDet_12")
    program.type("more")
    check_locked(program, 3)
    program.click("cmdCancelRules")
    wait_unlocked(program)
    check(program.text("txtDet_12").startswith("Käse"), "the rules after Cancel")
    program.click_tab(0)


def favourite(program, work):
    show(program, "Third")
    program.click_item("Third", button=3)
    program.menu("mnufavorites", "mnuAddit")
    wait_for(lambda: program.widget("chkFavorite")["checked"], "the check mark")
    check(not is_locked(program), "a toggle is no edit")
    work.wait_row("Third", Favorite="1")
    program.picture("favourite")
    program.choose("cboFilter", "Favorites")
    program.click("cmdGo")
    wait_for(lambda: program.items()[:2] == ["Favorites", "Third"], "the favourites in the tree")
    show(program, "Third")
    program.click_item("Third", button=3)
    program.menu("mnufavorites", "mnuAddit")
    program.wait_text("cboFilter", "All")
    work.wait_row("Third", Favorite="0")
    program.click("cmdGo")
    wait_for(lambda: "plain" in program.items(), "all tables in the tree")
    program.check_tree_and_panels("All", "Attack", "plain", "Third")


def information(program, work):
    show(program, "plain")
    program.click("cmdReadInfo")
    check_equal(program.message(), "There is no table Information for this table", "the message")
    program.picture("no information")
    program.answer()
    show(program, "Attack")
    program.type_into("txtDet_4", "Edited")
    program.click("cmdChange")
    wait_unlocked(program)
    program.click("cmdReadInfo")
    program.wait_window("Table Information")
    shown = ("TableName", "AuthorName", "TableVersion", "ReleaseDate", "AuthorEmail", "AuthorWebSite", "TableBlurb",
             "TableDescription", "TableRules")
    for index, stream in enumerate(shown):
        check_equal(program.text(f"txtInfo_{index}").replace("\n", "\r\n"), FULL[stream], stream)
    program.choose("cboCustom", "Custom Note")
    program.wait_text("txtCustom", "Only here")
    program.wait_painted("picThm", 0.1)
    program.picture("information")
    program.click("cmdMail")
    program.click("cmdSite")
    wait_for(lambda: work.opened.exists() and len(work.opened.read_text().splitlines()) == 2, "the opened addresses")
    check_equal(sorted(work.opened.read_text().splitlines()),
                ["1|http://www.example.org/a b", "1|mailto:anna@example.org?subject=Attack"], "the opened addresses")
    program.click("cmdUpdateFace")
    program.click("Command1")
    program.wait_window_gone("Table Information")
    wait_unlocked(program)
    program.wait_text("txtDet_4", "Anna")
    work.wait_row("Attack", Author="Anna", Version="1.1", Notes="Short and fast", Company="Playmatic", Year="1977",
                  RulesText="Hit it.\r\nTwice.")
    program.picture("updated")


def utilities_menu(program):
    for tab, offered in ((3, False), (0, True)):
        program.click_tab(tab)
        program._press_at(program.ask("menubar", name="mnuUtilities"))
        wait_for(lambda: program.actions("mnuUtilities")["mnuRest"]["visible"], "the Utilities menu")
        actions = program.actions("mnuUtilities")
        for name in ("mnuRest", "mnuDates"):
            check_equal(actions[name]["enabled"], offered, f"{name} on tab {tab}")
        check_equal(actions["mnuSize"]["enabled"], False, "Restore Default Size of a maximised window")
        program.picture(f"utilities on tab {tab}")
        program.press("Escape")
        wait_for(lambda: not program.actions("mnuUtilities")["mnuRest"]["visible"], "the end of the menu")


def bulk_update(program, work):
    make_table_file(work.tables / "third's.vpt", {"TableName": "Third", "AuthorName": " Anna's "})
    program.menu("mnuUtilities", "mnuVPT")
    work.wait_row("Third", Author="Anna''s")
    check_equal(work.row("plain")["Author"], "Bob O'Brien", "a row without information")


def delete(program, work):
    show(program, "plain")
    program.click("cmdDelete")
    check_equal(program.message(), "Delete the current table?", "the question")
    program.picture("delete question")
    program.answer("alt+n")
    check(work.row("plain"), "the row after No")
    program.click("cmdDelete")
    program.message()
    program.answer("alt+y")
    wait_for(lambda: "plain" not in program.items(), "the tree without the deleted table")
    wait_for(lambda: not work.row("plain"), "the end of the row")
    program.check_tree_and_panels("All", "Attack", "Third")
    program.picture("deleted")


run(main)
