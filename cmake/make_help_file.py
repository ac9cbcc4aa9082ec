#!/usr/bin/env python3
"""make_help_file CHMCMD FOLDER: compiles FOLDER/tavolo.hhp to FOLDER/tavolo.chm, the same bytes wherever and whenever it runs.

chmcmd writes the time of day into the file twice and what happened to lie on its stack once: it gets an empty environment and
addresses that are not random, and the times are set to SOURCE_DATE_EPOCH (0 when that is not set) afterwards.
"""
import os
import pathlib
import struct
import subprocess
import sys

HEADER_TIME_AT = 0x10  # big endian, behind "ITSF", version, header length and a 1
SYSTEM_TIME = b'\x0a\x00\x04\x00'  # entry 10 of #SYSTEM, four bytes, little endian


def main():
    chmcmd, folder = sys.argv[1], pathlib.Path(sys.argv[2])
    made = folder / 'tavolo.chm'
    made.unlink(missing_ok=True)
    command = [os.path.realpath(chmcmd), '--verbosity', '0', 'tavolo.hhp']
    # A container may forbid it; the file is right without, only not the same each time.
    if subprocess.run(['setarch', '-R', 'true'], capture_output=True).returncode == 0:
        command = ['setarch', '-R', *command]
    ran = subprocess.run(command, cwd=folder, env={}, capture_output=True, text=True)
    if ran.returncode != 0 or not made.exists():
        print(ran.stdout + ran.stderr, file=sys.stderr)
        return 1
    content = bytearray(made.read_bytes())
    time = int(os.environ.get('SOURCE_DATE_EPOCH', '0')) & 0xFFFFFFFF
    system = content.find(SYSTEM_TIME)
    if content[:4] != b'ITSF' or system < 0 or content.find(SYSTEM_TIME, system + 1, system + 4096) >= 0:
        print(f'{made}: not as chmcmd writes it', file=sys.stderr)
        return 1
    struct.pack_into('>I', content, HEADER_TIME_AT, time)
    struct.pack_into('<I', content, system + len(SYSTEM_TIME), time)
    made.write_bytes(content)
    return 0


sys.exit(main())
