"""Logging out while a record is being edited, by a real session manager (the X Window System's own): the program ends at once, nothing is
left behind but the edit, which goes on at the next start."""

import subprocess
import tempfile
from pathlib import Path

from driver import Desktop, Tavolo, check_equal, make_table_file, run, wait_for
from kept_edit import check_edit_is_kept, go_on_with_edit


class SessionManager:
    """xsm, with a window for its user. `address`: where programs of the session find it."""

    def __init__(self, desktop):
        self.desktop = desktop

    def __enter__(self):
        home = Path(tempfile.mkdtemp(dir=self.desktop.home))  # where it knows no session yet
        told = home / "address"
        script = home / "tell"
        script.write_text(f'#!/bin/sh\necho "$SESSION_MANAGER" >"{told}.new"\nmv "{told}.new" "{told}"\n')
        script.chmod(0o755)
        (home / ".xsmstartup").write_text(f"{script}\n")
        self.process = subprocess.Popen(["xsm"], env=dict(self.desktop.env, HOME=str(home)), stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        wait_for(told.exists, "the session")
        self.address = told.read_text().strip()
        return self

    def __exit__(self, *exception):
        self.process.kill()
        self.process.wait()

    def window(self, title):
        """Position and size of the session manager's window, or None."""
        found = subprocess.run(["wmctrl", "-lG"], env=self.desktop.env, capture_output=True, text=True).stdout
        for line in found.splitlines():
            words = line.split(None, 7)
            if len(words) == 8 and words[7].strip() == title:
                return [*map(int, words[2:6]), words[0]]
        return None

    def point(self, title, x, y):
        """Points into the window that is in front, at a place counted from the window's upper left corner, or, below 0, from its lower
        edge; where on the screen that is."""
        place = wait_for(lambda: self.window(title), f"the window {title!r}")
        subprocess.run(["wmctrl", "-ia", place[4]], env=self.desktop.env, check=True)
        wait_for(lambda: self.desktop.active_window() == int(place[4], 16), f"the window {title!r} in front")
        # wmctrl adds the frame twice; what the server says counts.
        told = subprocess.run(["xwininfo", "-id", place[4]], env=self.desktop.env, capture_output=True, text=True, check=True).stdout
        left, top = (int(line.split()[-1]) for line in told.splitlines() if "Absolute upper-left" in line)
        at = left + x, top + (y if y >= 0 else place[3] + y)
        self.desktop.xdotool("mousemove", *at)
        return at

    def shut_down(self, entry):
        """Drags from "Shutdown" to an entry of its menu: 0 asks the programs first, 1 does not."""
        x, y = self.point("xsm: Default", 135, 50)
        place_of_menu = x - 30, y + 20, 60, 30
        before = self.desktop.pixels(*place_of_menu)
        self.desktop.xdotool("mousedown", 1)
        wait_for(lambda: self.desktop.pixels(*place_of_menu) != before, "the menu")
        self.desktop.xdotool("mousemove_relative", 0, 25 + 26 * entry)
        self.desktop.xdotool("mouseup", 1)

    def name_and_confirm(self):
        self.point("Shutdown", 150, 28)
        self.desktop.xdotool("click", 1)
        self.desktop.xdotool("type", "one")
        self.desktop.picture("the dialog of the session manager")
        self.point("Shutdown", 45, -18)
        self.desktop.xdotool("click", 1)


def end_by(manager, desktop, folder, arguments, author, end):
    """Types an author and has the session ended."""
    with Tavolo(desktop, folder, arguments, env={"SESSION_MANAGER": manager.address}) as program:
        program.wait_window("Settings")
        program.leave_settings()
        wait_for(lambda: program.text("txtDet_2") == "Attack", "the details")
        program.type_into("txtDet_4", author)
        program.picture("an edit")
        end()
        program.wait_end()
    check_edit_is_kept(folder)


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo logout ") as temporary, Desktop("logout") as desktop:
        folder = Path(temporary) / "app"
        folder.mkdir()
        table = Path(temporary) / "tables" / "Attack.vpt"
        make_table_file(table, {"TableName": "Attack"})
        with SessionManager(desktop) as manager:
            def ask_first():
                manager.shut_down(0)
                manager.name_and_confirm()
            end_by(manager, desktop, folder, [str(table)], "Anna", ask_first)
            check_equal(manager.process.wait(30), 0, "exit status of the session manager")
        with SessionManager(desktop) as manager:
            end_by(manager, desktop, folder, [], "Berta", lambda: manager.shut_down(1))
        go_on_with_edit(desktop, folder, "Berta")


run(main)
