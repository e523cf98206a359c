"""The mutants of one source: every comparison flipped, every write dropped, neighbouring writes swapped, every
index shifted by one."""
import hashlib
import re
from dataclasses import dataclass

from cpp_text import HEADS, declared_names, read_source

FLIPS = {"==": ("!=",), "!=": ("==",), "<": (">=", "<="), ">=": ("<", ">"), ">": ("<=", ">="), "<=": (">", "<")}
# Conditions that only ask whether the study still exists; calls before and after them are neighbours all the same.
LIVENESS = {"self", "isGone", "isTaken"}
WRITES = {"=", "+=", "-=", "*=", "/=", "|=", "&=", "++", "--", "("}
INDEX_TYPES = {"int", "size_t"}


@dataclass(frozen=True)
class Mutant:
    file: str
    operation: str
    start: int
    end: int
    replacement: str
    line: int
    function: str
    # The altered lines as they were and as they are, white space made single.
    before: str
    after: str

    def apply(self, text):
        return text[: self.start] + self.replacement + text[self.end :]

    @property
    def key(self):
        parts = f"{self.file}\n{self.operation}\n{self.start}\n{self.end}\n{self.replacement}\n{self.before}"
        return hashlib.sha256(parts.encode()).hexdigest()[:16]


class Finder:
    def __init__(self, file, text):
        self.file, self.text = file, text
        self.source = read_source(text)
        self.tokens = self.source.tokens
        self.found = []

    def all(self):
        for position in sorted(self.source.functions):
            self.comparisons(position)
            self.indices(position)
        for block in self.source.blocks:
            for statement in block:
                self.writes(statement)
            self.swaps(block)
        return sorted(self.found, key=lambda mutant: (mutant.start, mutant.end, mutant.replacement))

    def add(self, operation, start, end, replacement, function):
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        last = len(self.text) if last < 0 else last
        before = self.text[first:last]
        after = self.text[first:start] + replacement + self.text[end:last]
        line = self.text.count("\n", 0, start) + 1
        self.found.append(
            Mutant(self.file, operation, start, end, replacement, line, function, one_line(before), one_line(after))
        )

    def at(self, position):
        return self.tokens[position].text if 0 <= position < len(self.tokens) else ""

    def comparisons(self, position):
        token, function = self.tokens[position], self.source.functions[position]
        spaced = self.text[token.start - 1 : token.start] == " " and self.text[token.end : token.end + 1] in " \n"
        if token.kind == "sign" and token.text in FLIPS and spaced and self.at(position - 1) != "operator":
            for flipped in FLIPS[token.text]:
                self.add("flip comparison", token.start, token.end, flipped, function)
        elif token.text == "!" and self.at(position - 1) != "operator":
            self.add("flip comparison", token.start, token.end, "", function)
        elif token.text in ("if", "while") and self.at(position + 1) == "(":
            self.truth_test(position + 1, function)

    def truth_test(self, opening, function):
        """A condition without any operator is a comparison with null or false."""
        position, depth = opening, 0
        while True:
            text = self.at(position)
            depth += (text == "(") - (text == ")")
            if depth == 0:
                break
            if text in ("!", "&&", "||", "=") or (text in FLIPS and self.at(position + 1) != "("):
                return
            position += 1
        start, end = self.tokens[opening].end, self.tokens[position].start
        self.add("flip comparison", start, end, f"!({self.text[start:end]})", function)

    def indices(self, position):
        token, function = self.tokens[position], self.source.functions[position]
        before, behind = self.at(position - 1), self.at(position + 1)
        if token.kind == "number" and re.fullmatch(r"\d+[uUlLzZ]*", token.text):
            is_in_type = behind == ">" and self.text[token.end] == ">"
            if is_in_type or (before == "," and self.is_field_width(position)):
                return
            value = int(re.match(r"\d+", token.text)[0])
            suffix = token.text[len(str(value)) :]
            if before == "-" and self.at(position - 2) in ("(", ",", "=", "return", ":", "?"):
                self.add("shift index", self.tokens[position - 1].start, token.end, str(1 - value) if value == 1 else f"-{value - 1}", function)
            else:
                self.add("shift index", token.start, token.end, f"{value + 1}{suffix}", function)
        elif token.kind == "word" and before in ("(", ",", "[") and behind in (")", ",", "]") and self.is_index(position):
            if before == "[" and self.is_capture(position):
                return
            for shift in ("+ 1", "- 1"):
                self.add("shift index", token.start, token.end, f"{token.text} {shift}", function)

    def is_field_width(self, position):
        """The second argument of `arg` says how wide a text is shown: no index."""
        depth = 0
        while position > 0:
            position -= 1
            depth += (self.at(position) == ")") - (self.at(position) == "(")
            if depth < 0:
                return self.at(position - 1) == "arg"
        return False

    def is_capture(self, position):
        return self.at(position - 2) in ("(", ",", "=", "return")

    def is_index(self, position):
        """Whether the name's last declaration before this place is that of a number."""
        name = self.at(position)
        for earlier in range(position - 1, 0, -1):
            if self.at(earlier) != name:
                continue
            before = self.tokens[earlier - 1]
            if before.text in INDEX_TYPES:
                return True
            is_pointer = before.text in ("*", "&") and self.text[before.start - 1] == " " and before.end == self.tokens[earlier].start
            if is_pointer and self.tokens[earlier - 2].kind == "word":
                return False
        return False

    def writes(self, statement):
        texts = [token.text for token in self.tokens[statement.first : statement.last + 1]]
        start, end = self.tokens[statement.first].start, self.tokens[statement.last].start
        if statement.kind == "expression" and WRITES.intersection(texts):
            self.add("drop write", start, end, "", statement.function)
        elif statement.kind == "declaration" and "=" not in texts and self.is_guard(statement):
            self.add("drop write", start, end, "", statement.function)

    def is_guard(self, statement):
        """An object that nobody names again works by its life alone."""
        names = declared_names(self.source.slice(statement))
        position = statement.last + 1
        while self.source.functions.get(position) == statement.function:
            if self.at(position) in names:
                return False
            position += 1
        return "(" in self.source.slice(statement)

    def swaps(self, block):
        previous = None
        for statement in block:
            if statement.kind == "head" and self.only_asks_for_life(statement):
                continue
            if statement.kind in ("expression", "declaration"):
                if previous is not None:
                    self.swap(previous, statement)
                previous = statement
            else:
                previous = None

    def only_asks_for_life(self, statement):
        words = {token.text for token in self.tokens[statement.first : statement.last + 1] if token.kind == "word"}
        return self.at(statement.first) in HEADS and statement.leaves and bool(LIVENESS.intersection(words))

    def swap(self, first, second):
        if "expression" not in (first.kind, second.kind):
            return
        texts = self.source.slice(first), self.source.slice(second)
        words = [set(re.findall(r"\w+", text)) for text in texts]
        names = [declared_names(text) if statement.kind == "declaration" else set() for text, statement in zip(texts, (first, second))]
        if names[0] & words[1] or names[1] & words[0]:
            return
        start, end = self.tokens[first.first].start, self.tokens[second.last].end
        between = self.text[self.tokens[first.last].end : self.tokens[second.first].start]
        self.add("swap neighbours", start, end, texts[1] + between + texts[0], first.function)


def one_line(text):
    return " ".join(text.split())


def find_mutants(file, text):
    return Finder(file, text).all()


def code_lines(text):
    """How many lines hold a part of a function body."""
    source = read_source(text)
    return len({text.count("\n", 0, source.tokens[position].start) for position in source.functions})
