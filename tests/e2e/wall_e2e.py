"""The wall of pictures, on the example collection: it takes the tree's place, shows the screenshots, chooses, plays and finds as the tree does,
keeps its size and its small pictures, and comes again with the next start."""

import subprocess

from driver import Desktop, Tavolo, check, check_equal, run, wait_for

def colours(program, item):
    """How many colours the item's picture has on the screen."""
    rect = wait_for(lambda: program.ask("item", name="PictureWall", text=item), f"the picture {item}")
    area = f"{rect['w']}x{rect['h'] - 30}+{rect['x']}+{rect['y']}"
    out = subprocess.run(["import", "-silent", "-window", "root", "-crop", area, "+repage", "-format", "%k", "info:-"], env=program.desktop.env,
                         check=True, capture_output=True, text=True).stdout
    return int(out)


def wall(program):
    program.wait_active()
    program.click_item("Copper Comet")
    program.wait_text("txtDet_2", "Copper Comet")
    program.press("F9")
    wait_for(lambda: program.visible("PictureWall") and not program.visible("tvwDB"), "the wall in the tree's place")
    wait_for(lambda: program.has_keyboard("PictureWall"), "the keyboard in the wall")
    check_equal(len(program.items("PictureWall")), 12, "pictures")
    check(program.ask("item", name="PictureWall", text="Copper Comet")["selected"], "the table of the tree is not selected in the wall")
    for name in ("Clockwork Orchard", "Copper Comet", "Glacier Express"):
        wait_for(lambda name=name: colours(program, name) > 200, f"the screenshot of {name}")
    program.picture("wall")


def choose(program):
    program.press("Right")
    program.wait_text("txtDet_2", "Glacier Express")
    program.click_item("Harbour Lights", "PictureWall")
    program.wait_text("txtDet_2", "Harbour Lights")
    program.click_item("Clockwork Orchard", "PictureWall", button=3)
    program.wait_text("txtDet_2", "Clockwork Orchard")
    wait_for(lambda: program.actions("mnufavorites")["mnuPlay"]["visible"], "the menu of the tree")
    program.picture("menu")
    program.press("Escape")
    wait_for(lambda: not program.actions("mnufavorites")["mnuPlay"]["visible"], "the end of the menu")
    program.press("ctrl+f")
    wait_for(lambda: program.has_keyboard("txtFind"), "the keyboard in the Find field")
    program.type("wave")
    program.wait_text("lblFindCount", "1 of 1")
    program.wait_text("txtDet_2", "Seventh Wave")
    program.picture("found")
    program.press("Escape", "Escape")
    wait_for(lambda: program.has_keyboard("PictureWall"), "the keyboard in the wall")


def size(program):
    before = program.ask("item", name="PictureWall", text="Seventh Wave")
    program.press("ctrl+plus")
    larger = wait_for(lambda: (lambda now: now if now["h"] > before["h"] else None)(program.ask("item", name="PictureWall", text="Seventh Wave")),
                      "larger pictures")
    program.desktop.xdotool("keydown", "ctrl", "click", "4", "keyup", "ctrl")
    wait_for(lambda: program.ask("item", name="PictureWall", text="Seventh Wave")["h"] > larger["h"], "still larger pictures")
    wait_for(lambda: colours(program, "Seventh Wave") > 200, "its screenshot")
    program.picture("larger")
    return program.ask("item", name="PictureWall", text="Seventh Wave")["h"]


def main():
    with Desktop("wall_e2e") as desktop:
        with Tavolo(desktop, None, ["--demo"]) as program:
            wall(program)
            choose(program)
            height = size(program)
            program.close()
        kept = list((desktop.home / "cache").glob("**/*.png"))
        check(len(kept) >= 12, f"small pictures are kept: {len(kept)}")
        with Tavolo(desktop, None, ["--demo"]) as program:
            wait_for(lambda: program.visible("PictureWall") and not program.visible("tvwDB"), "the wall of the last time")
            program.wait_active()
            check_equal(program.ask("item", name="PictureWall", text="Seventh Wave")["h"], height, "the height of a picture and its name")
            program.press("F9")
            wait_for(lambda: program.visible("tvwDB") and not program.visible("PictureWall"), "the tree")
            program.check_tree_and_panels("Seventh Wave")
            program.close()


run(main)
