"""tavolo-cli as a shell calls it: the examples of its manual page, streams, statuses, other programs beside it.

Usage: program_test.py, with TAVOLO_BUILD naming the build folder; TAVOLO_SHARED may name a folder of real files.
"""

import csv
import fcntl
import io
import json
import os
import shutil
import signal
import subprocess
import tempfile
import time
import unittest
from pathlib import Path

BUILD = Path(os.environ.get("TAVOLO_BUILD", "build/debug")).resolve()
DATA = Path(__file__).resolve().parent.parent / "data"
SAMPLES = Path(os.environ["TAVOLO_SHARED"]).resolve() / "samples" if os.environ.get("TAVOLO_SHARED") else None
EMPTY = BUILD / "share" / "tavolo" / "pinball.mdb"
DOCUMENTS = BUILD / "share" / "tavolo-cli"
TIMEOUT = 60.0


def old_catalogues():
    found = [DATA / "databases" / "catalogue-jet3.mdb", DATA / "databases" / "catalogue-jet4.mdb"]
    return found + (sorted((SAMPLES / "catalogue").glob("*.mdb")) if SAMPLES else [])


def wait_for(condition, what, process):
    """Until the condition holds or the process has ended; whether it holds."""
    end = time.monotonic() + TIMEOUT
    while time.monotonic() < end:
        if condition():
            return True
        if process.poll() is not None:
            return condition()
    raise AssertionError(f"waited in vain for {what}")


class ProgramTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="tavolo-cli-")
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.bin = self.root / "bin"
        self.bin.mkdir()
        # A copy has its catalogue beside it, as the program of a folder that may be written has.
        shutil.copy(BUILD / "bin" / "tavolo-cli", self.bin)
        shutil.copy(EMPTY, self.bin / "pinball.mdb")
        self.catalogue = self.bin / "pinball.mdb"
        self.environment = dict(os.environ, PATH=f"{self.bin}:{os.environ['PATH']}", HOME=str(self.root),
                                XDG_CONFIG_HOME=str(self.root / "config"))

    def run_cli(self, *words, status=0, data=None, **options):
        done = subprocess.run([str(self.bin / "tavolo-cli"), *map(str, words)], capture_output=True, input=data,
                              env=self.environment, cwd=self.root, timeout=TIMEOUT, **options)
        if status is not None:
            self.assertEqual(done.returncode, status, f"{words}: {done.stderr.decode()}")
        return done

    def make_table(self, name):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        picture = self.root / "picture.jpg"
        picture.write_bytes(b"\xff\xd8\xff\xe0 a picture")
        subprocess.run([BUILD / "bin" / "make_table_file", path, "--text", "TableName", path.stem, "--text", "AuthorName",
                        "Some One", "--text", "CompanyYear", "1995", "--screenshot", picture],
                       check=True)

    def fill(self, rows=3):
        lines = ["ID,DisplayName,FileName,Notes"]
        lines += [f'{i},Table {i},/tables/{i}.vpt,"a note, of {i}"' for i in range(1, rows + 1)]
        self.run_cli("import", "-", data="\n".join(lines).encode())

    def test_the_examples_of_the_manual_page(self):
        self.make_table("tables/First.vpt")
        self.make_table("game.vpt")
        self.run_cli("scan", "tables")
        self.run_cli("set", "1", "Favorite=true")
        examples = (DOCUMENTS / "examples").read_text().splitlines()
        self.assertGreater(len(examples), 15)
        self.run_cli("export", "tables.csv")
        shutil.copy(EMPTY, self.root / "damaged.mdb")
        for example in examples:
            with self.subTest(example=example):
                done = subprocess.run(["bash", "-c", "set -o pipefail; " + example], capture_output=True, env=self.environment,
                                      cwd=self.root, timeout=TIMEOUT)
                self.assertEqual(done.returncode, 0, done.stderr.decode())
        self.assertTrue((self.root / "game-Screenshot.jpg").exists())

    def test_the_manual_page_is_sound(self):
        done = subprocess.run(["groff", "-man", "-Tutf8", "-ww", "-z", DOCUMENTS / "man"], capture_output=True, text=True)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def test_the_completions_are_sound(self):
        for shell in ("bash", "zsh", "fish"):
            with self.subTest(shell=shell):
                done = subprocess.run([shell, "-n", DOCUMENTS / shell], capture_output=True, text=True)
                self.assertEqual((done.returncode, done.stderr), (0, ""))

    def completions(self, *words):
        script = (f"source {DOCUMENTS}/bash; COMP_WORDS=(tavolo-cli {' '.join(words[:-1])} '{words[-1]}'); "
                  f"COMP_CWORD={len(words)}; _tavolo_cli 2>/dev/null; printf '%s\\n' \"${{COMPREPLY[@]}}\"")
        return subprocess.run(["bash", "-c", script], capture_output=True, text=True, cwd=self.root).stdout.split("\n")[:-1]

    def test_bash_completes(self):
        (self.root / "a folder").mkdir()
        (self.root / "a file.csv").touch()
        self.assertEqual(self.completions("ex"), ["export"])
        self.assertEqual(self.completions("-C", "x", "se"), ["set"])
        self.assertEqual(self.completions("list", "--o"), ["--order"])
        self.assertEqual(self.completions("export", "--format", "j"), ["json", "jsonl"])
        self.assertEqual(self.completions("scan", "a"), ["a folder"])
        # Where = separates words, and where it does not.
        self.assertEqual(self.completions("export", "--format", "=", "j"), ["json", "jsonl"])
        self.assertEqual(self.completions("export", "--format", "="), ["csv", "json", "jsonl"])
        self.assertEqual(self.completions("export", "--format=j"), ["--format=json", "--format=jsonl"])
        self.assertEqual(self.completions("--folder", "=", "x", "se"), ["set"])
        self.assertEqual(self.completions("--folder=x", "se"), ["set"])
        self.assertEqual(self.completions("--folder", "=", "x", "list", "--o"), ["--order"])
        self.assertEqual(self.completions("--folder", "=", "a"), ["a folder"])
        self.assertEqual(self.completions("list", "--order", "=", "T"), ["Table\\ Name", "Times\\ Played"])
        self.assertEqual(self.completions("import", "a"), ["a file.csv", "a folder"])

    def test_import_reads_what_another_program_writes(self):
        self.fill()
        done = subprocess.run(["bash", "-c", "tavolo-cli import <(printf 'ID,Author\\n1,Piped\\n')"], capture_output=True,
                              env=self.environment, cwd=self.root, timeout=TIMEOUT)
        self.assertEqual((done.returncode, done.stderr), (0, b"0 added, 1 changed\n"))

    def test_list_is_what_mdb_export_says(self):
        for source in old_catalogues():
            with self.subTest(source=source.name):
                shutil.copy(source, self.catalogue)
                text = subprocess.run(["mdb-export", "-T", "%Y-%m-%d %H:%M:%S", "-D", "%Y-%m-%d", source, "Tables"], check=True,
                                      capture_output=True).stdout.decode()
                theirs = {row["ID"]: row for row in csv.DictReader(io.StringIO(text, newline=""))}
                rows = json.loads(self.run_cli("list", "--json").stdout)["rows"]
                self.assertEqual(len(rows), len(theirs))
                for row in rows:
                    other = theirs[str(row["ID"])]
                    self.assertEqual(set(row), set(other))
                    for name, value in row.items():
                        text = {None: "", True: "1", False: "0"}.get(value, value) if not isinstance(value, int) or isinstance(
                            value, bool) else str(value)
                        their = other[name]
                        if name in ("FileDate", "LastPlayed", "DateAdded") and value is not None:
                            text, their = text[:10], their[:10]
                        self.assertEqual(text, their, f"{name} of {row['ID']}")

    def test_find_is_what_mdb_sql_says(self):
        shutil.copy(DATA / "databases" / "catalogue-jet4.mdb", self.catalogue)
        rows = json.loads(self.run_cli("list", "--json").stdout)["rows"]
        author = next(row["Author"] for row in rows if row["Author"] and row["Author"].isascii() and "'" not in row["Author"])
        theirs = subprocess.run(["mdb-sql", "-HFP", "-d", "|", self.catalogue], check=True, capture_output=True, text=True,
                                input=f"select ID from [Tables] where Author = '{author}'\ngo\n").stdout.split()
        ours = self.run_cli("find", "Author", "=", author, "--columns=ID").stdout.decode().split()
        self.assertEqual(sorted(ours), sorted(theirs))

    def test_whole_catalogues_go_out_and_in(self):
        for source in old_catalogues():
            for ending in ("csv", "json", "jsonl"):
                with self.subTest(source=source.name, ending=ending):
                    shutil.copy(source, self.catalogue)
                    out, again = self.root / f"out.{ending}", self.root / f"again.{ending}"
                    self.run_cli("export", out)
                    names = ",".join(json.loads(self.run_cli("list", "--json").stdout)["columns"])
                    shutil.copy(EMPTY, self.catalogue)
                    self.run_cli("import", out)
                    self.run_cli("export", "--columns", names, again)
                    self.assertEqual(out.read_bytes(), again.read_bytes())

    def exported(self, database):
        """Every table of the catalogue as another program reads it."""
        names = subprocess.run(["mdb-tables", "-1", database], check=True, capture_output=True, text=True).stdout.split("\n")
        return {name: subprocess.run(["mdb-export", database, name], check=True, capture_output=True).stdout for name in names if name}

    def test_compact_and_repair_are_what_mdb_export_says(self):
        for source in old_catalogues():
            with self.subTest(source=source.name):
                shutil.copy(source, self.catalogue)
                before = self.exported(source)
                told = json.loads(self.run_cli("compact", "--json").stdout)
                self.assertEqual(told["bytes_before"], source.stat().st_size)
                self.assertEqual(told["bytes_after"], self.catalogue.stat().st_size)
                self.assertEqual(self.exported(self.catalogue), before)
                self.run_cli("verify", "--quick", status=None)
                # Without its indexes.
                damaged, repaired = self.root / "damaged.mdb", self.root / "repaired.mdb"
                content = bytearray(source.read_bytes())
                page = 2048 if content[0x14] == 0 else 4096
                for at in range(page, len(content), page):
                    if content[at] in (3, 4):
                        content[at:at + page] = b"\xdd" * page
                damaged.write_bytes(content)
                repaired.unlink(missing_ok=True)
                self.run_cli("repair", damaged, repaired)
                self.assertEqual(damaged.read_bytes(), content)
                self.assertEqual(self.exported(repaired), before)
                self.assertEqual(subprocess.run([BUILD / "bin" / "tavolo-dbcheck", repaired], capture_output=True).returncode, 0)

    def test_a_reader_that_ends_early(self):
        self.fill(5000)
        for words in (["list"], ["list", "--json"], ["export"]):
            process = subprocess.Popen([self.bin / "tavolo-cli", *words], stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                       env=self.environment)
            process.stdout.read(10)
            process.stdout.close()
            self.assertEqual((process.stderr.read(), process.wait(TIMEOUT)), (b"", 141))
            process.stderr.close()

    def test_a_full_disk(self):
        self.fill(100)
        for words in (["list"], ["list", "--json"], ["export"], ["--help"]):
            with open("/dev/full", "wb") as full:
                done = subprocess.run([self.bin / "tavolo-cli", *words], stdout=full, stderr=subprocess.PIPE, env=self.environment)
            self.assertEqual((done.returncode, done.stderr), (1, b"tavolo-cli: write error: No space left on device\n"))

    def test_a_catalogue_in_use(self):
        self.fill()
        holder = self.bin / "pinball.ldb"
        holder.write_bytes(b"flipper".ljust(32, b"\0") + b"walter".ljust(32, b"\0"))
        with open(holder, "r+b") as lock, open(self.catalogue, "r+b") as database:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            fcntl.lockf(database, fcntl.LOCK_EX)
            done = self.run_cli("set", "1", "Year=2000", status=3)
            self.assertEqual(done.stderr.decode(), "tavolo-cli: You attempted to open a database that is already opened exclusively by user 'walter' "
                             "on machine 'flipper'. Try again when the database is available.\n")
            self.assertIn(b"Table 2", self.run_cli("list").stdout)
            self.run_cli("set", "--dry-run", "1", "Year=2000")

    def test_killed_in_the_middle(self):
        rows = 20000
        lines = ["ID,DisplayName,Notes"] + [f"{i},Table {i},{'n' * 200}" for i in range(1, rows + 1)]
        source = self.root / "many.csv"
        source.write_text("\n".join(lines))
        journal, lock = self.bin / "pinball.mdb-journal", self.bin / "pinball.ldb"
        moments = [("opened", lock.exists), ("begun", journal.exists),
                   ("half written", lambda: journal.exists() and journal.stat().st_size > 2_000_000)]
        for name, has_come in moments:
            with self.subTest(moment=name):
                for path in (journal, lock):
                    path.unlink(missing_ok=True)
                shutil.copy(EMPTY, self.catalogue)
                process = subprocess.Popen([self.bin / "tavolo-cli", "import", source], stderr=subprocess.DEVNULL,
                                           env=self.environment)
                self.assertTrue(wait_for(has_come, name, process))
                process.send_signal(signal.SIGKILL)
                process.wait()
                # The next one to write puts it right.
                self.run_cli("crc")
                count = len(json.loads(self.run_cli("list", "--json").stdout)["rows"])
                self.assertIn(count, (0, rows))
                self.assertEqual(subprocess.run([BUILD / "bin" / "tavolo-dbcheck", self.catalogue],
                                                capture_output=True).returncode, 0)

    def test_names_that_are_no_utf8(self):
        tables = os.fsencode(self.root) + b"/t\xfcr"
        os.mkdir(tables)
        self.make_table("plain.vpt")
        shutil.copy(self.root / "plain.vpt", os.fsdecode(tables + b"/\xe4.vpt"))
        subprocess.run([os.fsencode(self.bin) + b"/tavolo-cli", b"scan", tables], check=True, env=self.environment,
                       capture_output=True)
        self.run_cli("verify")
        out = self.root / "out.csv"
        self.run_cli("export", out)
        self.run_cli("set", "1", "FileName=")
        self.run_cli("import", out)
        self.run_cli("verify")

    def test_a_first_start(self):
        folder = self.root / "share" / "tavolo"
        folder.mkdir(parents=True)
        shutil.move(self.catalogue, folder / "pinball.mdb")
        self.run_cli("list", status=1)
        self.run_cli("scan", ".")
        self.assertTrue((self.root / ".local/share/tavolo/pinball.mdb").exists())
        self.run_cli("list")

    def test_no_colour_without_a_terminal(self):
        import pty
        self.fill()
        for variables, bold in (({}, True), ({"NO_COLOR": "1"}, False), ({"TERM": "dumb"}, False)):
            master, slave = pty.openpty()
            process = subprocess.Popen([self.bin / "tavolo-cli", "list"], stdout=slave, stderr=slave,
                                       env={**self.environment, "TERM": "xterm", "NO_COLOR": "", **variables})
            os.close(slave)
            process.wait(TIMEOUT)
            text = os.read(master, 100000)
            os.close(master)
            self.assertEqual(b"\x1b[1mID\t" in text, bold)
            self.assertIn(b"ID\tDisplayName", text)


if __name__ == "__main__":
    unittest.main()
