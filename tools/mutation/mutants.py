"""A mutant: one small change of one place, and how the sources look with all of them compiled in."""

import hashlib
import re
from dataclasses import dataclass

NOT_COMPILED, NOT_REACHED, NOT_NOTICED, NOTICED = 'not compiled', 'not reached', 'not noticed', 'noticed'


@dataclass
class Mutant:
    file: str  # as seen from the checkout
    start: int  # in bytes, as all places
    end: int
    change: str  # for people
    # The mutated text: "@" is the switch, "$n" the n-th part as it is in the source, "~n" the same on one line.
    template: str
    parts: list  # of (start, end)
    compile_time: bool  # in a function that the compiler may evaluate
    folder: str = ''
    line: int = 0
    lines: int = 1
    code: str = ''
    key: str = ''  # the same as long as the changed line is, wherever it stands
    number: int = 0
    result: str = ''
    by: str = ''  # the test that noticed it
    tests: int = 0  # that reach it


def one_line(text):
    """The code without its comments and line ends."""
    text = re.sub(rb'("(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)*\')|//[^\n]*|/\*.*?\*/',
                  lambda match: match.group(1) or b' ', text, flags=re.DOTALL)
    return b' '.join(text.split(b'\n'))


def can_be_repeated(text):
    """Whether the code can stand in the file a second time, on one line."""
    return b'#' not in text and b'R"' not in text and b'\\\n' not in text


def mutated(text, mutants, header):
    """The text of a file with these mutants compiled in. Lines keep their numbers."""
    def render(start, end, inside):
        out, at = [], start
        while inside:
            mutant, inside = inside[0], inside[1:]
            within = [other for other in inside if other.end <= mutant.end]
            inside = inside[len(within):]

            def part(match, mutant=mutant, within=within):
                token = match.group()
                if token == '@':
                    return f'mutation::{"onAtRunTime" if mutant.compile_time else "on"}({mutant.number})'
                first, last = mutant.parts[int(token[1])]
                code = render(first, last, [other for other in within if first <= other.start and other.end <= last])
                return (one_line(code) if token[0] == '~' else code).decode('utf-8')

            out += [text[at:mutant.start], re.sub(r'@|[$~]\d', part, mutant.template).encode('utf-8')]
            at = mutant.end
        return b''.join(out) + text[at:end]

    if not mutants:
        return text
    nested = sorted(mutants, key=lambda mutant: (mutant.start, -mutant.end))
    return f'#include "{header}"\n#line 1\n'.encode() + render(0, len(text), nested)


def lines_of_code(text):
    return sum(1 for line in text.split(b'\n') if line.strip() and not line.strip().startswith(b'//'))


def digest(text):
    return hashlib.sha256(text.encode()).hexdigest()[:16]


def choose(candidates, sizes, count, seed):
    """Mutants of each folder in proportion to its lines of code. Which ones follows from the seed and the text of their
    lines, so that most stay the same when other code changes and when it moves."""
    seen = {}
    for mutant in sorted(candidates, key=lambda mutant: (mutant.file, mutant.start, mutant.end, mutant.change)):
        what = f'{seed}|{mutant.code}|{mutant.change}'
        seen[what] = seen.get(what, 0) + 1
        mutant.key = digest(f'{what}|{seen[what]}')

    total = sum(sizes.values())
    shares = {folder: count * size / total for folder, size in sizes.items()}
    quota = {folder: int(share) for folder, share in shares.items()}
    by_rest = sorted(shares, key=lambda folder: (quota[folder] - shares[folder], folder))
    for folder in by_rest[:count - sum(quota.values())]:
        quota[folder] += 1

    # One change of each place, drawn before the places are, so that those that allow several don't come more often.
    places = {}
    for mutant in sorted(candidates, key=lambda mutant: mutant.key):
        places.setdefault((mutant.file, mutant.start, mutant.end), mutant)
    chosen = []
    for mutant in sorted(places.values(), key=lambda mutant: digest(mutant.key)):
        if quota.get(mutant.folder):
            quota[mutant.folder] -= 1
            chosen.append(mutant)
    chosen.sort(key=lambda mutant: (mutant.folder, mutant.file, mutant.start, mutant.end))
    for number, mutant in enumerate(chosen, 1):
        mutant.number = number
    return chosen
