"""Programs for Windows on a virtual display, through Wine: a folder of Wine's own, the setup, the program with the probe in it.

Environment: TAVOLO_BUILD names the folder of what packaging/windows/build has made (build/windows), TAVOLO_TOOLS this machine's programs
(build/release/bin).
"""

import contextlib
import shutil
import socket
import subprocess
import sys
import tempfile
import time
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TESTS / "e2e"))
import driver  # noqa: E402

# Why: tests/support/with_wine.sh.
FIXED = ["setarch", "-R"] if subprocess.run(["setarch", "-R", "true"], capture_output=True).returncode == 0 else []


def windows_path(path):
    """How a program for Windows calls a file of this machine."""
    return "Z:" + str(path).replace("/", "\\")


class Wine:
    """A folder of Wine's own on the display of `desktop`, in which nothing is installed."""

    def __init__(self, desktop):
        self.desktop = desktop

    def __enter__(self):
        self.prefix = Path(tempfile.mkdtemp(prefix="tavolo-wine-"))
        self.env = dict(self.desktop.env, WINEPREFIX=str(self.prefix), WINEDEBUG="-all", WINEDLLOVERRIDES="mscoree,mshtml=")
        subprocess.run([*FIXED, "wineboot", "--init"], env=self.env, check=True, capture_output=True)
        self.run("reg", "import", windows_path(TESTS / "support" / "windows_letters.reg"))
        # A program that ends by a fault is no question: where it ended goes to its standard error.
        self.run("reg", "add", r"HKCU\Software\Wine\WineDbg", "/v", "ShowCrashDialog", "/t", "REG_DWORD", "/d", "0", "/f")
        subprocess.run(["wineserver", "--wait"], env=self.env, check=True)
        local = next(self.prefix.glob("drive_c/users/*/AppData/Local"))
        self.installed = local / "Programs/Tavolo"
        self.data = local / "Tavolo"
        return self

    def __exit__(self, *exception):
        subprocess.run(["wineserver", "--kill", "--wait"], env=self.env)
        shutil.rmtree(self.prefix, ignore_errors=True)

    def run(self, *words, timeout=300):
        return subprocess.run([*FIXED, "wine", *map(str, words)], env=self.env, capture_output=True, text=True, timeout=timeout)

    def start(self, *words, env=None):
        """What it says of itself is kept beside the pictures."""
        with open(self.desktop.pictures / "said", "ab") as said:
            return subprocess.Popen([*FIXED, "wine", *map(str, words)], env=dict(self.env, **(env or {})), stdout=said, stderr=said)

    def set_up(self):
        return self.run(driver.BUILD / "tavolo-setup.exe", "/S").returncode

    def remove(self):
        self.run(self.installed / "uninstall.exe", "/S")
        # It goes on in a copy of itself, so that it can remove itself.
        driver.wait_for(lambda: not (self.installed / "uninstall.exe").exists(), "the end of the removal")
        subprocess.run(["wineserver", "--wait"], env=self.env, timeout=60)


class WindowsTavolo(driver.Tavolo):
    """One run of a program for Windows that has the probe in it."""

    def __init__(self, wine, program, folder=None, arguments=(), env=None):
        super().__init__(wine.desktop, folder, arguments, env, program)
        self.wine = wine

    def start(self):
        self.port_file = self.desktop.home / f"port-{time.monotonic_ns()}"
        self.process = self.wine.start(self.program, *self._folder(), *self.arguments, env=dict(
            TAVOLO_PROBE_SOCKET="port:" + windows_path(self.port_file), **self.extra_env))
        self.connection = driver.wait_for(self._connect, "the probe inside the program", 90)

    def _folder(self):
        return ["--folder", windows_path(self.folder)] if self.folder else []

    def _connect(self):
        if self.process.poll() is not None:
            raise driver.Failure(f"the program ended with status {self.process.returncode}")
        if not self.port_file.exists():
            return None
        client = socket.create_connection(("127.0.0.1", int(self.port_file.read_text())), driver.TIMEOUT)
        return client.makefile("rw", encoding="utf-8")

    def __exit__(self, kind, *exception):
        said = self.desktop.pictures / "said"
        if kind is not None and b"Unhandled" in said.read_bytes():  # the debugger tells where
            with contextlib.suppress(driver.Failure):
                driver.wait_for(lambda: b"Backtrace:" in said.read_bytes() and b"Modules:" in said.read_bytes(), "the debugger")
        super().__exit__(kind, *exception)
        if kind is not None:  # Wine's own end does not end the program that it has started
            subprocess.run(["wineserver", "--kill", "--wait"], env=self.wine.env)
