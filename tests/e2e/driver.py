"""Drives the real program in a real window: a virtual display with a window manager, a real pointer and keyboard.

    with Desktop("main_job") as desktop, Tavolo(desktop, folder) as program:
        program.wait_window("Find New Visual Pinball Tables")
        program.click("cmdgo")
        program.type_into("fileNameEdit", "/tmp/tables\n")
        program.picture("scan")

Every wait is for a condition and ends with a message that says what did not come. Python's standard library only.
Environment: TAVOLO_BUILD names the build folder (bin/tavolo, plugins/generic/libtavolo_probe.so).
"""

import hashlib
import json
import os
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

BUILD = Path(os.environ.get("TAVOLO_BUILD", "build/debug")).resolve()
# Programs of the tests for this machine, where BUILD is another one's.
TOOLS = Path(os.environ.get("TAVOLO_TOOLS", BUILD / "bin")).resolve()
DATA = Path(__file__).resolve().parent.parent / "data"
# Real files, where there are some.
SAMPLES = Path(os.environ["TAVOLO_SHARED"]).resolve() / "samples" if os.environ.get("TAVOLO_SHARED") else None
TIMEOUT = 30.0


class Failure(Exception):
    pass


def wait_for(condition, what, timeout=TIMEOUT):
    """The first truthy result of condition(); Failure after `timeout` seconds."""
    end = time.monotonic() + timeout
    while True:
        result = condition()
        if result:
            return result
        if time.monotonic() > end:
            raise Failure(f"waited {timeout:.0f} s in vain for {what}")
        time.sleep(0.03)


def check(condition, what):
    if not condition:
        raise Failure(what)


def check_equal(seen, wanted, what):
    if seen != wanted:
        raise Failure(f"{what}: seen {seen!r}, wanted {wanted!r}")


def export_rows(database, table="Tables"):
    """The rows of a table as Debian's mdb-export prints them: a list of dicts."""
    import csv
    import io

    text = subprocess.run(
        ["mdb-export", "-T", "%Y-%m-%d %H:%M:%S", "-D", "%Y-%m-%d", str(database), table],
        check=True, capture_output=True, text=True).stdout
    return list(csv.DictReader(io.StringIO(text)))


def make_table_file(path, texts=None, screenshot=None, filler=3000):
    """Writes a table file (a compound file) through libgsf; `texts` maps stream names to their texts."""
    Path(path).parent.mkdir(parents=True, exist_ok=True)
    words = [str(TOOLS / "make_table_file"), str(path), "--filler", str(filler)]
    for stream, text in (texts or {}).items():
        words += ["--text", stream, text]
    if screenshot:
        words += ["--screenshot", str(screenshot)]
    subprocess.run(words, check=True)


class Desktop:
    """A virtual display with a window manager. Pictures go to <build>/pictures/<name>."""

    def __init__(self, name, size="1280x900"):
        self.name = name
        self.size = size
        self.pictures = BUILD / "pictures" / name
        self.bus = None
        self.number = 0

    def __enter__(self):
        shutil.rmtree(self.pictures, ignore_errors=True)
        self.pictures.mkdir(parents=True)
        read_end, write_end = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write_end), "-screen", "0", self.size + "x24", "-nolisten", "tcp",
             "-noreset"],
            pass_fds=[write_end], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            line = pipe.readline().strip()
        check(line, "Xvfb did not start")
        self.display = ":" + line
        self.env = dict(os.environ, DISPLAY=self.display)
        self.env.pop("WAYLAND_DISPLAY", None)
        self.home = Path(tempfile.mkdtemp(prefix="tavolo-home-"))
        self.env.update(HOME=str(self.home), XDG_CONFIG_HOME=str(self.home / "config"),
                        XDG_DATA_HOME=str(self.home / "data"), XDG_CACHE_HOME=str(self.home / "cache"),
                        XDG_RUNTIME_DIR=str(self.home))
        self.manager = subprocess.Popen(["openbox"], env=self.env, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        wait_for(lambda: "WM_NAME" in self._root_property("_NET_SUPPORTING_WM_CHECK") or
                 "window id" in self._root_property("_NET_SUPPORTING_WM_CHECK"), "the window manager")
        wait_for(self._manager_obeys, "the window manager to listen")
        return self

    def __exit__(self, *exception):
        for process in (self.bus, self.manager, self.server):
            if process:
                process.terminate()
                process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def start_assistive_technology(self):
        """A session bus of this desktop's own, by which assistive technology (AT-SPI) reaches the programs started from now on."""
        self.bus = subprocess.Popen(["dbus-daemon", "--session", "--nofork", "--print-address"], env=self.env,
                                    stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.env.update(DBUS_SESSION_BUS_ADDRESS=self.bus.stdout.readline().strip(), QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")

    def _manager_obeys(self):
        """It announces itself before it listens, and a message that comes in between is lost."""
        subprocess.run(["wmctrl", "-n", "2"], env=self.env, capture_output=True)
        return self._root_property("_NET_NUMBER_OF_DESKTOPS").strip().endswith("= 2")

    def _root_property(self, name):
        return subprocess.run(["xprop", "-root", name], env=self.env, capture_output=True, text=True).stdout

    def xdotool(self, *words):
        return subprocess.run(["xdotool", *map(str, words)], env=self.env, capture_output=True, text=True)

    def picture(self, label):
        self.number += 1
        path = self.pictures / f"{self.number:02d}-{label}.png"
        subprocess.run(["import", "-window", "root", str(path)], env=self.env, check=True)
        return path

    def pixels(self, x, y, width, height):
        """A signature of a part of the screen."""
        taken = subprocess.run(["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{x}+{y}", "+repage", "rgb:-"],
                               env=self.env, check=True, capture_output=True).stdout
        return hashlib.sha256(taken).hexdigest()

    def window_titles(self):
        """Titles of the windows of all programs on this display."""
        listed = subprocess.run(["wmctrl", "-l"], env=self.env, capture_output=True, text=True).stdout
        return [line.split(None, 3)[3] if len(line.split(None, 3)) > 3 else "" for line in listed.splitlines()]


    def manage(self, window, *action):
        """Asks the window manager to do something with a window of the program, as soon as it knows that window."""
        number = f"{window['id']:#010x}"
        wait_for(lambda: number in subprocess.run(["wmctrl", "-l"], env=self.env, capture_output=True, text=True).stdout,
                 f"the window manager to list the window {window['title']!r}")
        subprocess.run(["wmctrl", "-i", *map(str, action[:1]), number, *map(str, action[1:])], env=self.env, check=True)

    def active_window(self):
        number = self._root_property("_NET_ACTIVE_WINDOW").rpartition(" ")[2].strip()
        return int(number, 16) if number.startswith("0x") else 0  # before the first window it is "not found."

    def close_window(self, window):
        """As the window's close button does."""
        self.manage(window, "-c")


class Tavolo:
    """One run of the program on the application folder `folder`."""

    def __init__(self, desktop, folder, arguments=(), env=None, program=None):
        self.desktop = desktop
        self.folder = Path(folder) if folder else None  # None: the program chooses
        self.arguments = list(arguments)
        self.extra_env = env or {}
        self.program = program or BUILD / "bin" / "tavolo"
        self.process = None
        self.connection = None

    def __enter__(self):
        self.start()
        return self

    def __exit__(self, kind, *exception):
        if kind is not None:
            try:
                self.picture("failure")
            except Exception:  # the display itself may be what failed
                pass
        if self.process and self.process.poll() is None:
            self.process.kill()
            self.process.wait()

    def start(self):
        self.socket_name = str(self.desktop.home / f"probe-{os.getpid()}-{time.monotonic_ns()}")
        env = dict(self.desktop.env, QT_QPA_PLATFORM="xcb", QT_PLUGIN_PATH=str(BUILD / "plugins"),
                   QT_QPA_GENERIC_PLUGINS="tavolo_probe", TAVOLO_PROBE_SOCKET=self.socket_name)
        env.update(self.extra_env)
        self.process = subprocess.Popen([str(self.program), *self._folder(), *self.arguments], env=env)
        self.connection = wait_for(self._connect, "the probe inside the program")

    def _folder(self):
        return ["--folder", str(self.folder)] if self.folder else []

    def _connect(self):
        if self.process.poll() is not None:
            raise Failure(f"the program ended with status {self.process.returncode}")
        client = socket.socket(socket.AF_UNIX)
        try:
            client.connect(self.socket_name)
            client.settimeout(TIMEOUT)
            return client.makefile("rw", encoding="utf-8")
        except OSError:
            client.close()
            return None

    def ask(self, op, **fields):
        self.connection.write(json.dumps(dict(fields, op=op)) + "\n")
        self.connection.flush()
        line = self.connection.readline()
        if not line:
            raise Failure("the program went away")
        return json.loads(line).get("result")

    # What the program shows.

    def widgets(self, name):
        return self.ask("widgets", name=name) or []

    def visible(self, name):
        """The visible widget of that name (the modal one first), or None."""
        found = [w for w in self.widgets(name) if w["visible"]]
        found.sort(key=lambda w: not w["modal"])
        return found[0] if found else None

    def widget(self, name):
        return wait_for(lambda: self.visible(name), f"the widget {name}")

    def text(self, name):
        return self.widget(name)["text"]

    def wait_text(self, name, wanted, timeout=TIMEOUT):
        return wait_for(lambda: self.visible(name) and self.visible(name)["text"] == wanted,
                        f"the text {wanted!r} in {name} (it shows {(self.visible(name) or {}).get('text')!r})", timeout)

    def windows(self):
        return self.ask("windows")

    def window(self, title):
        return next((w for w in self.windows() if w["title"] == title), None)

    def main_window(self):
        return wait_for(lambda: next((w for w in self.windows() if w["title"].startswith("Tavolo -")), None), "the main window")

    def wait_window(self, title, timeout=TIMEOUT):
        """Waits for the window, and until the window manager has put it into its place, unless it is gone before: what is clicked sooner is missed."""
        found = wait_for(lambda: self.window(title), f"the window {title!r}", timeout)
        wait_for(lambda: self._is_in_place(title) and self._is_in_place(title), f"the window {title!r} in its place", timeout)
        return self.window(title) or found

    def _is_in_place(self, title):
        """Whether the window manager has it, and the X server has it where the program has it."""
        window = self.window(title)
        if not window:
            return True
        time.sleep(0.03)
        number = f"{window['id']:#010x}"
        if number not in subprocess.run(["wmctrl", "-l"], env=self.desktop.env, capture_output=True, text=True).stdout:
            return False
        told = subprocess.run(["xwininfo", "-id", number], env=self.desktop.env, capture_output=True, text=True).stdout
        at = [int(line.split()[-1]) for line in told.splitlines() if "Absolute upper-left" in line]
        return not at or at == [window["x"], window["y"]]

    def wait_front(self, title):
        """Waits until the window gets what is typed."""
        self.wait_window(title)
        wait_for(lambda: self.desktop.active_window() == (self.window(title) or {}).get("id"), f"the window {title!r} in front")

    def wait_active(self):
        """The main window in front: one that has just come up may move under the pointer."""
        window = self.main_window()
        self.desktop.manage(window, "-a")
        wait_for(lambda: self.desktop.active_window() == window["id"], "the main window in front")
        self.wait_window(window["title"])

    def wait_window_gone(self, title, timeout=TIMEOUT):
        wait_for(lambda: not self.window(title), f"the end of the window {title!r}", timeout)

    def message(self, timeout=TIMEOUT):
        """The text of the message box in front."""
        box = wait_for(lambda: [w for w in self.windows() if w["class"].endswith("MessageBox")], "a message box", timeout)
        return box[0]["text"]

    def messages(self):
        """The texts of all message boxes; none when the program has ended."""
        try:
            return [w["text"] for w in self.windows() if w["class"].endswith("MessageBox")]
        except (Failure, OSError):
            check(self.has_ended(), "the program does not answer, and has not ended")
            return []

    def has_ended(self):
        """Whether the program has ended; one that is ending is given the time for it."""
        try:
            return self.process.wait(0.5) is not None
        except subprocess.TimeoutExpired:
            return False

    def items(self, name="tvwDB"):
        return self.ask("items", name=name) or []

    def actions(self, menu):
        return {a["name"]: a for a in self.ask("actions", menu=menu) if not a["separator"]}

    def tab(self, index, name="DetTab"):
        return self.ask("tab", name=name, index=index)

    # What is on the screen.

    def ink(self, rect):
        """The share of a rectangle's pixels that are much darker or lighter than most of it, as letters and pictures are."""
        area = f"{rect['w']}x{rect['h']}+{rect['x']}+{rect['y']}"
        taken = subprocess.run(["import", "-silent", "-window", "root", "-crop", area, "+repage", "-colorspace", "Gray", "-depth", "8", "gray:-"],
                               env=self.desktop.env, check=True, capture_output=True).stdout
        if not taken:
            return 0.0
        counts = [taken.count(bytes([value])) for value in range(256)]
        most = counts.index(max(counts))
        return sum(count for value, count in enumerate(counts) if abs(value - most) > 60) / len(taken)

    def wait_painted(self, name, least=0.004):
        """Waits until the visible widget shows something on the screen: a blank rectangle has no ink, a label's letters have some."""
        wait_for(lambda: self.ink(self.widget(name)) >= least,
                 f"something to be seen in {name} (it shows {self.ink(self.widget(name)):.4f})")

    def wait_item_painted(self, text, name="tvwDB"):
        """Waits until the letters of that item are on the screen."""
        wait_for(lambda: self.ink(self._on_screen(text, name)) >= 0.02, f"the item {text!r} to be seen in {name}")

    def _on_screen(self, text, name):
        """The item's rectangle, cut to its view and without what is right of its first letters."""
        item = wait_for(lambda: self.ask("item", name=name, text=text), f"the item {text!r} in {name}")
        view = self.widget(name)
        return dict(item, w=min(item["w"], 60, view["x"] + view["w"] - item["x"]))

    def pixels(self, name):
        """A signature of what the visible widget shows on the screen."""
        rect = self.widget(name)
        return self.desktop.pixels(rect["x"], rect["y"], rect["w"], rect["h"])

    def wait_repainted(self, name, before):
        """Waits until the widget shows something else than when `before` was taken by pixels(); the new signature."""
        return wait_for(lambda: (lambda now: now if now != before else None)(self.pixels(name)), f"another picture in {name}")

    def times_painted(self, name):
        """How often the program has painted widgets of that name."""
        return self.ask("painted", name=name)

    def check_tree_and_panels(self, *texts):
        """The tree shows the letters of these items, the count of tables is on the screen, and no progress bar is left."""
        for text in texts:
            self.wait_item_painted(text)
        self.wait_painted("sbrDB_1")
        check(not self.visible("prgLoad"), "the progress bar is still there")

    # What a hand does.

    def _press_at(self, rect, button=1, repeat=1, at=None):
        x = rect["x"] + (at[0] if at else rect["w"] // 2)
        y = rect["y"] + (at[1] if at else rect["h"] // 2)
        self.desktop.xdotool("mousemove", x, y)  # --sync would wait 15 s where there is nothing to move
        self.desktop.xdotool("click", "--repeat", repeat, "--delay", 60, button)

    def click(self, name, button=1, repeat=1, at=None):
        target = wait_for(lambda: (lambda w: w if w and w["enabled"] else None)(self.visible(name)),
                          f"the enabled widget {name}")
        self._press_at(target, button, repeat, at)

    def click_item(self, text, name="tvwDB", button=1, repeat=1):
        rect = wait_for(lambda: self.ask("item", name=name, text=text), f"the item {text!r} in {name}")
        self._press_at(rect, button, repeat, (min(40, rect["w"] // 2), rect["h"] // 2))

    def double_click_item(self, text, name="tvwDB"):
        self.click_item(text, name, repeat=2)

    def click_tab(self, index, name="DetTab"):
        self._press_at(self.tab(index, name))

    def choose(self, name, text):
        """Picks an entry of the combo box `name` by hand."""
        self.click(name)
        self.click_item(text, name)
        self.wait_text(name, text)

    def has_keyboard(self, name):
        """Whether what is typed goes to that widget: it has the focus, and its window is the one that the window manager gives the keys."""
        widget = self.visible(name)
        return bool(widget and widget["focus"] and self.desktop.active_window() == widget["id"])

    def click_until(self, name, condition, what, pressed=0.0):
        """A window that has just come up may move under the pointer: its button is clicked again until that has shown an effect."""

        def done():
            nonlocal pressed
            if condition():
                return True
            if time.monotonic() - pressed > 3 and self.visible(name):
                self.click(name)
                pressed = time.monotonic()
            return False
        wait_for(done, what)

    def first_scan(self, tables):
        """On a first start: scans the folder `tables`; the settings are open then."""
        self.wait_window("Find New Visual Pinball Tables")
        self.click_until("cmdgo", lambda: self.visible("fileNameEdit"), "the folder dialog")
        self.choose_file(tables)
        self.wait_text("Label2", "Process Complete")
        self.click_until("cmdExit", lambda: self.window("Settings"), "the settings")

    def leave_settings(self):
        self.click_until("CancelButton", lambda: not self.window("Settings"), "the end of the settings")

    def _opened(self, menu, action):
        found = self.actions(menu).get(action)
        return found if found and found["visible"] else None

    def point_at_entry(self, menu, action):
        """Opens a menu of the menu bar (or uses the open pop-up menu) and points at one of its actions."""
        title = None if self._opened(menu, action) else wait_for(lambda: self.ask("menubar", name=menu), f"the menu {menu}")
        pressed = 0.0

        def press_again():
            # A window that has just come up may lose its first click to the window manager.
            nonlocal pressed
            if self._opened(menu, action):
                return self._opened(menu, action)
            if title and time.monotonic() - pressed > 3:
                self._press_at(self.ask("menubar", name=menu) or title)
                pressed = time.monotonic()
            return None
        entry = wait_for(press_again, f"the action {action} of {menu}")
        self.desktop.xdotool("mousemove", entry["x"] + entry["w"] // 2, entry["y"] + entry["h"] // 2)

    def menu(self, menu, action):
        """Chooses an action of a menu (point_at_entry) by a click."""
        self.point_at_entry(menu, action)
        self.desktop.xdotool("click", 1)

    def press(self, *keys):
        for key in keys:
            self.desktop.xdotool("key", "--clearmodifiers", key)

    def type(self, text):
        self.desktop.xdotool("type", "--delay", 8, "--", text)

    def type_into(self, name, text):
        """Replaces the text of a field; a final line feed presses Enter."""
        self.click(name)
        self.click_until(name, lambda: self.has_keyboard(name), f"the keyboard in {name}", pressed=time.monotonic())
        self.press("ctrl+a", "Delete")
        self.type(text.rstrip("\n"))
        if text.endswith("\n"):
            self.press("Return")

    def answer(self, key="Return"):
        """Answers the message box in front by a key ("Return", "alt+y", "alt+n", "Escape") and waits for its end."""
        def active_boxes():
            return [w["id"] for w in self.windows() if w["class"].endswith("MessageBox") and w["active"]]

        wait_for(lambda: self.desktop.active_window() in active_boxes(), "the keyboard in the message box")
        front = self.desktop.active_window()
        self.press(key)
        # Another box may come up at once.
        wait_for(lambda: front not in [w["id"] for w in self.windows() if w["class"].endswith("MessageBox")], "the end of the message box")

    def choose_file(self, path):
        """Types a path into the open file or folder dialog and accepts it."""
        self.type_into("fileNameEdit", str(path) + "\n")
        wait_for(lambda: not self.visible("fileNameEdit"), "the end of the file dialog")

    def picture(self, label):
        return self.desktop.picture(label)

    def close(self, timeout=TIMEOUT):
        """Closes the main window as its close button does; waits for the end of the program."""
        self.desktop.close_window(self.main_window())
        self.wait_end(timeout)

    def wait_end(self, timeout=TIMEOUT):
        try:
            self.process.wait(timeout)
        except subprocess.TimeoutExpired as error:
            raise Failure("the program did not end") from error
        check_equal(self.process.returncode, 0, "exit status of the program")

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()


def run(body):
    """Runs a test's body; prints why it failed and ends with the status ctest understands."""
    try:
        body()
    except Failure as failure:
        print(f"FAILED: {failure}", file=sys.stderr)
        sys.exit(1)
    print("passed")
