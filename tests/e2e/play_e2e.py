"""Playing with the real program: by the play button with sound and minimising, through Wine, a play inside another one's watch, and what goes wrong."""

import array
import os
import shutil
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, check_equal, export_rows, make_table_file, run, wait_for

SUPPORT = Path(__file__).resolve().parent.parent / "support"
PLAYING = "Visual Pinball - [{}*]"
FOO, BAR = "Käpt'n Foo", "Bar"


class Recording:
    """What the test's sound server is given to play (see with_sound_server.sh), while the block runs."""

    def __enter__(self):
        self.file = tempfile.TemporaryFile()
        self.process = subprocess.Popen(
            ["parec", "--raw", "--device=tavolo_test.monitor", "--format=s16le", "--rate=22050", "--channels=1",
             "--latency-msec=20"], stdout=self.file)
        self.wait_more(1)
        return self

    def size(self):
        return os.fstat(self.file.fileno()).st_size

    def wait_more(self, count):
        start = self.size()
        wait_for(lambda: self.size() >= start + count, "the recording")

    def samples(self):
        """Everything up to a quarter of a second from now."""
        self.wait_more(22050 // 2)
        self.file.seek(0)
        data = self.file.read()
        return array.array("h", data[:len(data) // 2 * 2])

    def __exit__(self, *exception):
        self.process.kill()
        self.process.wait()
        self.file.close()


def loudest(samples):
    return max((abs(sample) for sample in samples), default=0)


def holds(samples, sound_file):
    """Nine of ten pieces of 20 ms of the sound are in the recording, byte for byte or one off, in their order."""
    with wave.open(str(sound_file)) as file:
        sound = array.array("h", file.readframes(file.getnframes()))
    pieces = [sound[i:i + 441] for i in range(0, len(sound) - 440, 441)]
    found = position = 0
    for piece in pieces:
        for at in range(position, len(samples) - 440):
            if abs(samples[at] - piece[0]) < 3 and abs(samples[at + 200] - piece[200]) < 3 and \
                    all(abs(samples[at + i] - piece[i]) < 3 for i in range(441)):
                found, position = found + 1, at + 441
                break
    return found * 10 >= len(pieces) * 9


class Simulator:
    """The environment of the stand-in simulators, and their log."""

    def __init__(self, work):
        self.log = work / "simulator.log"
        self.end_file = work / "end of the play"
        self.env = {"TAVOLO_SIMULATOR_LOG": str(self.log), "TAVOLO_SIMULATOR_END_FILE": str(self.end_file)}

    def lines(self):
        return self.log.read_text().splitlines() if self.log.exists() else []

    def wait_line(self, line, count=1, timeout=60):
        wait_for(lambda: self.lines().count(line) >= count, f"{count} x {line!r} in the simulator's log {self.lines()}", timeout)

    def begin(self):
        self.log.unlink(missing_ok=True)
        self.end_file.unlink(missing_ok=True)

    def end_play(self):
        self.end_file.touch()


def window_state(program):
    """What the window manager says of the main window: "Normal" or "Iconic"; empty while there is no such window."""
    title = next(w["title"] for w in program.windows() if w["title"].startswith("Tavolo -"))
    state = subprocess.run(["xprop", "-name", title, "WM_STATE"], env=program.desktop.env, capture_output=True, text=True).stdout
    return next((word for word in ("Normal", "Iconic") if word in state), "")


def is_painted(program):
    """Whether the screen shows anything: its background is all black."""
    deviation = subprocess.run("import -window root -resize 64x45! png:- | identify -format '%[fx:standard_deviation]' png:-", shell=True,
                               env=program.desktop.env, capture_output=True, text=True).stdout
    return float(deviation or 0) > 0.05


def times_played(folder, name):
    return next(row["TimesPlayed"] for row in export_rows(folder / "pinball.mdb") if row["DisplayName"] == name)


def check_played(folder, name, times):
    """The engine writes its journal into the file some moments after the statement."""
    wait_for(lambda: times_played(folder, name) == str(times),
             f"{times} plays of {name} as mdb-export reads them (it reads {times_played(folder, name)})")


def wait_playing(program, name, timeout=60):
    wait_for(lambda: PLAYING.format(name) in program.desktop.window_titles(), f"the simulator's window for {name}", timeout)


def wait_no_simulator(program):
    wait_for(lambda: not any("Visual Pinball" in title for title in program.desktop.window_titles()), "the end of the simulator")


def start(program, collection, simulator):
    program.wait_window("Find New Visual Pinball Tables")
    program.click_until("cmdgo", lambda: program.visible("fileNameEdit"), "the folder dialog")
    program.choose_file(collection)
    program.wait_text("Label2", "Process Complete")
    program.click_until("cmdExit", lambda: program.window("Settings"), "the settings")
    set_executable(program, simulator)


def set_executable(program, path):
    program.wait_window("Settings")

    def typed():
        program.type_into("txtDet_0", str(path))
        return program.text("txtDet_0") == str(path)
    wait_for(typed, "the path in the settings")
    program.click_until("OKButton", lambda: not program.window("Settings"), "the end of the settings")


def change_executable(program, path):
    program.menu("mnuUtilities", "mnuExe")
    set_executable(program, path)


def silent_play(program, folder, simulator):
    simulator.begin()
    program.click_item(FOO)
    with Recording() as recording:
        program.click("cmdPlay")
        wait_playing(program, FOO)
        check_equal(loudest(recording.samples()), 0, "sound while it is off")
    check_played(folder, FOO, 1)


def loud_play(program, folder, simulator):
    """The table is on the simulator's screen already: this play is watched, with the window minimised."""
    program.menu("mnuOptions", "mnuSound")
    program.menu("mnuOptions", "mnuMin")
    program.click_item(FOO)
    with Recording() as recording:
        program.click("cmdPlay")
        simulator.wait_line("already open")
        wait_for(lambda: window_state(program) == "Iconic", "the minimised window")
        samples = recording.samples()
        check(holds(samples, folder / "slingshot.wav"), "slingshot.wav was not heard")
        check(holds(samples, folder / "Pinball.wav"), "Pinball.wav was not heard")
    program.picture("minimised while a table is played")
    simulator.end_play()
    simulator.wait_line("closed by request")
    wait_for(lambda: window_state(program) == "Normal", "the restored window")
    wait_no_simulator(program)
    wait_for(lambda: is_painted(program), "the restored window on the screen")
    program.check_tree_and_panels("All", FOO, BAR)
    check_played(folder, FOO, 2)
    program.picture("restored")
    program.menu("mnuOptions", "mnuSound")
    program.menu("mnuOptions", "mnuMin")


def nested_play(program, simulator):
    """Two tables on the screen, then each of them watched, the second inside the first one's watch."""
    simulator.begin()
    for name in (FOO, BAR):
        program.double_click_item(name)
        wait_playing(program, name)
    program.double_click_item(FOO)
    simulator.wait_line("already open")
    program.double_click_item(BAR)
    simulator.wait_line("already open", 2)
    program.picture("two plays")
    check_equal(simulator.lines().count("closed by request"), 0, "simulators closed during the plays")
    simulator.end_play()
    simulator.wait_line("closed by request", 2)
    wait_no_simulator(program)


def wine_play(program, folder, simulator, tables):
    windows_program = BUILD / "bin" / "vpinball.exe"
    if not windows_program.exists() or not shutil.which("wine"):
        print("left out: the play with a Windows program (needs wine and mingw-w64)")
        return
    simulator.begin()
    change_executable(program, windows_program)
    program.double_click_item(FOO)
    wait_playing(program, FOO, 240)  # Wine may have its folder to make
    windows_path = "Z:" + str(tables / f"{FOO}.vpt").replace("/", "\\")
    lines = simulator.lines()
    check("argv[1]=/Play" in lines and f"argv[2]=-{windows_path}" in lines, f"the arguments in {lines}")
    check(any(line.startswith("table=") and line != "table=none" for line in lines), f"the table could not be opened: {lines}")
    program.double_click_item(FOO)
    simulator.wait_line("shown", 2, 120)
    program.picture("two windows of Wine")
    simulator.end_play()
    simulator.wait_line("closed by request")
    program.picture("a Windows simulator was closed")
    end_simulator(program, FOO)  # the other one, which nothing watches


def end_simulator(program, name):
    """As its user does: it is asked to close."""
    desktop = program.desktop
    number = next(line.split()[0] for line in subprocess.run(["wmctrl", "-l"], env=desktop.env, capture_output=True, text=True).stdout.splitlines()
                  if "Visual Pinball" in line and name in line)
    subprocess.run(["wmctrl", "-i", "-c", number], env=desktop.env, check=True)
    wait_no_simulator(program)


def held_enter(program, folder, simulator):
    """A key that is held down repeats itself, and plays once."""
    simulator.begin()
    program.click_item(BAR)
    before = int(times_played(folder, BAR))
    program.desktop.xdotool("keydown", "Return", "sleep", "1.5", "keyup", "Return")
    wait_playing(program, BAR)
    check_played(folder, BAR, before + 1)
    check_equal((simulator.lines().count("shown"), simulator.lines().count("already open")), (1, 0), "simulators started by one press")
    end_simulator(program, BAR)


def close_during_a_play(program, folder, simulator, settings):
    """The watch ends with the window: no message, the program ends, the simulator plays on, and the settings are there."""
    simulator.begin()
    program.double_click_item(FOO)
    wait_playing(program, FOO)
    program.double_click_item(FOO)
    simulator.wait_line("already open")
    program.desktop.close_window(program.main_window())
    # A message box would keep the program, and is asked for while there is somebody to answer.
    wait_for(lambda: program.has_ended() or program.messages(), "the end of the program, or a message")
    check_equal(program.messages(), [], "messages while the program ends")
    program.wait_end()
    check(PLAYING.format(FOO) in program.desktop.window_titles(), "the simulator was closed with the program")
    lines = settings.read_text().splitlines()
    for key in ("LASTPLAY=", "WIDTH=", "FILTER=", "WINDOWSTATE="):
        check_equal(len([line for line in lines if line.startswith(key)]), 1, f"{key} in the settings")
    end_simulator(program, FOO)


def no_executable(program, folder, simulator):
    """Play asks for the executable, counts the play and opens the settings; pressed again, there is still one window of them."""
    before = int(times_played(folder, BAR))
    for press in (1, 2, 3):
        program.click_item(BAR)
        program.click("cmdPlay")
        check_equal(program.message(), "Please Set the location of the VP executable", "the message without an executable")
        program.answer()
        program.wait_window("Settings")
        check_equal(len([w for w in program.windows() if w["title"] == "Settings"]), 1, f"windows of settings after {press} presses")
    program.picture("settings opened by Play")
    check_played(folder, BAR, before + 3)
    program.click_until("CancelButton", lambda: not program.window("Settings"), "the end of the settings")


def failures(program, folder, work, tables):
    vanishing = work / "gone" / "vp"
    vanishing.parent.mkdir()
    vanishing.write_text("#!/bin/sh\n")
    change_executable(program, vanishing)
    program.click_item(BAR)
    before = int(times_played(folder, BAR))

    program.click("cmdPlay")
    check_equal(program.message(), f"Permission denied. The file is not marked as a program: {vanishing}", "the message for a plain file")
    program.answer()
    vanishing.unlink()
    program.click("cmdPlay")
    check_equal(program.message(), f"File not found: {vanishing}", "the message for a missing executable")
    program.answer()
    vanishing.parent.rmdir()
    program.click("cmdPlay")
    check_equal(program.message(), "The Visual Pinball Executable Could not Be Found!!", "the message for a missing folder")
    program.picture("the folder of the executable is missing")
    program.answer()
    check_played(folder, BAR, before + 3)
    check(not program.visible("frmSplash"), "the splash is still there")

    (tables / f"{BAR}.vpt").unlink()
    program.click("cmdPlay")
    wait_for(lambda: program.text("txtDet_2") == BAR, "the details after the click")
    check_equal(times_played(folder, BAR), str(before + 3), "the count after the table's file is gone")


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo play ") as temporary, Desktop("play_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app"
        folder.mkdir()
        tables = work / "collection" / "my tables ä"
        for name in (FOO, BAR):
            make_table_file(tables / f"{name}.vpt", None)
        simulator = Simulator(work)
        wine = {"WINEPREFIX": str(BUILD / "wine"), "WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml="}
        try:
            with Tavolo(desktop, folder, env=dict(simulator.env, **wine)) as program:
                start(program, work / "collection", BUILD / "bin" / "x11_simulator")
                silent_play(program, folder, simulator)
                loud_play(program, folder, simulator)
                nested_play(program, simulator)
                wine_play(program, folder, simulator, tables)
                change_executable(program, BUILD / "bin" / "x11_simulator")
                held_enter(program, folder, simulator)
                settings = desktop.home / "config" / "TAVOLO.ini"
                close_during_a_play(program, folder, simulator, settings)
            with Tavolo(desktop, folder, env=dict(simulator.env, **wine)) as program:
                failures(program, folder, work, tables)
                program.close()
            settings.write_text("".join(line for line in settings.read_text().splitlines(True) if not line.startswith("VPEXE=")))
            (tables / f"{BAR}.vpt").touch()
            with Tavolo(desktop, folder, env=dict(simulator.env, **wine)) as program:
                program.wait_window("Settings")  # at a start without an executable
                program.click_until("CancelButton", lambda: not program.window("Settings"), "the end of the settings")
                no_executable(program, folder, simulator)
                program.close()
        finally:
            if shutil.which("wineserver"):
                subprocess.run(["wineserver", "-k", "-w"], env=dict(desktop.env, **wine), check=False)


if "PULSE_SERVER" not in os.environ or "tavolo_test" not in subprocess.run(
        ["pactl", "list", "short", "sinks"], capture_output=True, text=True).stdout:
    os.execv(SUPPORT / "with_sound_server.sh", ["with_sound_server.sh", sys.executable, __file__])
run(main)
