"""A copy of the checkout, with the mutants in it, and its build."""

import os
import re
import subprocess

from mutants import NOT_COMPILED, mutated

HEADER = os.path.join(os.path.dirname(os.path.abspath(__file__)), 'mutant.h')
# Quicker to build than the preset's own, and nearly as quick to run; the mutated text would draw warnings.
FLAGS = ['-DCMAKE_CXX_FLAGS=-w', '-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -DNDEBUG']
ROUNDS = 20


class BuildError(Exception):
    """With the end of the build's output."""


def run(log, command, **options):
    """Runs a command with its output in the log. The exit code and the output."""
    with open(log, 'a', encoding='utf-8') as file:
        file.write(f'\n==== {" ".join(command)}\n')
        file.flush()
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, **options)
        output = done.stdout.decode('utf-8', 'replace')
        file.write(output)
    return done.returncode, output


def write(path, content):
    """Only what differs, so that the next build takes over what did not change."""
    try:
        with open(path, 'rb') as file:
            if file.read() == content: return
    except FileNotFoundError:
        os.makedirs(os.path.dirname(path), exist_ok=True)
    with open(path, 'wb') as file: file.write(content)


class Build:
    def __init__(self, checkout, work, jobs, log):
        self.checkout, self.jobs, self.log = checkout, jobs, log
        self.source, self.folder = os.path.join(work, 'src'), os.path.join(work, 'native')
        self.before, self.texts = {}, {}

    def copy(self):
        """Every file of the checkout that git knows or would take, as it is now."""
        listed = subprocess.run(['git', '-C', self.checkout, 'ls-files', '-z', '--cached', '--others',
                                 '--exclude-standard'], stdout=subprocess.PIPE, check=True).stdout
        wanted = {name for name in listed.decode().split('\0') if os.path.isfile(os.path.join(self.checkout, name))}
        for folder, _, names in os.walk(self.source):
            for name in names:
                path = os.path.join(folder, name)
                if os.path.relpath(path, self.source) not in wanted: os.unlink(path)
                elif name.endswith(('.cpp', '.h')):
                    with open(path, 'rb') as file: self.before[path] = file.read(), os.stat(path).st_mtime_ns
        for name in wanted:
            origin, path = os.path.join(self.checkout, name), os.path.join(self.source, name)
            with open(origin, 'rb') as file: write(path, file.read())
            os.chmod(path, os.stat(origin).st_mode)

    def configure(self):
        code, output = run(self.log, ['cmake', '--preset', 'native', '-B', self.folder, *FLAGS], cwd=self.source)
        if code: raise BuildError(output)

    def write_mutants(self, mutants):
        for name in {mutant.file for mutant in mutants}:
            path = os.path.join(self.source, name)
            if name not in self.texts:
                with open(path, 'rb') as file: self.texts[name] = file.read()
            inside = [mutant for mutant in mutants if mutant.file == name and mutant.result != NOT_COMPILED]
            write(path, mutated(self.texts[name], inside, HEADER))
        for path, (content, time) in self.before.items():
            if not os.path.exists(path): continue
            with open(path, 'rb') as file: same = file.read() == content
            if same: os.utime(path, ns=(time, time))
        self.before = {}

    def build(self, mutants):
        """Builds the tests and what they start, without the mutants that do not compile."""
        self.write_mutants(mutants)
        _, rules = run(self.log, ['ninja', '-C', self.folder, '-t', 'targets', 'all'])
        tests = sorted(set(re.findall(r'^(bin/\w+_test): ', rules, re.MULTILINE)))
        # The library and its tool first: what does not compile shows before the tests, which include its headers.
        for targets in (['bin/zelkctl'], tests):
            for _ in range(ROUNDS):
                code, output = run(self.log, ['ninja', '-C', self.folder, '-j', str(self.jobs), '-k', '0', *targets])
                if not code: break
                if not self.drop(mutants, output): raise BuildError(output)
                self.write_mutants(mutants)
            else:
                raise BuildError(f'Still not built after {ROUNDS} rounds.')

    def drop(self, mutants, output):
        """Takes out the mutants of the lines that the compiler complains of; else of the files; else of all headers."""
        def named(pattern):
            found = set()
            for path, line in re.findall(pattern, output, re.MULTILINE):
                found.add((os.path.relpath(os.path.realpath(path), self.source), int(line)))
            return found

        def at(lines):
            return [mutant for mutant in mutants if mutant.result != NOT_COMPILED and any(
                file == mutant.file and mutant.line <= line < mutant.line + mutant.lines for file, line in lines)]

        errors = named(r'^(/[^:\n]+):(\d+):\d+: (?:fatal )?error:')
        mentioned = named(r'^(?:In file included from |\s+from )?(/[^:\n]+):(\d+)')
        files = {file for file, _ in errors}
        left = [mutant for mutant in mutants if mutant.result != NOT_COMPILED]
        dropped = (at(errors) or at(mentioned) or [mutant for mutant in left if mutant.file in files] or
                   [mutant for mutant in left if not mutant.file.endswith('.cpp')])
        for mutant in dropped: mutant.result = NOT_COMPILED
        return bool(dropped)
