"""Finds what can be changed in C++ sources, by clang's syntax tree, and writes the changes into them.

A change is written as a switch, `(velmoraMutant(7) ? changed : original)`, so that one build holds
many of them. mutant.h has the function.
"""

import re
from dataclasses import dataclass
from pathlib import Path

from clang.cindex import CursorKind, Index, TranslationUnit

HEADER = Path(__file__).resolve().parent / "mutant.h"

TURNED = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",),
}
OPERATOR = re.compile(r"\s*(<=|>=|==|!=|<|>)\s*")
NUMBER = re.compile(r"[0-9.]")
LITERALS = (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL)
LOOPS = (CursorKind.WHILE_STMT, CursorKind.FOR_STMT, CursorKind.CXX_FOR_RANGE_STMT)
# What stands as a statement of its own and does something. A statement of any other kind stays.
DOING = (CursorKind.CALL_EXPR, CursorKind.BINARY_OPERATOR, CursorKind.UNARY_OPERATOR,
         CursorKind.COMPOUND_ASSIGNMENT_OPERATOR)
# Nothing in these is asked while the program runs.
CONSTANT = (CursorKind.STATIC_ASSERT, CursorKind.ENUM_CONSTANT_DECL)


@dataclass(frozen=True, order=True)
class Change:
    """One change of one place: text[start:end] of the file becomes `changed`."""

    file: str
    start: int
    end: int
    line: int
    kind: str
    what: str
    changed: str
    kept: str  # how the original stands beside it, with %s for itself
    constant: tuple = ()  # (start, end, text): the constexpr that it is under, and what replaces that

    def __str__(self):
        return f"{self.file}:{self.line}: {self.what}"


def written(text, numbered):
    """The text with all changes of the list of (number, change) behind switches."""
    order = sorted(numbered, key=lambda item: (item[1].start, -item[1].end, item[0]))
    edits = sorted({change.constant for _, change in order if change.constant})
    return f'#include "{HEADER}"\n#line 1\n' + render(text, 0, len(text), order, edits)


def render(text, start, end, order, edits):
    out = []
    while order:
        (number, change), *order = order
        inner = [item for item in order if item[1].end <= change.end]
        order = [item for item in order if item[1].end > change.end]
        out.append(replaced(text, start, change.start, edits))
        original = change.kept % render(text, change.start, change.end, inner, edits)
        out.append(f"(velmoraMutant({number}) ? {change.changed} : {original})")
        start = change.end
    out.append(replaced(text, start, end, edits))
    return "".join(out)


def replaced(text, start, end, edits):
    out = []
    for edit_start, edit_end, new in edits:
        if start <= edit_start and edit_end <= end:
            out += [text[start:edit_start], new]
            start = edit_end
    return "".join(out) + text[start:end]


class Source:
    """One file of the tree while its places are collected."""

    def __init__(self, root, name):
        self.name = name
        self.path = str(root / name)
        # clang counts bytes.
        self.text = (root / name).read_bytes().decode("latin-1")
        self.changes = set()
        self.macros = []
        self.constants = []  # what replaces each constexpr that the walk is under

    def span(self, cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def add(self, kind, cursor, what, changed, kept="%s"):
        start, end = self.span(cursor)
        if start < end and not any(begin <= start and end <= stop for begin, stop in self.macros):
            constant = self.constants[-1] if self.constants else ()
            self.changes.add(Change(self.name, start, end, cursor.extent.start.line, kind, what,
                                    changed, kept, constant))

    def shown(self, cursor):
        start, end = self.span(cursor)
        text = " ".join(self.text[start:end].split())
        return text if len(text) <= 60 else text[:57] + "..."

    def walk(self, cursor):
        """Collects what can be changed in what the cursor covers."""
        kind = kind_of(cursor)
        # What a template of another header is made into counts as part of the place that uses it.
        elsewhere = cursor.location.file is None or cursor.location.file.name != self.path
        if kind in CONSTANT or elsewhere:
            return
        constant = self.constexpr(cursor)
        if constant:
            self.constants.append(constant)
        children = list(cursor.get_children())
        self.compare(cursor, children)
        self.count(cursor)
        self.decide(cursor, children)
        self.leave_out(cursor, children)
        # A label is a constant.
        for child in children[1:] if kind == CursorKind.CASE_STMT else children:
            self.walk(child)
        if constant:
            self.constants.pop()

    def constexpr(self, cursor):
        """What makes the declaration at the cursor no longer constexpr, so that it can be switched."""
        kinds = (CursorKind.VAR_DECL, CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD)
        if kind_of(cursor) not in kinds:
            return ()
        start, end = self.span(cursor)
        found = re.search(r"\bconstexpr\b", self.text[start:end].partition("=")[0].partition("{")[0])
        if not found:
            return ()
        in_class = kind_of(cursor.semantic_parent) in (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL)
        if kind_of(cursor) != CursorKind.VAR_DECL:
            new = "inline"
        else:
            new = "inline const" if in_class else "const"
        return start + found.start(), start + found.end(), new

    def compare(self, cursor, children):
        """A comparison is turned."""
        call = kind_of(cursor) == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator")
        if len(children) < 2 or not (call or kind_of(cursor) == CursorKind.BINARY_OPERATOR):
            return
        start, end = self.span(cursor)
        left_end, right_start = children[0].extent.end.offset, children[-1].extent.start.offset
        between = OPERATOR.fullmatch(self.text, left_end, right_start)
        if not between or not start < left_end < right_start < end:
            return
        for operator in TURNED[between[1]]:
            changed = f"({self.text[start:left_end]} {operator} {self.text[right_start:end]})"
            self.add("comparison", cursor, f"`{self.shown(cursor)}`: {between[1]} is {operator}",
                     changed, "(%s)")

    def count(self, cursor):
        """A number is off by one, a truth is its opposite."""
        start, end = self.span(cursor)
        literal = self.text[start:end]
        if kind_of(cursor) in LITERALS and NUMBER.match(literal):
            for step in ("+ 1", "- 1"):
                self.add("constant", cursor, f"{literal} is {literal} {step}", f"({literal} {step})")
        elif literal in ("true", "false") and kind_of(cursor) == CursorKind.CXX_BOOL_LITERAL_EXPR:
            other = "false" if literal == "true" else "true"
            self.add("constant", cursor, f"{literal} is {other}", other)

    def decide(self, cursor, children):
        """A condition is always true, or always false."""
        for condition in self.conditions(cursor, children):
            for fixed in ("true", "false"):
                self.add("condition", condition, f"condition `{self.shown(condition)}` is {fixed}",
                         fixed, "static_cast<bool>(%s)")

    def conditions(self, cursor, children):
        kinds = [kind_of(child) for child in children]
        if kind_of(cursor) in (CursorKind.IF_STMT, CursorKind.WHILE_STMT):
            if CursorKind.VAR_DECL in kinds or self.text.startswith("if constexpr", self.span(cursor)[0]):
                return []
            return [children[1 if kinds[0] == CursorKind.DECL_STMT else 0]]
        if kind_of(cursor) == CursorKind.CONDITIONAL_OPERATOR:
            return children[:1]
        if kind_of(cursor) == CursorKind.BINARY_OPERATOR and len(children) == 2:
            between = self.text[children[0].extent.end.offset:children[1].extent.start.offset].strip()
            if between in ("&&", "||"):
                return children
        return []

    def leave_out(self, cursor, children):
        """A call or an assignment is left out."""
        for child in self.statements(cursor, children):
            if kind_of(inner(child)) in DOING:
                self.add("call", child, f"`{self.shown(child)}` is left out", "void()", "void(%s)")

    def statements(self, cursor, children):
        if kind_of(cursor) == CursorKind.COMPOUND_STMT:
            return children
        if kind_of(cursor) in (CursorKind.CASE_STMT, CursorKind.DEFAULT_STMT, *LOOPS):
            return children[-1:]
        if kind_of(cursor) == CursorKind.IF_STMT:
            return children[1:]
        return []


def kind_of(cursor):
    try:
        return cursor.kind
    except ValueError:  # a kind that the library knows and its module for Python does not
        return CursorKind.UNEXPOSED_EXPR


def inner(cursor):
    """The expression without what the compiler puts around it."""
    while kind_of(cursor) == CursorKind.UNEXPOSED_EXPR:
        children = list(cursor.get_children())
        if len(children) != 1:
            break
        cursor = children[0]
    return cursor


def changes_of(root, names, main, arguments):
    """All changes of the files `names`, relative to `root`, as far as they are part of the source `main`."""
    index = Index.create()
    unit = index.parse(main, arguments, options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
    sources = {source.path: source for source in (Source(root, name) for name in names)}
    for cursor in unit.cursor.get_children():
        place = cursor.location.file
        found = place and sources.get(place.name)
        if not found:
            continue
        if kind_of(cursor) == CursorKind.MACRO_INSTANTIATION:
            found.macros.append(found.span(cursor))
        elif not kind_of(cursor).is_preprocessing():
            found.walk(cursor)
    return sorted(change for source in sources.values() for change in source.changes)
