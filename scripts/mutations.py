"""Which small changes of C++ code mutate.py makes: one operator, constant or call, found by their looks. clang-format
puts blanks around every binary operator and nowhere else, which distinguishes "a * b" from "char *p" and "a < b" from "<int>"."""

import collections
import os
import re

import source_text

Mutant = collections.namedtuple("Mutant", "file line start end old new")

BINARY = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "*": ["/"],
    "/": ["*"],
    "%": ["/"],
    "<<": [">>"],
    ">>": ["<<"],
    "&": ["|"],
    "|": ["&"],
    "^": ["|"],
    "+=": ["-="],
    "-=": ["+="],
    "&=": ["|="],
    "|=": ["&="],
    "^=": ["|="],
}
UNARY = {"++": "--", "--": "++", "!": ""}
WORDS = {"true": "false", "false": "true"}

TOKEN = re.compile(
    r"(?P<comment>//.*|/\*.*?\*/)"
    r'|(?P<text>"(?:\\.|[^"\\])*")'
    r"|(?P<character>'(?:\\.|[^'\\])+')"
    r"|(?P<number>(?<![\w.])(?:0[xX][0-9A-Fa-f]+|\d+)[uU]?(?![\w.]))"
    r"|(?P<word>\b(?:true|false)\b)"
    r"|(?<= )(?P<binary>" + "|".join(sorted(map(re.escape, BINARY), key=len, reverse=True)) + r")(?= |$)"
    r"|(?P<unary>\+\+|--|!(?!=))")
CALL = re.compile(r"^\s+(?!return\b)[\w:.>-]+\(.*\);$")
# Declarations, in which a changed constant or text means nothing that runs, and what must not be tried: a number other
# than 0 would not ask for a process but end it.
SKIPPED = re.compile(r"^\s*#|\\$|\bvirtual\b.* = 0;|^\s*(Q_[A-Z_]+|typedef|using|static_assert|enum|extern)\b|\bkill\(")


def changed_number(number):
    digits = number.rstrip("uU")
    suffix = number[len(digits):]
    if digits[:2] in ("0x", "0X"):
        return f"0x{int(digits, 16) + 1:X}{suffix}"
    return f"{int(digits) + 1}{suffix}"


def changed_character(character):
    body = character[1:-1]
    return "'" + ("0" if body.startswith("\\") else chr(ord(body) + 1) if body not in "&~" else "a") + "'"


def changed_text(text):
    return '"x"' if text == '""' else '"' + ("y" if text[1] == "x" else "x") + text[3 if text[1] == "\\" else 2:]


def replacements(kind, old):
    if kind == "binary":
        return BINARY[old]
    change = {"text": changed_text, "character": changed_character, "number": changed_number,
              "word": WORDS.get, "unary": UNARY.get}[kind]
    return [change(old)]


def mutants_of_line(file, number, line):
    if SKIPPED.search(line):
        return
    for match in TOKEN.finditer(line):
        if match.lastgroup != "comment":
            for new in replacements(match.lastgroup, match.group()):
                yield Mutant(file, number, match.start(), match.end(), match.group(), new)
    if file.endswith(".cpp") and CALL.match(line):
        start = len(line) - len(line.lstrip())
        yield Mutant(file, number, start, len(line), line.strip(), ";")


def all_mutants(root):
    """By place: a list of the mutants of each line of runtime/ that has any."""
    places = []
    for folder, _, names in sorted(os.walk(os.path.join(root, "runtime"))):
        for name in sorted(names):
            if not name.endswith((".cpp", ".h")):
                continue
            file = os.path.relpath(os.path.join(folder, name), root)
            with open(os.path.join(root, file), encoding="utf-8") as source:
                for number, line in enumerate(source.read().split("\n"), 1):
                    mutants = list(mutants_of_line(file, number, line))
                    if mutants:
                        places.append(mutants)
    return places


def sample(places, chance):
    """Endless for practical ends: one mutant of each place in random order, then a second one of each and so on."""
    places = [chance.sample(mutants, len(mutants)) for mutants in places]
    while places:
        chance.shuffle(places)
        for mutants in places:
            yield mutants.pop()
        places = [mutants for mutants in places if mutants]


def describe(mutant, lines):
    change = "removed" if mutant.new == ";" else f"{mutant.old} -> {mutant.new or 'nothing'}"
    return f"{mutant.file}: {source_text.place(lines, mutant.line - 1)} [column {mutant.start + 1}: {change}]"
