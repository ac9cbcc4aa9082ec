"""Files and folders given to the program: at its start, and to a second one while the first is running, which takes them over."""

import signal
import subprocess
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for


def hand_over(desktop, folder, given, status=0):
    """A second start of the program while the first is running."""
    done = subprocess.run([BUILD / "bin" / "tavolo", "--folder", folder, given], env=dict(desktop.env, QT_QPA_PLATFORM="xcb"),
                          capture_output=True, text=True, timeout=60)
    check_equal((done.returncode, done.stderr), (status, ""), f"the second start with {given}")


def selected(program, title):
    program.wait_text("txtDet_2", title)


def close_settings(program):
    """They come by themselves, as no simulator is chosen yet; the scan does not, as there is a table."""
    program.wait_window("Settings")
    program.click_until("CancelButton", lambda: not program.window("Settings"), "the end of the settings")


def at_the_start(program):
    close_settings(program)
    selected(program, "First")
    program.check_tree_and_panels("First")


def from_behind(desktop, program, folder, tables):
    """The window comes back from the task bar with the new table selected."""
    window = program.main_window()
    desktop.xdotool("windowminimize", window["id"])
    wait_for(lambda: desktop.active_window() != window["id"], "the window to go")
    hand_over(desktop, folder, tables / "Second.vpt")
    selected(program, "Second")
    wait_for(lambda: desktop.active_window() == window["id"], "the window to be in front")
    program.check_tree_and_panels("First", "Second")
    program.picture("taken over")
    hand_over(desktop, folder, tables / "more")
    selected(program, "Fourth")
    hand_over(desktop, folder, tables / "Second.vpt")
    selected(program, "Second")


def with_nothing(desktop, program, folder):
    """A second start with nothing to give brings the window back from the task bar."""
    window = program.main_window()
    desktop.xdotool("windowminimize", window["id"])
    wait_for(lambda: desktop.active_window() != window["id"], "the window to go")
    done = subprocess.run([BUILD / "bin" / "tavolo", "--folder", folder], env=dict(desktop.env, QT_QPA_PLATFORM="xcb"),
                          capture_output=True, text=True, timeout=60)
    check_equal((done.returncode, done.stderr), (0, ""), "the second start with nothing")
    wait_for(lambda: desktop.active_window() == window["id"], "the window to be in front")


def behind_a_dialog(desktop, program, folder, tables):
    """What is handed over waits until the dialog is closed."""
    program.menu("mnuHelp", "mnuAbout")
    wait_for(lambda: program.visible("cmdOK"), "the about box")
    hand_over(desktop, folder, tables / "Last.vpt")
    program.picture("waiting behind a dialog")
    check(program.visible("cmdOK"), "the about box is open")
    check("Last" not in program.items(), "the tree changes behind a dialog")
    program.click("cmdOK")
    selected(program, "Last")


def without_an_answer(desktop, program, folder, tables):
    """An instance that does not answer: the second start says who has the catalogue."""
    program.process.send_signal(signal.SIGSTOP)
    try:
        with Tavolo(desktop, folder, [str(tables / "First.vpt")]) as second:
            text = second.message()
            check("use" in text or "lock" in text, f"the message says that somebody holds the file: {text!r}")
            wait_for(lambda: desktop.active_window() in [w["id"] for w in second.windows()], "the keyboard in the message")
            second.press("Return")
            second.process.wait(30)
            check_equal(second.process.returncode, 1, "exit status of the second program")
    finally:
        program.process.send_signal(signal.SIGCONT)


def after_a_death(desktop, folder, tables):
    """A socket that a killed instance has left behind is in nobody's way."""
    with Tavolo(desktop, folder, [str(tables / "First.vpt")]) as program:
        close_settings(program)
        selected(program, "First")
        hand_over(desktop, folder, tables / "Second.vpt")
        selected(program, "Second")
        program.close()


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo given ") as temporary, Desktop("given_tables") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        tables = work / "tables"
        for name in ("First", "Second", "Last", "more/Third", "more/Fourth"):
            make_table_file(tables / f"{name}.vpt", {"TableName": Path(name).name})
        with Tavolo(desktop, folder, [str(tables / "First.vpt")]) as program:
            at_the_start(program)
            from_behind(desktop, program, folder, tables)
            with_nothing(desktop, program, folder)
            behind_a_dialog(desktop, program, folder, tables)
            without_an_answer(desktop, program, folder, tables)
            wait_for(lambda: len(export_rows(folder / "pinball.mdb")) == 5, "the rows in the catalogue's file")
            program.process.kill()
            program.process.wait()
        after_a_death(desktop, folder, tables)


run(main)
