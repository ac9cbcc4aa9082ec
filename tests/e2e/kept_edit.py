"""An edit that nobody has saved when the program was made to end: it is kept beside the catalogue and goes on at the next start."""

from driver import Tavolo, check, check_equal, export_rows, wait_for


def check_edit_is_kept(folder):
    """Of a catalogue of one table whose author was being typed: nothing else is left behind."""
    left = sorted(path.name for path in folder.iterdir())
    check("pinball.mdb-edit" in left, f"the edit is kept: {left}")
    check(not [name for name in left if name.endswith((".ldb", "-journal"))], f"no lock and no journal is left: {left}")
    check_equal(export_rows(folder / "pinball.mdb")[0]["Author"], "", "what nobody has saved")


def go_on_with_edit(desktop, folder, author):
    with Tavolo(desktop, folder) as program:
        program.wait_window("Settings")
        program.leave_settings()
        check_equal(program.text("txtDet_4"), author, "the edit that goes on")
        program.picture("the edit goes on")
        program.press("ctrl+s")
        wait_for(lambda: export_rows(folder / "pinball.mdb")[0]["Author"] == author, "the stored edit")
        program.press("ctrl+q")
        program.wait_end()
    check(not (folder / "pinball.mdb-edit").exists(), "the edit is no longer kept")
