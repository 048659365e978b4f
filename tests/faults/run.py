#!/usr/bin/env python3
"""Says how many of the faults in list.txt the tests catch.

    tests/faults/run.py [number ...]

Copies the tree to build/faults, writes every fault into it as a choice at run time, builds once (preset dev) and runs
the tests fault by fault, those of its own room first, until one fails, crashes or takes too long. Prints a table and
the rate; exit code 1 below 90 %. With numbers only those faults are tried.
"""

import json
import os
import re
import signal
import subprocess
import sys
import time
from pathlib import Path

import seed

ROOT = Path(__file__).resolve().parents[2]
SCRATCH = ROOT / 'build/faults'
BUILD = SCRATCH / 'build/dev'
GOAL = 0.9
# They build the library once more, or run for a minute.
LEFT_OUT = re.compile('consumer_test|walk_.*')
# Folders of tests that come right after those of the fault's own folder.
NEXT = {'apps/common': ['apps/scene', 'apps/trelmix'], 'apps/common/options': ['apps/trelmix'],
        'apps/common/scene': ['apps/scene', 'apps/trelmix'], 'apps/common/tiles': ['apps/tiles', 'apps/trelmix'],
        'apps/common/picture': ['apps/picture', 'apps/trelmix'], 'Engine': ['Overlays', 'Host'],
        'Scene': ['Overlays', 'Engine', 'Render'], 'Tiles': ['Engine', 'Network'], 'Overlays': ['Engine']}


def copyTree(changed):
    """Writes only what differs, so that a second run builds little."""
    names = subprocess.run(['git', 'ls-files', '-z'], cwd=ROOT, check=True, capture_output=True, text=True).stdout
    names = [name for name in names.split('\0') if name and (ROOT / name).is_file()]
    for name in names:
        source, target = ROOT / name, SCRATCH / name
        content = changed[name].encode() if name in changed else source.read_bytes()
        if not target.exists() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
            target.chmod(source.stat().st_mode)
    kept = set(names)
    for path in SCRATCH.rglob('*'):
        name = path.relative_to(SCRATCH).as_posix()
        if path.is_file() and not name.startswith('build/') and name not in kept:
            path.unlink()


def build():
    log = SCRATCH / 'build/faults.log'
    log.parent.mkdir(parents=True, exist_ok=True)
    with log.open('w') as out:
        for command in (['cmake', '--preset', 'dev'],
                        ['cmake', '--build', str(BUILD), '-j', str(os.cpu_count())]):
            if subprocess.run(command, cwd=SCRATCH, stdout=out, stderr=subprocess.STDOUT).returncode != 0:
                sys.exit(f'the seeded tree does not build: {log}')


def allTests():
    """The tests by name, as ctest knows them."""
    shown = subprocess.run(['ctest', '--show-only=json-v1'], cwd=BUILD, check=True, capture_output=True, text=True)
    tests = {}
    for test in json.loads(shown.stdout)['tests']:
        values = {p['name']: p['value'] for p in test['properties']}
        if not LEFT_OUT.fullmatch(test['name']):
            tests[test['name']] = Test(test['command'], values['WORKING_DIRECTORY'], values.get('ENVIRONMENT', []))
    return tests


class Test:
    def __init__(self, command, folder, environment):
        self.command, self.folder = command, folder
        self.environment = dict(setting.split('=', 1) for setting in environment)
        self.room = folder.removeprefix(f'{BUILD}/tests/')
        self.seconds = 0

    def run(self, fault, limit):
        """Says what failed; empty when nothing did."""
        process = subprocess.Popen(
            self.command, cwd=self.folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            errors='replace', start_new_session=True,
            env={**os.environ, **self.environment, 'TRELMIX_FAULT': str(fault), 'GTEST_FAIL_FAST': '1'})
        try:
            told, _ = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            told, _ = process.communicate()
            return f'took too long {lastOf(told)}'
        if process.returncode == 0:
            return ''
        failed = re.search(r'\[  FAILED  \] ([\w./]+)', told)
        return failed[1] if failed else f'crashed or failed {lastOf(told)}'

    def fails(self, fault, limit):
        """A busy machine must not pass for a fault: what fails has to fail twice."""
        failure = self.run(fault, limit)
        return failure if not failure or failure.startswith('took') else self.run(fault, limit)


def lastOf(told):
    return 'in ' + (re.findall(r'\[ RUN      \] ([\w./]+)', told) or ['its beginning'])[-1]


def orderFor(fault, tests):
    folder = str(Path(fault.path).parent).removeprefix('src/').removeprefix('Platform/')
    rooms = [folder, *NEXT.get(folder, [])]
    return sorted(tests.items(), key=lambda entry: (
        rooms.index(entry[1].room) if entry[1].room in rooms else len(rooms), entry[1].seconds))


def catch(fault, tests):
    for name, test in orderFor(fault, tests):
        if failure := test.fails(fault.number, 20 + 10 * test.seconds):
            return f'{name}: {failure}'
    return ''


def main():
    try:
        faults = seed.readList(Path(__file__).with_name('list.txt'))
        copyTree(seed.seedAll(faults, ROOT))
    except seed.Stale as error:
        sys.exit(f'the list does not fit the tree any more:\n{error}')
    build()
    tests = allTests()
    for name, test in tests.items():
        started = time.monotonic()
        if failure := test.fails(0, 200):
            sys.exit(f'{name}: {failure}: fails without a fault')
        test.seconds = time.monotonic() - started
    chosen = [fault for fault in faults if len(sys.argv) == 1 or str(fault.number) in sys.argv[1:]]
    caught = 0
    for fault in chosen:
        by = catch(fault, tests)
        caught += bool(by)
        print(f'{fault.number:3} {fault.path}, {fault.title.split(": ")[-1]}: {by or "SURVIVED"}', flush=True)
    print(f'{caught} of {len(chosen)} caught ({100 * caught / max(1, len(chosen)):.0f} %)')
    return 0 if caught >= GOAL * len(chosen) else 1


if __name__ == '__main__':
    sys.exit(main())
