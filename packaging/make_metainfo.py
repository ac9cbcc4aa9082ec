#!/usr/bin/env python3
"""make_metainfo TEMPLATE CHANGELOG DEBIAN_CHANGELOG VERSION: the AppStream metadata, on standard output: the template with the
release's notes out of the change log, and its date out of the package's."""
import email.utils
import html
import pathlib
import re
import sys

MOST_NOTES = 12  # software centres show a few lines
MOST_CHARACTERS = 190


def notes(changes):
    """The newest section's items, each one sentence in plain text."""
    newest = changes.split('\n## ')[1]
    for item in re.findall(r'^- (.*(?:\n  .*)*)$', newest, re.MULTILINE):
        text = ' '.join(re.sub(r'[`*]', '', item).split())
        if len(text) <= MOST_CHARACTERS:
            yield text.removesuffix('.')


def main():
    template, changes, package = (pathlib.Path(name).read_text(encoding='utf-8') for name in sys.argv[1:4])
    date = email.utils.parsedate_to_datetime(re.search(r'^ -- .*>  (.*)$', package, re.MULTILINE).group(1)).date()
    items = '\n'.join(f'          <li>{html.escape(note, quote=False)}</li>' for note in list(notes(changes))[:MOST_NOTES])
    release = (f'    <release version="{sys.argv[4]}" date="{date}">\n      <description>\n        <p>What is new:</p>\n        <ul>\n'
               f'{items}\n        </ul>\n      </description>\n    </release>')
    sys.stdout.reconfigure(encoding='utf-8')
    print(template.replace('@RELEASES@', release), end='')


main()
