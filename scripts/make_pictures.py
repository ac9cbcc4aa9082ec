#!/usr/bin/env python3
"""Makes the pictures of the real windows for README and help: drives the built program on a small catalogue of invented tables.

    TAVOLO_BUILD=build/release python3 scripts/make_pictures.py

writes docs/images/main-window.png and docs/help/images/*.png. Needs what the tests need (scripts/install_packages.sh test).
"""

import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "e2e"))

from driver import Desktop, Tavolo, make_table_file, run, wait_for  # noqa: E402

HELP = ROOT / "docs" / "help" / "images"
README = ROOT / "docs" / "images"

# name, author, version, company, year, blurb
TABLES = [
    ("Harbour Lights", "Mara Lind", "1.2", "Northwind", "1978", "Light every lamp of the pier.\nThree balls, no extra ball."),
    ("Moon Miner", "T. Okafor", "2.0", "Selene", "1986", "Two flippers below, one above.\nCollect ore, open the shaft,\nand start the shift of three balls."),
    ("Night Express", "Jo Brandt", "1.0", "Northwind", "1981", "Eight stations, one line."),
    ("Paper Dragon", "Mara Lind", "1.4", "Lantern Games", "1992", "Feed the dragon from both ramps."),
    ("Silver Spurs", "R. Castellano", "0.9", "Prairie", "1971", "An old-timer with chimes."),
    ("Tin Robot", "T. Okafor", "1.1", "Selene", "1995", "Wind it up; it walks."),
    ("Velvet Circus", "Jo Brandt", "3.0", "Lantern Games", "1989", "Trapeze, lions, and a multiball under the tent."),
]
RULES = "Spell O-R-E on the left bank.\nThe shaft opens for ten seconds.\nLock three balls below ground: the shift begins."


def draw_playfield(path, hue):
    """An invented playfield: bumpers, lanes and flippers."""
    words = ["convert", "-size", "600x900", f"gradient:hsl({hue},55%,28%)-hsl({(hue + 50) % 360},60%,12%)", "-fill", "none",
             "-stroke", "gold", "-strokewidth", "6", "-draw", "roundrectangle 20,20 580,880 60,60"]
    for x, y in ((210, 260), (390, 260), (300, 400)):
        words += ["-fill", "crimson", "-stroke", "white", "-strokewidth", "5", "-draw", f"circle {x},{y} {x + 55},{y}",
                  "-fill", "gold", "-stroke", "none", "-draw", f"circle {x},{y} {x + 25},{y}"]
    for x in range(110, 500, 65):
        words += ["-fill", "deepskyblue", "-stroke", "none", "-draw", f"circle {x},120 {x + 14},120"]
    words += ["-stroke", "white", "-strokewidth", "22", "-draw", "line 170,760 265,810", "-draw", "line 430,760 335,810",
              "-fill", "silver", "-stroke", "none", "-draw", "circle 330,650 350,650", str(path)]
    subprocess.run(words, check=True)


def build_tables(work):
    work.mkdir()
    for number, (name, author, version, company, year, blurb) in enumerate(TABLES):
        picture = work / f"{number}.jpg"
        draw_playfield(picture, 40 + number * 47)
        make_table_file(work / f"{name}.vpt",
                        {"TableName": name, "AuthorName": author, "TableVersion": version, "CompanyName": company, "CompanyYear": year,
                         "TableBlurb": blurb.replace("\n", "\r\n"), "TableRules": RULES.replace("\n", "\r\n"),
                         "AuthorEmail": "author@example.org", "AuthorWebSite": "www.example.org", "ReleaseDate": "May 2004",
                         "TableDescription": "An invented table, for the pictures of the manual."}, screenshot=picture)


def shoot(program, title, *paths):
    """The window of that title with its frame; the shared widgets of a moment come to rest first."""
    desktop = program.desktop
    wait_for(lambda: title in desktop.window_titles(), f"the window {title}")
    window = desktop.xdotool("search", "--name", f"^{title.replace('(', '.').replace(')', '.')}$").stdout.split()[-1]
    previous = None
    with tempfile.TemporaryDirectory() as folder:
        shot = Path(folder) / "shot.png"

        def at_rest():
            nonlocal previous
            subprocess.run(["import", "-frame", "-window", window, "+repage", str(shot)], env=desktop.env, check=True)
            now = subprocess.run(["identify", "-format", "%#", str(shot)], capture_output=True, check=True).stdout
            same, previous = now == previous, now
            return same
        wait_for(at_rest, f"a quiet picture of {title}")
        for path in paths:
            path.parent.mkdir(parents=True, exist_ok=True)
            # Text and flat colours: few colours make a small file and look the same.
            subprocess.run(["convert", str(shot), "-colors", "200", "-depth", "8", f"PNG8:{path}"], check=True)
            print(path.relative_to(ROOT))


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-pictures-") as temporary, Desktop("pictures") as desktop:
        work = Path(temporary)
        tables = work / "Tables"
        build_tables(tables)
        simulator = work / "simulator"
        simulator.write_text("#!/bin/sh\n")
        simulator.chmod(0o755)
        folder = work / "Tavolo"
        folder.mkdir()
        with Tavolo(desktop, folder) as program:
            take(program, tables, simulator)
            program.close()


def take(program, tables, simulator):
    title = "Tavolo -    v. 1.6 - RC 1"
    program.wait_window("Find New Visual Pinball Tables")
    program.click("cmdgo")
    program.choose_file(tables)
    program.wait_text("Label2", "Process Complete")
    shoot(program, "Find New Visual Pinball Tables", HELP / "scan.png")
    program.click("cmdExit")
    program.wait_window("Settings")
    program.type_into("txtDet_0", str(simulator))
    shoot(program, "Settings", HELP / "settings.png")
    program.click("OKButton")
    program.wait_window_gone("Settings")

    program.desktop.xdotool("search", "--name", "^Tavolo -", "windowsize", "--sync", "900", "560")
    program.click_item("Moon Miner")
    wait_for(lambda: program.text("txtDet_2") == "Moon Miner", "the details")
    program.press("Right")
    shoot(program, title, HELP / "details.png")
    program.click_tab(1)
    program.desktop.xdotool("mousemove", "5", "5")
    shoot(program, title, README / "main-window.png", HELP / "main-window.png")
    program.click_tab(3)
    shoot(program, title, HELP / "rules.png")
    program.click_tab(0)

    program.click("cmdReadInfo")
    program.wait_window("Table Information")
    shoot(program, "Table Information", HELP / "table-information.png")
    program.press("Escape")
    program.wait_window_gone("Table Information")

    for action, window, name in (("mnuRest", "Global Path Change", "reset-paths"), ("mnuImport", "Import VPLauncher Data", "import"),
                                 ("mnuCRC", "CRC", "crc")):
        program.menu("mnuUtilities", action)
        shoot(program, window, HELP / f"{name}.png")
        program.press("Escape")
        wait_for(lambda: window not in program.desktop.window_titles(), f"the end of {window}")
    program.menu("mnuHelp", "mnuAbout")
    shoot(program, "About Tavolo", HELP / "about.png")
    program.press("Escape")

    shot = tables / "1.jpg"
    clip = tables / "clip.png"
    subprocess.run(["convert", str(shot), "-resize", "400x600", str(clip)], check=True)
    subprocess.run(["xclip", "-selection", "clipboard", "-t", "image/png", "-i", str(clip)], env=program.desktop.env, check=True)
    program.click_item("Moon Miner")
    program.press("F2")
    program.wait_window("Tavolo Capture - 400X600")
    shoot(program, "Tavolo Capture - 400X600", HELP / "capture.png")
    program.press("Escape")
    program.wait_window_gone("Tavolo Capture - 400X600")


run(main)
