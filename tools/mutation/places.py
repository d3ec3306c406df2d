"""Finds the places of the product's code that can be changed, in clang's syntax tree of it."""

import hashlib
import json
import os
import pickle
import re
import shlex
from multiprocessing import Pool

from clang.cindex import CursorKind, Index, TypeKind

import mutants
from mutants import Mutant, can_be_repeated, lines_of_code

NOT_PRODUCT = ('tests', 'bench', 'examples', 'build')

SWAPS = {'<': '<=', '<=': '<', '>': '>=', '>=': '>', '==': '!=', '!=': '==', '&&': '||', '||': '&&',
         '+': '-', '-': '+', '*': '/', '/': '*', '%': '*', '&': '|', '|': '&', '+=': '-=', '-=': '+='}
ARITHMETIC = ('+', '-', '*', '/', '%', '&', '|', '+=', '-=')
NUMBERS = (TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG, TypeKind.ULONGLONG,
           TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.SHORT, TypeKind.INT, TypeKind.LONG, TypeKind.LONGLONG,
           TypeKind.FLOAT, TypeKind.DOUBLE)
# What a constant that is to be changed may be converted to where it stands.
CONVERTED = NUMBERS + (TypeKind.BOOL,)

FUNCTIONS = (CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
             CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE)
VARIABLES = (CursorKind.VAR_DECL, CursorKind.PARM_DECL)
# What members begin with is among them: constants are made of it, and most of it is overwritten.
WITHOUT_PLACES = (CursorKind.ENUM_DECL, CursorKind.STATIC_ASSERT, CursorKind.TYPE_ALIAS_DECL, CursorKind.TYPEDEF_DECL,
                  CursorKind.TYPE_ALIAS_TEMPLATE_DECL, CursorKind.USING_DECLARATION, CursorKind.FIELD_DECL,
                  CursorKind.TEMPLATE_TYPE_PARAMETER, CursorKind.TEMPLATE_NON_TYPE_PARAMETER,
                  CursorKind.TEMPLATE_TEMPLATE_PARAMETER, CursorKind.TYPE_REF, CursorKind.CXX_UNARY_EXPR)
LOOPS = (CursorKind.FOR_STMT, CursorKind.WHILE_STMT, CursorKind.DO_STMT, CursorKind.CXX_FOR_RANGE_STMT)
BODIED = LOOPS + (CursorKind.IF_STMT, CursorKind.COMPOUND_STMT, CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT)
CALLS = (CursorKind.CALL_EXPR, CursorKind.CXX_DELETE_EXPR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR,
         CursorKind.UNEXPOSED_EXPR)


def folder_of(path):
    parts = path.split('/')[:-1]
    return '/'.join(parts[:2] if parts and parts[0] in ('family', 'tools', 'platform') else parts[:1])


class Finder:
    """The places of one file."""

    def __init__(self, file, text):
        self.file, self.text, self.found = file, text, []

    def code(self, cursor):
        return self.text[cursor.extent.start.offset:cursor.extent.end.offset]

    def before(self, offset):
        return self.text[max(0, offset - 300):offset].rstrip()

    def after(self, offset):
        return self.text[offset:offset + 300].lstrip()

    def add(self, start, end, change, template, parts, constant):
        if 0 <= start < end and b'\n#' not in self.text[start:end]:
            self.found.append(Mutant(self.file, start, end, change, template, parts, constant))

    def whole(self, cursor, change, template, constant):
        place = cursor.extent.start.offset, cursor.extent.end.offset
        self.add(*place, change, template, [place], constant)

    def visit(self, cursor, constant, loop, parents):
        """constant: within a function that the compiler may evaluate; loop: within a loop."""
        kind = cursor.kind
        if kind in WITHOUT_PLACES: return
        children = list(cursor.get_children())
        if kind in FUNCTIONS:
            head = self.text[cursor.extent.start.offset:cursor.location.offset]
            if re.search(rb'\bconsteval\b', head): return
            constant, loop = bool(re.search(rb'\bconstexpr\b', head)), False
            children = [child for child in children if child.extent.start.offset > cursor.location.offset]
        elif kind in VARIABLES:
            start = cursor.extent.start.offset
            if re.search(rb'\b(constexpr|constinit)\b', self.text[start:cursor.location.offset]): return
            children = [child for child in children if child.extent.start.offset >= cursor.location.offset and
                        not self.before(child.extent.start.offset).endswith(b'[')]
        elif kind == CursorKind.LAMBDA_EXPR:
            loop = False
        elif kind == CursorKind.CASE_STMT:
            children = children[1:]
        elif kind == CursorKind.IF_STMT:
            if re.match(rb'if\s+constexpr\b', self.code(cursor)): children = children[1:]
            else: self.conditions(children, (b'(', b';'), (b')',), ('negated', 'always', 'never'), constant)
        elif kind == CursorKind.WHILE_STMT:
            self.conditions(children, (b'(',), (b')',), ('never',), constant)
        elif kind == CursorKind.CONDITIONAL_OPERATOR:
            self.conditions(children[:1], None, (b'?',), ('negated',), constant)
        elif kind == CursorKind.FOR_STMT:
            # The last part is what a loop without end would come from.
            children = [child for child in children[:-1]
                        if not self.after(child.extent.end.offset).startswith(b')')] + children[-1:]
        elif kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            if len(children) == 2: self.operator(cursor, *children, constant)
        elif kind == CursorKind.CALL_EXPR and cursor.spelling.startswith('operator') and len(children) == 3:
            self.operator(cursor, children[0], children[2], constant)
        elif kind == CursorKind.RETURN_STMT:
            self.returned(children, constant)
        elif kind in (CursorKind.INTEGER_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR):
            self.literal(cursor, parents[-1], constant)
        elif kind in (CursorKind.BREAK_STMT, CursorKind.CONTINUE_STMT):
            self.whole(cursor, f'{self.code(cursor).decode()} dropped', 'if (@) {} else $0', constant)
        if parents and parents[-1].kind in BODIED:
            self.statement(cursor, parents, constant, loop)
        if kind in (CursorKind.DECL_REF_EXPR, CursorKind.MEMBER_REF_EXPR):
            children = [child for child in children
                        if not self.before(child.extent.start.offset).endswith((b'<', b','))]
        for child in children:
            self.visit(child, constant, loop or kind in LOOPS, parents + [cursor])

    def conditions(self, children, before, after, changes, constant):
        for child in children:
            start, end = child.extent.start.offset, child.extent.end.offset
            if not child.kind.is_expression() or not self.after(end).startswith(after): continue
            if before and not self.before(start).endswith(before): continue
            for change in changes:
                template = {'negated': '(@ != static_cast<bool>($0))', 'always': '(@ || static_cast<bool>($0))',
                            'never': '(!@ && static_cast<bool>($0))'}[change]
                self.whole(child, f'condition {change}', template, constant)
            return

    def operator(self, cursor, left, right, constant):
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        parts = [(start, left.extent.end.offset), (right.extent.start.offset, end)]
        if not (left.extent.start.offset == start < parts[0][1] < parts[1][0] < parts[1][1]): return
        operator = self.text[parts[0][1]:parts[1][0]].strip().decode('utf-8', 'replace')
        if operator not in SWAPS or not can_be_repeated(self.text[start:end]): return
        if operator in ARITHMETIC and not self.calculates(cursor.type): return
        swapped = SWAPS[operator]
        self.add(start, end, f'{operator} to {swapped}', f'(@ ? (~0) {swapped} (~1) : ($0) {operator} ($1))', parts,
                 constant)

    @staticmethod
    def calculates(kind):
        """Numbers and the product's own types; texts know no minus."""
        kind = kind.get_canonical()
        name = kind.spelling.removeprefix('const ')
        return kind.kind in NUMBERS or kind.kind == TypeKind.RECORD and not name.startswith('std::')

    def returned(self, children, constant):
        for child in children:
            if child.type.get_canonical().kind == TypeKind.BOOL and self.code(child) not in (b'true', b'false', b'{}'):
                if self.before(child.extent.start.offset).endswith(b'return'):
                    self.whole(child, 'return negated', '(@ != static_cast<bool>($0))', constant)

    def literal(self, cursor, parent, constant):
        text = self.code(cursor).decode('utf-8', 'replace')
        if text in ('true', 'false'):
            self.whole(cursor, f'{text} to {"false" if text == "true" else "true"}', '(@ != $0)', constant)
            return
        match = re.fullmatch(r"((?:0[xX][0-9a-fA-F']+)|(?:0[bB][01']+)|[0-9][0-9']*)([uUlLzZ]*)", text)
        if not match: return
        digits = match.group(1).replace("'", '')
        value = int(digits, 8 if re.fullmatch('0[0-7]+', digits) else 0)
        template = f'(@ ? {value + 1}{match.group(2)} : $0)'
        if parent.kind == CursorKind.UNEXPOSED_EXPR:
            # With the conversion in the open: within braces, a number that is no constant must not become narrower.
            target = parent.type.get_canonical()
            if target.kind not in CONVERTED or (target.kind == TypeKind.BOOL and value): return
            template = f'static_cast<{target.spelling.removeprefix("const ")}>{template}'
        self.whole(cursor, f'{text} to {value + 1}{match.group(2)}', template, constant)

    def statement(self, cursor, parents, constant, loop):
        kind, parent = cursor.kind, parents[-1]
        start, end = cursor.extent.start.offset, cursor.extent.end.offset
        if not self.after(end).startswith(b';'): return
        if not self.before(start).endswith((b';', b'{', b'}', b')', b'else', b':')): return
        assigns = kind == CursorKind.BINARY_OPERATOR and re.search(rb'[^=!<>]=[^=]', self.code(cursor))
        # Without a way on where nothing is thrown, a function would end without a result.
        guards = kind == CursorKind.CXX_THROW_EXPR and (parent.kind == CursorKind.IF_STMT or len(parents) > 1 and
                                                        parents[-2].kind == CursorKind.IF_STMT)
        counts = kind == CursorKind.UNARY_OPERATOR and not loop and re.search(rb'\+\+|--', self.code(cursor))
        if kind in CALLS or assigns or guards or counts:
            self.whole(cursor, 'dropped', '(@ ? void() : void($0))', constant)


def parse(units, source, folders):
    """The places of some translation units and of the product's headers that they include, and the errors."""
    index, done, found, errors = Index.create(), {}, [], []
    paths = {}

    def product_file(name):
        if name not in paths:
            path = os.path.relpath(os.path.realpath(name), source)
            paths[name] = path if folder_of(path) in folders and not path.startswith('..') else None
        return paths[name]

    for path, arguments in units:
        unit = index.parse(path, arguments)
        errors += [str(one) for one in unit.diagnostics if one.severity >= 3]
        finders = {}
        for cursor in unit.cursor.get_children():
            location = cursor.location.file
            file = location and product_file(location.name)
            if not file or file in done: continue
            if file not in finders:
                with open(os.path.join(source, file), 'rb') as content: finders[file] = Finder(file, content.read())
            finders[file].visit(cursor, False, False, [])
        for file, finder in finders.items():
            done[file] = lines_of_code(finder.text)
            found += finder.found
    return found, done, errors


def signature(build, source):
    """Of everything that decides which places there are."""
    paths = [os.path.join(build, 'compile_commands.json'), __file__, mutants.__file__]
    for folder, _, names in os.walk(source):
        paths += [os.path.join(folder, name) for name in names if name.endswith(('.cpp', '.h'))]
    total = hashlib.sha256()
    for path in sorted(paths):
        with open(path, 'rb') as file: total.update(path.encode() + b'\n' + file.read())
    return total.hexdigest()


def find(build, source, jobs):
    """All places of the product, each folder's lines of code, and what clang does not understand. Kept for the next run
    on the same sources, since reading them takes a minute or two."""
    kept, now = os.path.join(build, 'mutation-places'), signature(build, source)
    try:
        with open(kept, 'rb') as file: before, answer = pickle.load(file)
        if before == now: return answer
    except (OSError, EOFError, pickle.UnpicklingError):
        pass
    answer = look(build, source, jobs)
    with open(kept, 'wb') as file: pickle.dump((now, answer), file)
    return answer


def look(build, source, jobs):
    with open(os.path.join(build, 'compile_commands.json'), encoding='utf-8') as file: commands = json.load(file)
    units, folders = [], set()
    for command in commands:
        path = os.path.relpath(os.path.realpath(command['file']), source)
        if path.startswith('..') or path.split('/')[0] in NOT_PRODUCT or not path.endswith('.cpp'): continue
        arguments = shlex.split(command['command'])[1:]
        # Without the output and without the input, which is named apart.
        arguments = [one for at, one in enumerate(arguments)
                     if one not in ('-o', '-c', command['file']) and arguments[at - 1] != '-o']
        units.append((command['file'], arguments + ['-w', '-ferror-limit=0']))
        folders.add(folder_of(path))
    with Pool(jobs) as pool:
        answers = pool.starmap(parse, [(units[part::jobs], source, folders) for part in range(jobs)])
    unique, sizes, files, errors = {}, {}, {}, []
    for found, done, messages in answers:
        files.update(done)
        errors += messages
        for mutant in found: unique.setdefault((mutant.file, mutant.start, mutant.end, mutant.change), mutant)
    for file, size in files.items(): sizes[folder_of(file)] = sizes.get(folder_of(file), 0) + size
    texts = {}
    for mutant in unique.values():
        if mutant.file not in texts:
            with open(os.path.join(source, mutant.file), 'rb') as content: texts[mutant.file] = content.read()
        text = texts[mutant.file]
        mutant.folder = folder_of(mutant.file)
        mutant.line = text.count(b'\n', 0, mutant.start) + 1
        mutant.lines = text.count(b'\n', mutant.start, mutant.end) + 1
        first = text.rfind(b'\n', 0, mutant.start) + 1
        last = text.find(b'\n', mutant.start)
        mutant.code = text[first:last].strip().decode('utf-8', 'replace')
    return list(unique.values()), sizes, errors
