"""What the program asks of the system, seen by strace: it opens no socket to a network, and nothing outside of its application
folder and the user's own folders (home, configuration, data, cache, runtime) is written."""

import re
import shlex
import subprocess
import tempfile
from pathlib import Path

from driver import BUILD, Desktop, Tavolo, check, make_table_file, run, wait_for

CALLS = ("socket,connect,bind,sendto,open,openat,creat,mkdir,mkdirat,rename,renameat,renameat2,unlink,unlinkat,rmdir,link,linkat,"
         "symlink,symlinkat,truncate,chmod,fchmodat,mknod,mknodat")
# Not files: what they are is gone with the process, or belongs to the system's graphics.
NO_FILES = ("/dev/", "/proc/", "/memfd:", "/sys/")


def traced(work, program, log):
    """A program that runs `program` under strace; it stays the child that was started."""
    path = work / f"traced-{Path(program).name}"
    path.write_text(f"#!/bin/sh\nexec strace -D -f -qq -s 300 -e trace={CALLS} -o {shlex.quote(str(log))} {shlex.quote(str(program))} \"$@\"\n")
    path.chmod(0o755)
    return path


def call_lines(log):
    """The calls, each on one line, also those that another thread's call interrupted."""
    open_calls = {}
    for line in log.read_text(errors="replace").splitlines():
        thread, _, call = line.partition(" ")
        call = call.strip()
        if call.endswith("<unfinished ...>"):
            open_calls[thread] = call.removesuffix("<unfinished ...>")
        elif call.startswith("<..."):
            yield open_calls.pop(thread, "") + call.partition("resumed>")[2]
        else:
            yield call


def writes(call):
    name = call.partition("(")[0]
    if name in ("socket", "connect", "bind", "sendto"):
        return False
    return name not in ("open", "openat") or re.search(r"O_WRONLY|O_RDWR|O_CREAT", call) is not None


def examine(log, own):
    calls = list(call_lines(log))
    check(any(call.startswith("openat(") for call in calls), f"{log} has no calls: strace did not work")
    for call in calls:
        check(not re.search(r"AF_INET|AF_PACKET|AF_NETLINK", call), f"a network was asked for: {call}")
        if not writes(call) or re.search(r"= -1 E", call):
            continue
        for path in re.findall(r'"((?:[^"\\]|\\.)*)"', call):
            if path.startswith("/") and not path.startswith(NO_FILES):
                check(any(Path(path).is_relative_to(folder) for folder in own), f"written outside of the own folders: {call}")
    return calls


def main():
    with tempfile.TemporaryDirectory(prefix="tavolo-privacy-") as temporary, Desktop("privacy_e2e") as desktop:
        work = Path(temporary)
        folder = work / "app folder"
        tables = work / "tables"
        for name in ("Attack", "Bride"):
            make_table_file(tables / f"{name}.vpt", {"TableName": name})
        (work / "simulator").write_text("#!/bin/sh\n")
        log = work / "calls"
        # A desktop without a viewer of help files: the program shows its own. The desktop's bus, which Qt would start, is not the subject.
        nothing = work / "programs"
        nothing.mkdir()
        (nothing / "xdg-mime").write_text("#!/bin/sh\n")
        (nothing / "xdg-mime").chmod(0o755)
        folder.mkdir()
        with Tavolo(desktop, folder, env={"PATH": f"{nothing}:/usr/bin:/bin", "DBUS_SESSION_BUS_ADDRESS": f"unix:path={work}/no bus"}, program=traced(work, BUILD / "bin" / "tavolo", log)) as program:
            program.wait_window("Find New Visual Pinball Tables", timeout=60)
            program.first_scan(tables)
            program.type_into("txtDet_0", str(work / "simulator"))
            program.click("OKButton")
            program.wait_window_gone("Settings")
            program.click_item("Attack")
            program.press("F1")
            program.wait_front("Tavolo Help")
            program.picture("help")
            program.press("Escape")
            program.wait_window_gone("Tavolo Help")
            program.close()
        calls = examine(log, (folder, desktop.home))
        check(any("pinball.mdb" in call and writes(call) for call in calls), "the catalogue was not written: nothing was seen")

        log = work / "calls of the command line"
        listed = subprocess.run([traced(work, BUILD / "bin" / "tavolo-cli", log), f"--folder={folder}", "list"], env=desktop.env,
                                capture_output=True, text=True)
        check("Attack" in listed.stdout, listed.stderr)
        examine(log, (folder, desktop.home))


run(main)
