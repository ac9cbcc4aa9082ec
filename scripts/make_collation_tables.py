#!/usr/bin/env python3
"""Turns src/jet/text/collation_data/*.tsv into src/jet/text/collation_tables.cpp.

Run it from anywhere after changing the data; the result is committed, so that a build needs no Python.
"""
import pathlib

JET = pathlib.Path(__file__).resolve().parent.parent / 'src' / 'jet' / 'text'
DATA = JET / 'collation_data'

# Forms of a unit; the numbers are those of collation_tables.h.
IGNORED, ONE, TWO, ONE_ACCENT, TWO_ACCENT, POSITIONAL, MARK, SPECIAL = range(8)


def rows(name):
    for line in (DATA / name).read_text(encoding='ascii').splitlines():
        if line and not line.startswith('#'):
            yield line.split('\t')


def packed(form, weights=0, extra=0):
    return form << 24 | extra << 16 | weights


def general():
    table = [0] * 65536
    specials = []
    for unit, kind, weights, elems, second, aux in rows('jet-collation-general-legacy.tsv'):
        raw = bytes.fromhex(weights) if weights != '-' else b''
        accents = bytes.fromhex(second) if second != '-' else bytes([2] * int(elems))
        if kind == 'P':
            value = packed(POSITIONAL, 0, int(aux, 16))
        elif kind == 'M':
            value = packed(MARK, 0, int(aux, 16))
        elif kind in 'WA' and elems == '1' and len(raw) <= 2:
            form = (ONE if len(raw) == 1 else TWO) + (2 if accents[0] != 2 else 0)
            value = packed(form, int.from_bytes(raw, 'big'), accents[0] if accents[0] != 2 else 0)
        else:
            kana = int(aux) if kind == 'K' else 0
            special = (len(raw), raw + bytes(4 - len(raw)), len(accents),
                       accents + bytes(3 - len(accents)), kana)
            if special not in specials:
                specials.append(special)
            value = packed(SPECIAL, specials.index(special))
        table[int(unit, 16)] = value
    blocks, block_of = [], []
    for start in range(0, 65536, 256):
        block = table[start:start + 256]
        if block not in blocks:
            blocks.append(block)
        block_of.append(blocks.index(block))
    return blocks, block_of, specials


def listed(values, per_line):
    for at in range(0, len(values), per_line):
        yield ','.join(values[at:at + per_line]) + ','


def main():
    blocks, block_of, specials = general()
    out = ['// Made by scripts/make_collation_tables.py from collation_data/. Do not edit.',
           '// clang-format off', '#include "jet/text/collation_tables.h"', '',
           'namespace jet::collation {', '',
           'const std::uint8_t kBlockOf[256] = {', *listed([str(b) for b in block_of], 32), '};', '',
           f'const std::uint32_t kBlocks[{len(blocks)}][256] = {{']
    for block in blocks:
        out += ['{', *listed([f'{v:#x}' if v > 9 else str(v) for v in block], 16), '},']
    out += ['};', '', f'const Special kSpecials[{len(specials)}] = {{']
    for size, weights, elements, accents, kana in specials:
        out.append('{%d,{%s},%d,{%s},%d},' % (size, ','.join(map(hex, weights)), elements,
                                            ','.join(map(hex, accents)), kana))
    out += ['};', '', 'const ByteWeight kByteWeights[256] = {']
    for _, kind, weights, nibble in rows('jet-collation-general-97.tsv'):
        raw = bytes.fromhex(weights)
        out.append("{'%s',%d,{%s},%s}," % (kind, len(raw), ','.join(map(hex, raw)),
                                          '0' if nibble == '-' else '0x' + nibble))
    out += ['};', '', '}  // namespace jet::collation', '']
    (JET / 'collation_tables.cpp').write_text('\n'.join(out), encoding='ascii')


if __name__ == '__main__':
    main()
