"""Changes one small thing of the product's code at a time, and tells what no test notices. Started by tools/mutate."""

import argparse
import os
import sys
import time

import building
import places
import reporting
import running
from mutants import NOT_COMPILED, NOT_NOTICED, NOTICED, choose

CHECKOUT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def die(*lines):
    print('tools/mutate: ' + '\n'.join(lines), file=sys.stderr)
    sys.exit(1)


def stage(text, work, *arguments):
    """One line: what is done, and the seconds that it took."""
    print(f'{text} ... ', end='', flush=True)
    start = time.monotonic()
    result = work(*arguments)
    print(f'{time.monotonic() - start:.0f} s', flush=True)
    return result


def options():
    parser = argparse.ArgumentParser(prog='tools/mutate', description=__doc__)
    parser.add_argument('--count', type=int, default=300, help='how many mutants (300)')
    parser.add_argument('--seed', default='1', help='which ones (1); the same for runs that are to be compared')
    parser.add_argument('--folder', action='append', help='only of this folder, as family/vlfn98; can be repeated')
    parser.add_argument('--only', type=int, metavar='N', help='run only mutant N of them, and each test')
    parser.add_argument('--checkout', default=CHECKOUT, metavar='DIR', help='another checkout, also of an older commit')
    parser.add_argument('--jobs', type=int, default=2, help='tests at a time (2)')
    parser.add_argument('--csv', metavar='FILE', help='where all mutants are listed (build/mutate/SEED-COUNT.csv)')
    parser.add_argument('--than', metavar='FILE', help='the list of an earlier run, to tell what has changed since')
    return parser.parse_args()


def show(mutant, tests):
    """Every test that reaches a mutant, by itself."""
    print(f'{mutant.file}:{mutant.line}: {mutant.change}\n    {mutant.code}')
    for test in running.candidates(mutant, tests):
        noticed = running.fails(test, ZELK_MUTANT=str(mutant.number))
        print(f'{NOTICED if noticed else NOT_NOTICED:12} {test.name}', flush=True)


def main():
    chosen = options()
    checkout = os.path.realpath(chosen.checkout)
    work = os.path.join(checkout, 'build', 'mutate')
    os.makedirs(work, exist_ok=True)
    build = building.Build(checkout, work, chosen.jobs, os.path.join(work, 'log'))
    try:
        stage('Copying', build.copy)
        stage('Configuring', build.configure)
        found, sizes, errors = stage('Looking for places', places.find, build.folder, build.source, chosen.jobs)
        if errors: die('clang does not understand the code:', *errors[:10])
        if chosen.folder:
            sizes = {folder: size for folder, size in sizes.items() if folder in chosen.folder}
            if len(sizes) < len(chosen.folder): die('There is no such folder of the product.')
        mutants = choose(found, sizes, chosen.count, chosen.seed)
        print(f'{len(found)} changes are possible; {len(mutants)} chosen in {len(sizes)} folders.')
        stage('Building', build.build, mutants)
        print(f'{sum(mutant.result == NOT_COMPILED for mutant in mutants)} of them do not compile.')
        tests = stage('Listing the tests', running.discover, checkout, build.folder)
        stage(f'Running {len(tests)} tests without mutants', running.trace, tests, chosen.jobs)
        deaf = stage('Checking that a mutant can be noticed', running.deaf, tests)
    except building.BuildError as error:
        die(str(error)[-6000:], f'The whole output is in {build.log}.')
    except running.SandboxError as error:
        die('The tests cannot be shut off from the machine, which a changed program might harm.', str(error))
    if deaf or not any(test.reaches for test in tests):
        die(f'The environment does not reach the mutants of {", ".join(deaf) or "any test"}.')
    for test in tests:
        if not test.passes: print(f'Left out, since it fails without any mutant: {test.name}')
    if chosen.only:
        for mutant in mutants:
            if mutant.number == chosen.only and mutant.result != NOT_COMPILED: show(mutant, tests)
        return

    start, left = time.monotonic(), [mutant for mutant in mutants if mutant.result != NOT_COMPILED]

    def tell(mutant):
        left.remove(mutant)
        if sys.stdout.isatty(): print(f'\r\033[K{len(left)} mutants left ', end='', flush=True)

    running.judge(mutants, tests, chosen.jobs, tell)
    print(f'\rRunning the mutants ... {time.monotonic() - start:.0f} s\n')
    print(reporting.table(mutants) + '\n\nNot noticed:\n' + reporting.survivors(mutants))
    listed = chosen.csv or os.path.join(work, f'{chosen.seed}-{chosen.count}.csv')
    reporting.save(mutants, listed)
    print(f'\nAll of them: {listed}')
    if chosen.than: print(reporting.compare(mutants, chosen.than))


main()
