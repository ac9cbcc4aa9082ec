"""Assistive technology and the keyboard: the main window, its tree and two dialogs as AT-SPI tells them, and a change of all paths by
keyboard alone. Needs the system's Python with pyatspi."""

import os
import subprocess
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for

# Set by see(), when there is a bus to be asked.
pyatspi = None

# By this role Qt's bridge tells the lines of a tree.
LINE = "ROLE_TABLE_CELL"
# What a user can put the focus on but is no control.
NO_CONTROLS = ("ROLE_APPLICATION", "ROLE_FRAME", "ROLE_DIALOG", "ROLE_WINDOW", "ROLE_ALERT", "ROLE_FILLER", "ROLE_VIEWPORT")


def see(desktop):
    """From now on this process is assistive technology on that desktop."""
    global pyatspi
    for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
        os.environ[name] = desktop.env[name]
    import pyatspi as module

    pyatspi = module


def children(node):
    node.clear_cache()
    return [child for child in (node.getChildAtIndex(i) for i in range(node.childCount)) if child]


def nodes(root, most=2000):
    """The node and what is below it; of a list with many lines the first."""
    waiting = [root]
    while waiting and most > 0:
        node = waiting.pop(0)
        most -= 1
        yield node
        waiting += children(node)[:60]


def has(node, *states):
    node.clear_cache()
    return all(node.getState().contains(state) for state in states)


def role(node):
    return node.getRole().value_name.replace("ATSPI_", "")


def application():
    def found():
        for program in children(pyatspi.Registry.getDesktop(0)):
            if program.name == "Tavolo":
                return program
        return None
    return wait_for(found, "the program on the bus of assistive technology")


def window(title):
    """The program's window whose title begins so."""
    return wait_for(lambda: next((w for w in children(application()) if w.name.startswith(title) and has(w, pyatspi.STATE_SHOWING)),
                                 None), f"the window {title!r} over AT-SPI")


def below(root, wanted_role, name):
    return wait_for(lambda: next((n for n in nodes(root) if role(n) == wanted_role and n.name == name), None),
                    f"{wanted_role} {name!r} below {root.name!r}")


def check_names(root):
    """Every control that is shown has a name; says how many there are."""
    count = 0
    for node in nodes(root):
        if has(node, pyatspi.STATE_FOCUSABLE, pyatspi.STATE_SHOWING) and role(node) not in NO_CONTROLS:
            count += 1
            check(node.name.strip(), f"a control without a name in {root.name!r}: {role(node)}, child of {node.parent.name!r}")
    return count


def focused(root):
    return next((n for n in nodes(root) if has(n, pyatspi.STATE_FOCUSED) and n.childCount == 0), None)


def wait_focus(root, wanted_role, name):
    wait_for(lambda: (lambda n: n and role(n) == wanted_role and n.name == name)(focused(root)),
             f"the focus on {wanted_role} {name!r} (it is on {(lambda n: n and (role(n), n.name))(focused(root))})")


def the_tree(program):
    """Level and state of its lines, in words and as states."""
    tree = below(window("Tavolo -"), "ROLE_TREE", "Tables")
    line = lambda name: below(tree, LINE, name)  # noqa: E731
    root = next(child for child in children(tree) if role(child) == LINE)
    check(has(root, pyatspi.STATE_EXPANDABLE, pyatspi.STATE_EXPANDED), "the root does not say that it is open")
    check_equal(root.description, "Level 1", "the root")
    missing = line("Beta, its file is missing")
    favorite = line("Alpha, favorite")
    check_equal((favorite.description, missing.description), ("Level 2", "Level 2"), "two tables")
    check(has(favorite, pyatspi.STATE_EXPANDABLE) and not has(favorite, pyatspi.STATE_EXPANDED), "a table does not say that it is closed")
    program.click_item("Alpha")
    wait_for(lambda: has(line("Alpha, favorite"), pyatspi.STATE_SELECTED), "the table to say that it is selected")
    program.press("Right")
    wait_for(lambda: has(line("Alpha, favorite"), pyatspi.STATE_EXPANDED), "the table to say that it is open")
    detail = next(n for n in nodes(tree) if n.name.startswith("Author"))
    check_equal(detail.description, "Level 3", "a line of details")
    program.press("Left")
    wait_for(lambda: not has(line("Alpha, favorite"), pyatspi.STATE_EXPANDED), "the table to say that it is closed again")


def dialogs_by_key(program):
    """Opened by the letters of the menus, looked at, left by Escape."""
    for letters, title, least in ((("alt+u", "l"), "Settings", 4), (("alt+h", "a"), "About", 2), (("ctrl+slash",), "Keys", 2)):
        for key in letters:
            program.press(key)
        shown = window(title)
        controls = check_names(shown)
        check(controls >= least, f"only {controls} controls in {title}")
        program.picture(title)
        program.press("Escape")
        wait_for(lambda: not any(w["title"].startswith(title) for w in program.windows()), f"the end of the window {title}")


def paths_by_keyboard_alone(program, folder):
    """From the tree to changed rows, and what has the focus says at each step what it is."""
    program.press("alt+u", "r")
    dialog = window("Global Path Change")
    check_names(dialog)
    wait_focus(dialog, "ROLE_TEXT", "Existing Path")
    program.type("/old/place")
    program.press("Tab")
    wait_focus(dialog, "ROLE_TEXT", "New Path")
    program.type("/new/place")
    program.picture("paths typed")
    program.press("Return")
    program.message()
    program.answer("Return")
    program.wait_window_gone("Global Path Change")
    wait_for(lambda: any(row["FileName"] == "/new/place/beta.vpt" for row in export_rows(folder / "pinball.mdb")), "the new path")


def body():
    with tempfile.TemporaryDirectory(prefix="tavolo-access-") as temporary:
        folder, tables = Path(temporary) / "folder", Path(temporary) / "tables"
        folder.mkdir()
        make_table_file(tables / "alpha.vpt", {"TableName": "Alpha"})
        subprocess.run([BUILD / "bin" / "tavolo-new-catalogue", folder / "pinball.mdb"], check=True)
        rows = Path(temporary) / "rows.csv"
        rows.write_text("DisplayName,FileName,Author,Favorite\n"
                        f"Alpha,{tables}/alpha.vpt,Ann,True\nBeta,/old/place/beta.vpt,Bob,False\n")
        subprocess.run([BUILD / "bin" / "tavolo-cli", "--folder", folder, "import", "--match=file", rows], check=True, capture_output=True)
        with Desktop("access_e2e") as desktop:
            (desktop.home / "config").mkdir()
            (desktop.home / "config" / "TAVOLO.ini").write_text("[General]\nVPEXE=/bin/true\n")
            desktop.start_assistive_technology()
            see(desktop)
            with Tavolo(desktop, folder) as program:
                program.wait_front(program.main_window()["title"])
                program.wait_item_painted("Beta")
                the_tree(program)
                controls = check_names(window("Tavolo -"))
                check(controls > 25, f"only {controls} controls in the main window")
                dialogs_by_key(program)
                paths_by_keyboard_alone(program, folder)
                program.press("ctrl+q")
                program.wait_end()


run(body)
