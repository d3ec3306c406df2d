"""The tests: which there are, which mutants each of them reaches, and which mutants they notice."""

import functools
import json
import os
import re
import subprocess
import time
from concurrent.futures import ThreadPoolExecutor
from dataclasses import dataclass, field

from mutants import NOT_COMPILED, NOT_NOTICED, NOT_REACHED, NOTICED

MOST = 65536  # mutants, as in mutant.h

# A changed program may write, delete and signal what it likes. So each test runs in a process and mount namespace of
# its own: the machine's files are read-only in it, the folder for temporary files and the shared memory are empty, and
# all that it started ends with it. The first process must not be the test itself, since it would not get all signals.
NO_SANDBOX = 97
SANDBOX = f'''
shut_off() {{
  mount --bind "$CHECKOUT" /var/tmp && for place in $REAL_MOUNTS; do mount -o remount,ro,bind "$place" || return; done
  mount -t tmpfs -o size=1g,mode=1777 tmpfs /tmp && mount -t tmpfs -o mode=1777 tmpfs /dev/shm &&
    mkdir -p "$CHECKOUT" && mount --bind /var/tmp "$CHECKOUT" && mount -o remount,ro,bind "$CHECKOUT" &&
    umount /var/tmp && cd "$FOLDER"
}}
shut_off || exit {NO_SANDBOX}
ulimit -c 0; ulimit -v 8388608
reached=${{ZELK_MUTANT_REACHED-}}
[ -z "$reached" ] || {{ head -c {MOST} /dev/zero >"$reached" && chmod 666 "$reached"; }}
"$@" 2>&1
code=$?
[ -z "$reached" ] || cat "$reached" >&2
exit $code'''
NAMESPACES = ['unshare', *([] if os.geteuid() == 0 else ['--map-root-user']), '--mount', '--pid', '--ipc', '--fork',
              '--kill-child', '--mount-proc', 'sh', '-c', SANDBOX, 'sandbox']
REACHED = '/tmp/reached'

OF_THE_TEXT = 'Style.'  # tests that read the sources


@dataclass
class Test:
    name: str
    command: list
    checkout: str
    folder: str
    skipped: str  # what the output of a test that passes by doing nothing matches
    alone: bool
    seconds: float = 0
    passes: bool = True
    reaches: set = field(default_factory=set)


class SandboxError(Exception):
    pass


def discover(checkout, build):
    listed = subprocess.run(['ctest', '--show-only=json-v1'], cwd=build, stdout=subprocess.PIPE, check=True).stdout
    tests = []
    for entry in json.loads(listed)['tests']:
        properties = {one['name']: one['value'] for one in entry.get('properties', [])}
        if not entry.get('command') or entry['name'].startswith(OF_THE_TEXT): continue
        tests.append(Test(entry['name'].split('  #')[0], entry['command'], checkout,
                          properties.get('WORKING_DIRECTORY', build),
                          '|'.join(properties.get('SKIP_REGULAR_EXPRESSION', [])), properties.get('RUN_SERIAL', False)))
    return tests


@functools.cache
def real_mounts():
    return subprocess.run(['findmnt', '--real', '--raw', '--noheadings', '--output', 'TARGET'], stdout=subprocess.PIPE,
                          check=True).stdout.decode()


def run(test, limit, **switch):
    """Runs one test. Its exit code (none: it took longer than the limit), its output, the bytes of what it reached."""
    environment = {'ZELK_TEST_SEED': '1', **os.environ, **switch, 'CHECKOUT': test.checkout, 'FOLDER': test.folder,
                   'REAL_MOUNTS': real_mounts(), 'TMPDIR': '/tmp'}
    with subprocess.Popen([*NAMESPACES, *test.command], env=environment, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE) as process:
        try:
            output, reached = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            process.kill()
            process.communicate()
            return None, '', b''
    if process.returncode == NO_SANDBOX or len(reached) not in (0, MOST):
        raise SandboxError(reached.decode('utf-8', 'replace'))
    return process.returncode, output.decode('utf-8', 'replace'), reached


def trace(tests, jobs):
    """Runs each test without a mutant, and notes how long it takes and which mutants it reaches."""
    def one(test):
        for _ in range(2):
            start = time.monotonic()
            code, output, reached = run(test, 300, ZELK_MUTANT_REACHED=REACHED)
            test.seconds, test.passes = time.monotonic() - start, code == 0
            if test.passes: break
        if not test.skipped or not re.search(test.skipped, output):
            test.reaches = {number for number, byte in enumerate(reached) if byte}

    with ThreadPoolExecutor(jobs) as pool: list(pool.map(one, [test for test in tests if not test.alone]))
    for test in tests:
        if test.alone: one(test)


def fails(test, **switch):
    """Whether the test takes far too long or fails twice, so that one that sometimes does by itself rarely counts."""
    limit = max(20, 10 * test.seconds)
    code = run(test, limit, **switch)[0]
    return code is None or code != 0 and run(test, limit, **switch)[0] != 0


def deaf(tests):
    """The test programs that do not end at the first mutant that they reach, although the environment says so."""
    programs = {}
    for test in tests:
        if test.passes and test.reaches: programs.setdefault(test.command[0], test)
    return [os.path.basename(program) for program, test in programs.items() if not fails(test, ZELK_MUTANT='abort')]


def candidates(mutant, tests):
    """The tests that may notice the mutant, first those that are quick and reach little else."""
    able = [test for test in tests if test.passes and mutant.number in test.reaches]
    return sorted(able, key=lambda test: (test.seconds * len(test.reaches), test.name))


def judge(mutants, tests, jobs, tell):
    """Runs each mutant until a test notices it."""
    def one(mutant):
        able = candidates(mutant, tests)
        mutant.tests = len(able)
        mutant.result = NOT_NOTICED if able else NOT_REACHED
        for test in able:
            if fails(test, ZELK_MUTANT=str(mutant.number)):
                mutant.result, mutant.by = NOTICED, test.name
                break
        tell(mutant)

    with ThreadPoolExecutor(jobs) as pool:
        list(pool.map(one, [mutant for mutant in mutants if mutant.result != NOT_COMPILED]))
