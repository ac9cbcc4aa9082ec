"""A picture that another program put on the clipboard becomes a table's screenshot."""

import subprocess
import tempfile
from pathlib import Path

from driver import Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for


def put_on_clipboard(desktop, picture, kind):
    """xclip stays behind as the owner of the clipboard until somebody else takes it."""
    subprocess.run(["xclip", "-selection", "clipboard", "-t", kind, "-i", str(picture)], env=desktop.env, check=True)


def make_picture(path, size):
    subprocess.run(["convert", "-size", size, "plasma:red-blue", str(path)], check=True)


def size_of(path):
    return subprocess.run(["identify", "-format", "%m %wx%h", str(path)], check=True, capture_output=True, text=True).stdout


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-capture-") as temporary, Desktop("capture_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        simulator = work / "simulator"
        simulator.write_text("#!/bin/sh\n")
        make_table_file(work / "tables" / "Attack.vpt", {"TableName": "Attack"})
        make_picture(work / "shot.png", "800x600")
        make_picture(work / "shot.bmp", "640x480")

        with Tavolo(desktop, folder) as program:
            program.first_scan(work / "tables")
            program.type_into("txtDet_0", str(simulator))
            program.click("OKButton")
            program.wait_window_gone("Settings")

            without_picture(program)
            save_and_set(program, desktop, work)
            detail_line(program)
            save_only(program, desktop, work)
            program.close()

        row = export_rows(folder / "pinball.mdb")[0]
        check_equal(row["ImageFile"], str(work / "attack.jpg"), "the stored screenshot")
        check_equal(size_of(work / "attack.jpg"), "JPEG 400x300", "the saved picture for another decoder")
        check_equal(size_of(work / "other.jpg"), "JPEG 640x480", "the second picture for another decoder")
        check(not (folder / "temp.jpg").exists() and not (folder / "temp.bmp").exists(), "work files are gone")


def without_picture(program):
    program.click_item("Attack")
    wait_for(lambda: program.text("txtDet_2") == "Attack", "the details")
    program.press("F2")
    check_equal(program.message(), "No valid Image in the clipboard", "the message without a picture")
    program.picture("no picture")
    program.answer()
    for field in ("txtDet_4", "cboFilter"):  # wherever the focus is
        program.click(field)
        program.press("Escape")  # the list of the combo box, if it came up
        wait_for(lambda: program.has_keyboard(field), f"the keyboard in {field}")
        program.press("F2")
        check_equal(program.message(), "No valid Image in the clipboard", f"the message in {field}")
        program.answer()


def save_and_set(program, desktop, work):
    put_on_clipboard(desktop, work / "shot.png", "image/png")
    program.press("F2")
    program.wait_window("Tavolo Capture - 800X600")
    program.picture("captured")
    program.menu("MENU_SIZE", "MENU_2")
    program.wait_window("Tavolo Capture - 400X300")
    check_equal(program.text("StatusCtl"), "400X300", "the size in the status bar")
    program.picture("reduced")
    program.click("view")
    program.press("F2")
    program.choose_file(work / "attack.jpg")
    wait_for(lambda: not program.window("Tavolo Capture - 400X300"), "the end of the capture window")
    wait_for(lambda: program.text("txtDet_7") == str(work / "attack.jpg"), "the screenshot's path in the details")
    wait_for(lambda: program.visible("cboFilter")["enabled"], "the saved record")
    program.picture("set")


def detail_line(program):
    """A detail line is no table: there is a picture on the clipboard, and nothing happens."""
    program.click_item("Attack")
    program.press("Right")
    program.click_item("Company: ")
    program.press("F2")
    program.click_item("Attack")
    wait_for(lambda: program.text("txtDet_2") == "Attack", "the details after the detail line")
    check(not any(w["title"].startswith("Tavolo Capture") for w in program.windows()), "a capture for a detail line")


def save_only(program, desktop, work):
    put_on_clipboard(desktop, work / "shot.bmp", "image/bmp")
    program.press("F2")
    program.wait_window("Tavolo Capture - 640X480")
    program.menu("MENU_FILE", "MENU_SAVEAS")
    program.choose_file(work / "other.jpg")
    wait_for(lambda: not program.window("Tavolo Capture - 640X480"), "the end of the capture window")
    check_equal(program.text("txtDet_7"), str(work / "attack.jpg"), "the screenshot after Save Only")


run(main)
