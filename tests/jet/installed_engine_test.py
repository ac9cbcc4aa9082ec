#!/usr/bin/env python3
"""installed_engine_test.py BUILD: installs the engine by itself from the build folder BUILD, makes the two files of docs/jet.md, "In a
program of your own", builds and runs them against what was installed, and has another program read the database that came of it. Every
installed header compiles alone."""
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parents[2]


def run(*command, cwd=None):
    done = subprocess.run([str(word) for word in command], cwd=cwd, capture_output=True, text=True)
    assert done.returncode == 0, f'{command}: status {done.returncode}\n{done.stdout}{done.stderr}'
    return done.stdout


def block(language):
    section = (ROOT / 'docs/jet.md').read_text(encoding='utf-8').split('## In a program of your own\n')[1].split('\n## ')[0]
    return re.search(rf'```{language}\n(.*?)```', section, re.DOTALL)[1]


def main():
    with tempfile.TemporaryDirectory(prefix='tavolo-engine-') as folder:
        here = pathlib.Path(folder)
        run('cmake', '--install', sys.argv[1], '--component', 'tavolo_jet', '--prefix', here / 'installed')
        headers = sorted((here / 'installed/include/tavolo').rglob('*.h'))
        assert len(headers) > 10, headers
        for header in headers:
            run('c++', '-std=c++20', '-fsyntax-only', '-x', 'c++', '-I', here / 'installed/include/tavolo', header)

        (here / 'scores.cpp').write_text(block('cpp'), encoding='utf-8')
        (here / 'CMakeLists.txt').write_text(block('cmake'), encoding='utf-8')
        run('cmake', '-S', here, '-B', here / 'build', f'-DCMAKE_PREFIX_PATH={here / "installed"}')
        run('cmake', '--build', here / 'build')
        said = run(here / 'build/scores', cwd=here)
        assert said == 'Ada: 1200\n', said
        assert run('mdb-tables', '-1', here / 'scores.mdb').split() == ['Scores']
        exported = run('mdb-export', here / 'scores.mdb', 'Scores')
        assert exported.split() == ['ID,Player,Points', '1,"Ada",1200', '2,"Ben",900'], exported


main()
