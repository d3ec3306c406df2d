"""What a run found: a table of the folders, the mutants that no test noticed, and a file of all of them."""

import csv

from mutants import NOT_COMPILED, NOT_NOTICED, NOT_REACHED, NOTICED

COLUMNS = ('number', 'folder', 'file', 'line', 'change', 'code', 'result', 'by', 'tests', 'key')


def table(mutants):
    rows = [('folder', 'mutants', 'not compiled', 'noticed', 'not noticed', 'of them not reached', 'share noticed')]
    folders = sorted({mutant.folder for mutant in mutants})
    for folder in [*folders, 'all']:
        results = [mutant.result for mutant in mutants if folder in (mutant.folder, 'all')]
        lost, noticed, unreached = (results.count(one) for one in (NOT_COMPILED, NOTICED, NOT_REACHED))
        compiled = len(results) - lost
        rows.append((folder, len(results), lost, noticed, compiled - noticed, unreached,
                     f'{100 * noticed / compiled:.1f} %' if compiled else ''))
    widths = [max(len(str(row[column])) for row in rows) for column in range(len(rows[0]))]
    return '\n'.join('  '.join(str(cell).ljust(width) if at == 0 else str(cell).rjust(width)
                               for at, (cell, width) in enumerate(zip(row, widths))) for row in rows)


def survivors(mutants):
    lines = []
    for mutant in mutants:
        if mutant.result in (NOT_NOTICED, NOT_REACHED):
            why = f'{mutant.tests} tests reach it' if mutant.tests else 'not reached'
            lines += [f'{mutant.file}:{mutant.line}: {mutant.change} (mutant {mutant.number}, {why})',
                      f'    {mutant.code}']
    return '\n'.join(lines)


def save(mutants, path):
    with open(path, 'w', encoding='utf-8', newline='') as file:
        rows = csv.writer(file)
        rows.writerow(COLUMNS)
        rows.writerows([getattr(mutant, column) for column in COLUMNS] for mutant in mutants)


def compare(mutants, path):
    """What has changed since the run of that file, of the mutants that both have."""
    with open(path, encoding='utf-8', newline='') as file:
        before = {row['key']: row['result'] for row in csv.DictReader(file)}
    both = [mutant for mutant in mutants if mutant.key in before and
            NOT_COMPILED not in (mutant.result, before[mutant.key])]
    lost = [mutant for mutant in both if mutant.result != NOTICED and before[mutant.key] == NOTICED]
    won = [mutant for mutant in both if mutant.result == NOTICED and before[mutant.key] != NOTICED]
    text = f'Of {len(both)} mutants that {path} has too, {len(lost)} are no longer noticed and {len(won)} are now.'
    return '\n'.join([text, *([survivors(lost)] if lost else [])])
