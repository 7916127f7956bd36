"""Which faults a C++ source may be given, and the drawing of some of them by chance."""

import collections
import pathlib
import random
import re

TOP = pathlib.Path(__file__).resolve().parents[1]

OPERATORS = {"==": "!=", "!=": "==", "<": "<=", "<=": "<", ">": ">=", ">=": ">", "&&": "||",
             "||": "&&", "+": "-", "-": "+", "*": "+", "/": "*", "%": "/", "&": "|", "|": "&",
             "+=": "-=", "-=": "+="}
DECLARATION = re.compile(r"\s*(const )?(auto|[\w:<>]+)[&*]* \w+( =|$)")

Fault = collections.namedtuple("Fault", "file start end kind before after line text")


def masked(text):
    """The text with comments, texts in quotes and preprocessor lines blanked in their places."""
    def blank(match):
        return re.sub(r"[^\n]", "_" if match[0][0] in "\"'" else " ", match[0])
    return re.sub(r"//[^\n]*|/\*.*?\*/|\"(?:\\.|[^\"\\\n])*\"|(?<!\w)'(?:\\.|[^'\\\n])+'|^#[^\n]*",
                  blank, text, flags=re.DOTALL | re.MULTILINE)


def closing(text, at):
    """Where the parenthesis opened at a place is closed, and where the commas between them are."""
    depth, commas = 0, []
    for i in range(at, len(text)):
        if text[i] in "([{":
            depth += 1
        elif text[i] in ")]}":
            depth -= 1
            if depth == 0:
                return i, commas
        elif text[i] == "," and depth == 1:
            commas.append(i)
    return None, []


def edits(path, text):
    """All faults that a source may be given, as (start, end, kind, replacement)."""
    code = masked(text)
    for match in re.finditer(r"(?<=\s)(\S{1,2})(?=\s)", code):
        if match[1] in OPERATORS:
            yield match.start(), match.end(), "operator", OPERATORS[match[1]]
    for match in re.finditer(r"(?<![\w.'])(0x[0-9A-Fa-f]+|\d+|true|false)(?![\w.'])", code):
        if not re.search(r"\)[\w ]* = $", code[:match.start()]):  # a pure virtual function
            word = {"true": "false", "false": "true"}.get(match[1]) or str(int(match[1], 0) + 1)
            yield match.start(), match.end(), "constant", word
    for match in re.finditer(r"\b(?:if|while) (\()", code):
        end, _ = closing(code, match.start(1))
        inner = text[match.end(1):end]
        if end and ";" not in inner and not DECLARATION.match(inner):
            yield match.end(1), end, "condition", f"!({inner})"
    for match in re.finditer(r"\breturn ([^;{}]+);", code):
        if match[1] not in ("true", "false"):
            yield (match.start(), match.end(), "return",
                   f"{{ if (true) return {{}}; {text[match.start():match.end()]} }}")
    if path.suffix == ".cpp":
        for match in re.finditer(r"(?<=[;{})]\n)[ ]{4,}((?:throw [^;{}]+|break|continue|return|"
                                 r"\*?[\w:.\->]+(?:\[[^;{}]*?\])?(?:\(| [+|&-]?= )[^;{}]*));",
                                 code):
            statement = text[match.start(1):match.end()]  # kept, or what it uses were unused
            yield match.start(1), match.end(), "statement", f"{{ if (false) {statement} }}"
    for match in re.finditer(r"(?<![\w])(?!if|for|while|switch|catch|return)\w+(\()", code):
        end, commas = closing(code, match.start(1))
        stops = [match.start(1), *commas, end]
        parts = [text[a + 1:b] for a, b in zip(stops, stops[1:])] if end and commas else []
        if any(DECLARATION.match(part) or "\n" in part for part in parts):
            continue
        for i, (one, two) in enumerate(zip(parts, parts[1:])):
            if one.strip() != two.strip():
                yield (stops[i] + 1, stops[i + 2], "arguments",
                       f"{two.lstrip() if i == 0 else two}, {one.strip()}")


def faults_of(path):
    text = (TOP / path).read_text()
    found = []
    for start, end, kind, after in edits(path, text):
        line = text.count("\n", 0, start) + 1
        found.append(Fault(path, start, end, kind, text[start:end], after, line,
                           text.splitlines()[line - 1].strip()))
    return found


def drawn(paths, seed):
    """An endless row of faults: a file by its lines of code, a kind, then one of that kind."""
    chance = random.Random(seed)
    faults = {path: faults_of(path) for path in paths}
    paths = [path for path in paths if faults[path]]
    lines = [sum(1 for line in masked((TOP / path).read_text()).splitlines() if line.strip())
             for path in paths]
    seen, left = set(), sum(len(faults[path]) for path in paths)
    while len(seen) < left:
        path = chance.choices(paths, lines)[0]
        kind = chance.choice(sorted({fault.kind for fault in faults[path]}))
        fault = chance.choice([fault for fault in faults[path] if fault.kind == kind])
        if fault not in seen:
            seen.add(fault)
            yield fault
