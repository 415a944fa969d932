"""Finds what can be changed in a source: one small fault each, as somebody might type it.

A mutant is a line of a file and the line that takes its place. Only code is changed: no comment, no
text, no preprocessor line, nothing that is there for the compiler alone.
"""

import hashlib
import pathlib
import platform
import re

# What is mutated, by area. A sample takes from the areas in turn, so that each has its share.
AREAS = {
    "description": ["p4gen/halden/pipeline/*.h"],
    "templates": ["p4gen/halden/src/entry_*.h", "p4gen/halden/src/pack.h",
                  "p4gen/halden/src/flow_key.h", "p4gen/halden/src/p4pd_*.h",
                  "p4gen/halden/src/p4pd_*.cc"],
    "table API": ["p4gen/halden/src/tev_tbl_*.h", "p4gen/halden/src/tev_tbl_*.cc"],
    "hash and entry": ["p4gen/p4/src/*.cc", "p4gen/p4/src/*.h", "p4gen/p4/include/ftl/*.h"],
    "engines": ["host/engines/*.cc", "host/engines/*.h"],
    "flow engine": ["host/engines/flow/*.cc", "host/engines/flow/*.h"],
    "rows": ["host/adapter*.cc", "host/adapter.h", "host/memory/*.cc", "host/memory/*.h",
             "host/bits/*.cc", "host/bits/*.h", "host/asic/*.cc", "host/view/*.cc"],
}

SWAPS = {
    "==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "&": "|", "|": "&", "^": "|",
    "<<": ">>", ">>": "<<", "+=": "-=", "-=": "+=", "|=": "=", "&=": "=", "^=": "=",
}
WORDS = {"true": "false", "false": "true", "SDK_RET_OK": "SDK_RET_INVALID_ARG",
         "P4PD_SUCCESS": "P4PD_FAIL", "P4PD_FAIL": "P4PD_SUCCESS",
         "TEV_TBL_RET_OK": "TEV_TBL_RET_INVALID_ARG"}

OPERATOR = re.compile(r"(?<= )(==|!=|<=|>=|<<|>>|&&|\|\||[-+|&^]=|[-+*/%&|^<>])(?= )")
STEP = re.compile(r"\+\+|--")
NUMBER = re.compile(r"(?<![\w.'])(0x[0-9a-fA-F']+|0|[1-9]\d*)([uUlL]*)(?![\w.'])")
WORD = re.compile(r"\b(true|false|(?:SDK|TEV_TBL)_RET_\w+|P4PD_(?:SUCCESS|FAIL))\b")
CONDITION = re.compile(r"\bif (?:constexpr )?\(")
# A whole statement on one line: a call, an assignment, a step, or one of them under an if.
STATEMENT = re.compile(
    r"^(?:(?:else )?if (?:constexpr )?\(.*\) )?"
    r"(?:[\w:.*>\[\]()-]+ (?:=|[-+|&^]=|<<=|>>=) .*|(?:\+\+|--)[\w.>\[\]-]+|[\w:.>\[\]-]+\(.*\)|"
    r"return\b.*|continue|break);$")
FOR_THE_COMPILER = re.compile(r"^\s*(#|static_assert|template|using |namespace |friend |extern |"
                              r"class |struct |inline constexpr \w+ \w+\[\] = \{\}|__asm__|case )")


class Mutant:
    def __init__(self, area, path, number, before, after, nth):
        self.area, self.path, self.number = area, path, number
        self.before, self.after = before, after
        told = "\0".join([path, before.strip(), after.strip(), str(nth)])
        self.id = hashlib.sha1(told.encode()).hexdigest()[:10]

    def applied(self, text):
        lines = text.split("\n")
        assert lines[self.number - 1] == self.before
        lines[self.number - 1] = self.after
        return "\n".join(lines)


def code_of(text):
    """The text with comments and literals blanked out, of the same length line by line."""
    blank = lambda found: re.sub(r"[^\n]", " ", found.group())
    return re.sub(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<![\w])'(?:\\.|[^'\\\n])+'", blank,
                  text, flags=re.S)


def other_numbers(digits):
    value = int(digits.replace("'", ""), 0)
    shown = hex if digits.startswith("0x") else str
    return [shown(value + 1)] + ([shown(value - 1)] if value > 1 else ["0"] if value else [])


def closing(code, start):
    depth = 0
    for at in range(start, len(code)):
        depth += {"(": 1, ")": -1}.get(code[at], 0)
        if depth == 0:
            return at
    return None


def changes(line, code):
    """Each line that may take the place of this one."""
    def put(start, end, what):
        return line[:start] + what + line[end:]
    for found in OPERATOR.finditer(code):
        yield put(found.start(), found.end(), SWAPS[found.group()])
    for found in STEP.finditer(code):
        yield put(found.start(), found.end(), "--" if found.group() == "++" else "++")
    for found in NUMBER.finditer(code):
        for number in other_numbers(found.group(1)):
            yield put(found.start(), found.end(), number + found.group(2))
    for found in WORD.finditer(code):
        yield put(found.start(), found.end(),
                  WORDS.get(found.group(), found.group().split("RET_")[0] + "RET_OK"))
    for found in CONDITION.finditer(code):
        start = found.end() - 1
        end = closing(code, start)
        if end is not None and "=" not in re.sub("[=!<>]=", "", code[start:end]):
            yield put(start, end + 1, "(!" + line[start:end + 1] + ")")
    if STATEMENT.match(code.strip()) and not code.strip().startswith("return"):
        yield line[:len(line) - len(line.lstrip())] + ";"


def other_processors(lines):
    """The numbers of the lines that this machine's compiler does not see."""
    out, inside, hidden = set(), False, False
    for number, line in enumerate(lines, 1):
        if line.startswith(("#if ", "#elif ")) and "__x86_64__" in line:
            inside, hidden = True, platform.machine() != "x86_64"
        elif inside and line.startswith(("#elif", "#else")):
            hidden = platform.machine() == "x86_64"
        elif inside and line.startswith("#endif"):
            inside = hidden = False
        elif hidden:
            out.add(number)
    return out


def mutants_of(area, path, text):
    lines, code = text.split("\n"), code_of(text).split("\n")
    seen, unseen = {}, other_processors(lines)
    for number, (line, bare) in enumerate(zip(lines, code), 1):
        continued = number > 1 and lines[number - 2].endswith("\\")
        if continued or number in unseen or not bare.strip() or FOR_THE_COMPILER.match(bare):
            continue
        for after in changes(line, bare):
            told = (line.strip(), after.strip())
            seen[told] = seen.get(told, 0) + 1
            if after != line:
                yield Mutant(area, path, number, line, after, seen[told])


def all_mutants(root):
    out = {}
    for area, patterns in AREAS.items():
        found = []
        files = sorted({f for p in patterns for f in pathlib.Path(root).glob(p)})
        for file in files:
            path = str(file.relative_to(root))
            found += mutants_of(area, path, file.read_text())
        out[area] = found
    return out


def sample(root, seed, count, only=None):
    """`count` mutants, from the areas in turn: the same for the same seed, also when other lines of
    the sources have changed meanwhile."""
    def rank(mutant):
        return hashlib.sha1(f"{seed} {mutant.id}".encode()).digest()
    left = {area: sorted((m for m in found if only is None or only in m.path), key=rank)
            for area, found in all_mutants(root).items()}
    chosen = []
    while len(chosen) < count and any(left.values()):
        for found in left.values():
            if found and len(chosen) < count:
                chosen.append(found.pop())
    return chosen
