"""The help command, F1 on several windows, the about box with its link and the system-information tool, seen by stand-ins for
the desktop's programs that write down how they were called."""

import shutil
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check_equal, make_table_file, run, wait_for

STAND_INS = {
    "xdg-open": 'echo "open $# $1" >> "$LOG"',
    "kchmviewer": 'echo "viewer $# $1 $2 $3" >> "$LOG"',
    "xdg-mime": 'test "$*" = "query default application/vnd.ms-htmlhelp" && echo kchmviewer.desktop',
}


class DesktopPrograms:
    def __init__(self, folder):
        self.folder = folder
        self.log = folder / "log"
        folder.mkdir()
        for name, script in STAND_INS.items():
            self.install(name, script)

    def install(self, name, script):
        path = self.folder / name
        path.write_text(f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)

    def env(self):
        return {"PATH": f"{self.folder}:/usr/bin:/bin", "LOG": str(self.log)}

    def wait_call(self, wanted):
        wait_for(lambda: self.log.exists() and self.log.read_text().splitlines()[-1:] == [wanted],
                 f"the call {wanted!r}")
        self.log.unlink()


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-help-") as temporary, Desktop("help_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app folder"
        folder.mkdir()
        shutil.copy(BUILD / "bin" / "tavolo.chm", folder)
        shutil.copy(BUILD / "share" / "tavolo" / "pinball.mdb", folder)
        help_file = folder / "tavolo.chm"
        make_table_file(work / "tables" / "Attack.vpt", {"TableName": "Attack"})
        (work / "simulator").write_text("#!/bin/sh\n")
        programs = DesktopPrograms(work / "programs")
        with Tavolo(desktop, folder, env=programs.env()) as program:
            start(program, programs, help_file, work)
            help_of_windows(program, programs, help_file)
            about(program, programs)
            program.close()


def start(program, programs, help_file, work):
    program.wait_front("Find New Visual Pinball Tables")
    program.press("F1")
    programs.wait_call(f"viewer 3 -showPage /scan.html {help_file}")
    program.click("cmdgo")
    program.choose_file(work / "tables")
    program.wait_text("Label2", "Process Complete")
    program.click("cmdExit")
    program.wait_front("Settings")
    program.press("F1")
    programs.wait_call(f"viewer 3 -showPage /settings.html {help_file}")
    program.type_into("txtDet_0", str(work / "simulator"))
    program.click("OKButton")
    program.wait_window_gone("Settings")


def help_of_windows(program, programs, help_file):
    program.menu("mnuHelp", "mnuHelpContents")
    programs.wait_call(f"open 1 {help_file}")
    program.click_item("Attack")
    program.press("F1")
    programs.wait_call(f"viewer 3 -showPage /main-window.html {help_file}")
    for action, title, page in (("mnuRest", "Global Path Change", "reset-paths"),
                                ("mnuImport", "Import VPLauncher Data", "import-launcher")):
        program.menu("mnuUtilities", action)
        program.wait_front(title)
        program.press("F1")
        programs.wait_call(f"viewer 3 -showPage /{page}.html {help_file}")
        program.press("Escape")
        program.wait_window_gone(title)


def about(program, programs):
    program.menu("mnuHelp", "mnuAbout")
    program.wait_window("About Tavolo")
    program.picture("about")
    check_equal(program.text("label1"), "", "the link of a program that has no page yet")
    program.click("CmdSystem")
    check_equal(program.message(), "System Information Is Unavailable At This Time", "the answer without a tool")
    program.answer()
    programs.install("hardinfo", 'echo "tool $#" >> "$LOG"')
    program.click("CmdSystem")
    programs.wait_call("tool 0")
    program.click("cmdOK")
    program.wait_window_gone("About Tavolo")


run(main)
