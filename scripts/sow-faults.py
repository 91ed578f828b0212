#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Sows one-line faults in the sources, one at a time, and reports which of them the tests see.

  scripts/sow-faults.py [--count 60] [--seed 1] [--tree build/sown] [PATH ...]

Works in a clone of the last commit, of which PATH names what is sown (src and core by default). A fault that does
not compile or that leaves the DLLs' bytes as they are is none. Tests of the fault's folder run first, then all.
"""
import argparse
import hashlib
import pathlib
import random
import re
import subprocess

PRESET = 'windows-x64'
OPERATORS = [(r' < ', ' <= '), (r' <= ', ' < '), (r' > ', ' >= '), (r' >= ', ' > '), (r' == ', ' != '),
             (r' != ', ' == '), (r' && ', ' || '), (r' \|\| ', ' && '), (r' \+ ', ' - '), (r' - ', ' + '),
             (r'\btrue\b', 'false'), (r'\bfalse\b', 'true'), (r'(?<=\()!', ''), (r'\b0\b', '1'),
             (r'\b([1-9]\d*)\b', lambda number: str(int(number[1]) + 1)), (r'^( +)return (?!;)(.*);$', r'\1\2;'),
             (r'^ +\w[\w.:>-]*\(.*\);$', ''), (r' & ', ' | '), (r'\+\+', '--')]
REBUILT = ['qwport', 'qwcorert', 'frame_internals_test']  # what has the sources in it


def run(tree, *command):
    return subprocess.run(command, cwd=tree, capture_output=True, text=True, errors='replace', check=False)


def clone(tree):
    run('.', 'git', 'clone', '-q', '.', str(tree))  # fails where it is there, which is as good
    for command in (['git', 'checkout', '-q', '-f', '.'], ['git', 'pull', '-q'], ['cmake', '--preset', PRESET],
                    ['cmake', '--build', '--preset', PRESET]):
        result = run(tree, *command)
        if result.returncode != 0:
            raise SystemExit(result.stdout + result.stderr)


def digest(tree):
    return [hashlib.sha256(dll.read_bytes()).hexdigest() for dll in sorted((tree / 'build' / PRESET).glob('libqw*.dll'))]


def is_code(line):
    return line.strip() and not re.match(r'\s*(//|#|}|namespace|using|template|static_assert)', line)


def sow(line):  # a faulty form of it, or None
    code, comment, rest = line.partition('  //')
    choices = [(operator, match) for operator in OPERATORS for match in re.finditer(operator[0], code)
               if code[:match.start()].count('"') % 2 == 0]
    if not choices:
        return None
    (_, after), match = random.choice(choices)
    changed = after(match) if callable(after) else match.expand(after)
    return code[:match.start()] + changed + code[match.end():] + comment + rest


def caught_by(tree, folder):  # the first test that fails or takes too long, else ''
    for selection in (['-L', f'^{folder}$'], ['-LE', f'^({folder}|install)$']):
        result = run(tree, 'ctest', '--preset', PRESET, '--stop-on-failure', '--timeout', '60', *selection)
        failed = re.search(r'\d+ - (\w+) \((Failed|Timeout|SEGFAULT|.*)\)', result.stdout)
        if failed and failed[1] != 'wine_prefix_start':
            return failed[1]
    return ''


def main():
    options = argparse.ArgumentParser(description=__doc__)
    options.add_argument('--count', type=int, default=60)
    options.add_argument('--seed', type=int, default=1)
    options.add_argument('--tree', type=pathlib.Path, default=pathlib.Path('build/sown'))
    options.add_argument('paths', nargs='*', default=['src', 'core'])
    options = options.parse_args()
    random.seed(options.seed)
    clone(options.tree)
    sound = digest(options.tree)
    places = [(file, index) for path in options.paths for file in sorted((options.tree / path).rglob('*.cpp'))
              for index, line in enumerate(file.read_text().splitlines()) if is_code(line)]
    random.shuffle(places)
    caught = sown = 0
    for file, index in places:
        text = file.read_text()
        lines = text.splitlines()
        after = sow(lines[index])
        if after is None or sown == options.count:
            continue
        file.write_text('\n'.join(lines[:index] + [after] + lines[index + 1:]) + '\n')
        built = run(options.tree, 'cmake', '--build', '--preset', PRESET, '--target', *REBUILT).returncode == 0
        if built and digest(options.tree) != sound:
            test = caught_by(options.tree, file.parent.name)
            sown, caught = sown + 1, caught + bool(test)
            print(f'{"caught by " + test if test else "SURVIVED"}: {file.relative_to(options.tree)}:{index + 1}\n'
                  f'  {lines[index].strip()}\n  {after.strip()}', flush=True)
        file.write_text(text)
    print(f'{caught} of {sown} faults caught')


if __name__ == '__main__':
    main()
