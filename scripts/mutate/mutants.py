# SPDX-License-Identifier: Apache-2.0
"""Lists the mutants of the library: copies of its code with one small change each.

The code is parsed by libclang; function bodies and initialisers of src/ and include/ are changed.
"""
import os
import re
import shlex
from collections import defaultdict
from dataclasses import dataclass

from clang import cindex
from clang.cindex import CursorKind as K, TypeKind as T

OPERATORS = {
    "relational": {"<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
                   "==": ["!="], "!=": ["=="]},
    "logical": {"&&": ["||"], "||": ["&&"]},
    "arithmetic": {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "<<": [">>"],
                   ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["|"]},
    "assignment": {"+=": ["-=", "="], "-=": ["+=", "="], "*=": ["/="], "/=": ["*="],
                   "|=": ["&=", "="], "&=": ["|=", "="], "^=": ["|="]},
}
CALLS = {"min": "max", "max": "min", "front": "back", "back": "front", "floor": "ceil",
         "ceil": "floor", "push_back": "push_front", "pop_front": "pop_back",
         "notify_all": "notify_one"}
LOCKS = re.compile(r"\b(lock_guard|unique_lock|scoped_lock|AutoMutex|Autolock)\b")
INTEGERS = {T.CHAR_U, T.UCHAR, T.USHORT, T.UINT, T.ULONG, T.ULONGLONG, T.CHAR_S, T.SCHAR, T.SHORT,
            T.INT, T.LONG, T.LONGLONG}
FUNCTIONS = {K.FUNCTION_DECL, K.CXX_METHOD, K.CONSTRUCTOR, K.DESTRUCTOR, K.FUNCTION_TEMPLATE,
             K.CONVERSION_FUNCTION}
STATEMENTS = {K.CALL_EXPR, K.BINARY_OPERATOR, K.COMPOUND_ASSIGNMENT_OPERATOR, K.UNARY_OPERATOR,
              K.CXX_DELETE_EXPR, K.UNEXPOSED_EXPR, K.CSTYLE_CAST_EXPR, K.BREAK_STMT,
              K.CONTINUE_STMT}
SKIPPED = {K.TEMPLATE_TYPE_PARAMETER, K.TEMPLATE_NON_TYPE_PARAMETER, K.ANNOTATE_ATTR, K.PARM_DECL,
           K.TYPE_REF}


@dataclass(frozen=True)
class Mutant:
    file: str  # relative to the root
    start: int  # the changed bytes are [start, end)
    end: int
    new: str
    kind: str
    function: str
    line: int
    old: str

    @property
    def folder(self):
        return self.file.rsplit("/", 1)[0]

    def apply(self, data):
        """The file's mutated content, with as many lines as before."""
        lines = self.old.count("\n") - self.new.count("\n")
        return data[:self.start] + (self.new + "\n" * lines).encode() + data[self.end:]

    def __str__(self):
        old, new = (" ".join(text.split())[:60] for text in (self.old, self.new))
        place = f"{self.file}:{self.line} {self.function}".rstrip()
        return f"{place}: {self.kind} `{old}` -> `{new}`"


class FileWalker:
    """Collects the mutants of one file of a translation unit."""

    def __init__(self, root, path, cursors):
        self.name = os.path.relpath(path, root)
        with open(path, "rb") as file:
            self.data = file.read()
        self.macros = [self.extent(c) for c in cursors if c.kind == K.MACRO_INSTANTIATION]
        self.function = ""
        self.mutants = {}
        for cursor in cursors:
            if not cursor.kind.is_preprocessing():
                self.visit(cursor)

    @staticmethod
    def extent(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def text(self, cursor):
        start, end = self.extent(cursor)
        return self.data[start:end].decode()

    def macro_at(self, cursor):
        at = self.extent(cursor)[0]
        return next((m for m in self.macros if m[0] <= at < m[1]), None)

    def add(self, kind, start, end, new):
        old = self.data[start:end].decode()
        if start < end and old != new:
            line = self.data.count(b"\n", 0, start) + 1
            mutant = Mutant(self.name, start, end, new, kind, self.function, line, old)
            self.mutants.setdefault((start, end, new), mutant)

    def visit(self, cursor):
        if cursor.kind.is_expression() and self.macro_at(cursor):
            return
        outer = self.function
        if cursor.kind in FUNCTIONS:
            self.function = cursor.spelling
        children = list(cursor.get_children())
        self.mutate(cursor, children)
        for child in children:
            if child.kind not in SKIPPED:
                self.visit(child)
        self.function = outer

    def mutate(self, cursor, children):
        kind = cursor.kind
        if kind == K.COMPOUND_STMT:
            for child in children:
                self.remove_statement(child)
        elif kind in (K.IF_STMT, K.WHILE_STMT):
            self.mutate_condition(next((c for c in children if c.kind.is_expression()), None))
        elif kind == K.DO_STMT:
            self.mutate_condition(children[-1])
        elif kind == K.CONDITIONAL_OPERATOR:
            self.mutate_condition(children[0])
        elif kind in (K.BINARY_OPERATOR, K.COMPOUND_ASSIGNMENT_OPERATOR) and len(children) == 2:
            self.mutate_operator(*children)
        elif kind == K.CALL_EXPR:
            self.mutate_call(cursor)
        elif kind == K.UNARY_OPERATOR:
            self.mutate_unary(cursor)
        else:
            self.mutate_literal(cursor)

    def remove_statement(self, cursor):
        start, end = self.extent(cursor)
        macro = self.macro_at(cursor)
        if macro:
            is_log = self.data[start:].startswith(b"FP_LOG")
            if macro[0] == start:
                self.add("log" if is_log else "statement", *macro, "")
        elif cursor.kind == K.DECL_STMT:
            if LOCKS.search(self.text(cursor)):
                self.add("lock", start, end, ";")
        elif cursor.kind in STATEMENTS:
            self.add("statement", start, end, "")
        elif cursor.kind == K.RETURN_STMT:
            self.mutate_return(cursor, list(cursor.get_children()))

    def mutate_return(self, cursor, children):
        if not children:
            self.add("return", *self.extent(cursor), "")
            return
        value = children[0]
        macro = self.macro_at(value)
        if macro and macro[1] != self.extent(value)[1]:
            return
        kind, text = value.type.get_canonical().kind, self.text(value)
        if kind == T.BOOL:
            replacements = [f"!({text})"]
        elif kind == T.POINTER:
            replacements = ["nullptr"]
        elif kind in INTEGERS:
            replacements = [f"({text}) + 1", "0"]
        elif kind in (T.FLOAT, T.DOUBLE):
            replacements = [f"({text}) + 1"]
        elif kind == T.RECORD and not text.startswith("{"):
            replacements = ["{}"]
        else:
            replacements = []
        for new in replacements:
            self.add("return", *self.extent(value), new)

    def mutate_condition(self, cursor):
        if cursor is not None and not self.macro_at(cursor) and self.text(cursor).strip():
            for new in (f"!({self.text(cursor)})", "false", "true"):
                self.add("condition", *self.extent(cursor), new)

    def mutate_operator(self, left, right):
        start, end = self.extent(left)[1], self.extent(right)[0]
        gap = re.sub(rb"//[^\n]*|/\*.*?\*/", lambda m: b" " * len(m.group()), self.data[start:end],
                     flags=re.S)
        token = gap.strip()
        for kind, table in OPERATORS.items():
            for new in table.get(token.decode(), []):
                at = start + gap.index(token)
                self.add(kind, at, at + len(token), new)

    def mutate_call(self, cursor):
        arguments = [a for a in cursor.get_arguments() if a is not None]
        if cursor.spelling.startswith("operator"):
            if len(arguments) == 2:
                self.mutate_operator(*arguments)
            return
        start, end = self.extent(cursor)
        found = re.search(rb"\b%s\b" % re.escape(cursor.spelling).encode(), self.data[start:end])
        if found and cursor.spelling in CALLS:
            self.add("call", start + found.start(), start + found.end(), CALLS[cursor.spelling])
        for left, right in zip(arguments, arguments[1:]):
            self.swap_arguments(left, right)

    def swap_arguments(self, left, right):
        """Swaps two arguments if they have the same type."""
        left_type, right_type = (a.type.get_canonical().spelling.replace("const ", "")
                                 for a in (left, right))
        (start, left_end), (right_start, end) = self.extent(left), self.extent(right)
        if left_type == right_type and start < left_end <= right_start < end \
                and not self.macro_at(left) and not self.macro_at(right):
            between = self.data[left_end:right_start].decode()
            self.add("arguments", start, end, self.text(right) + between + self.text(left))

    def mutate_unary(self, cursor):
        (start, end), text = self.extent(cursor), self.text(cursor)
        other = {"++": "--", "--": "++"}
        if text[:2] in other:
            self.add("arithmetic", start, start + 2, other[text[:2]])
        elif text[-2:] in other:
            self.add("arithmetic", end - 2, end, other[text[-2:]])
        elif text.startswith("!"):
            self.add("negation", start, start + 1, "")
        elif re.match(r"-\D", text):
            self.add("arithmetic", start, start + 1, "")

    def mutate_literal(self, cursor):
        (start, end), text = self.extent(cursor), self.text(cursor)
        if cursor.kind in (K.INTEGER_LITERAL, K.FLOATING_LITERAL):
            self.add("constant", start, end, f"({text} + 1)")
            self.add("constant", start, end, f"({text} - 1)")
        elif cursor.kind == K.CXX_BOOL_LITERAL_EXPR:
            self.add("constant", start, end, "true" if text == "false" else "false")
        elif cursor.kind == K.STRING_LITERAL:
            letters = re.match(r'"[^"\\%]*?[A-Za-z]([A-Za-z])', text)
            if letters:
                at = start + letters.start(1)
                self.add("text", at, at + 1, "q" if letters[1] != "q" else "z")


def arguments_of(command):
    """The compiler's arguments without input, output and warnings."""
    words, kept = iter(shlex.split(command)[1:]), []
    for word in words:
        if word in ("-o", "-c"):
            next(words)
        elif not word.startswith("-W"):
            kept.append(word)
    return kept


def find_mutants(root, commands):
    """All mutants of the library whose compile commands (source: command) are given."""
    index, seen, found = cindex.Index.create(), set(), []
    ours = (f"{root}/src/", f"{root}/include/")
    for source, command in commands.items():
        unit = index.parse(source, args=arguments_of(command),
                           options=cindex.TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        errors = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
        if errors:
            raise SystemExit(f"{source}: {errors[0]}")
        by_path = defaultdict(list)
        for cursor in unit.cursor.get_children():
            if cursor.location.file is not None:
                by_path[cursor.location.file.name].append(cursor)
        for path, cursors in by_path.items():
            if path.startswith(ours) and path not in seen:
                seen.add(path)
                found += FileWalker(root, path, cursors).mutants.values()
    return sorted(found, key=lambda m: (m.file, m.start, m.end, m.new))
