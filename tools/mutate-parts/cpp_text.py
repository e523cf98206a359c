"""Enough of C++ to tell tokens, function bodies and statements apart in a source formatted by clang-format."""
import re
from dataclasses import dataclass, field

TOKEN = re.compile(
    r"""(?P<skip>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*)
      |(?P<string>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*')
      |(?P<word>[A-Za-z_]\w*)
      |(?P<number>\d(?:[\w.']|[eE][+-])*)
      |(?P<sign>::|->|\+\+|--|<<=|>>=|<<|>=|<=|==|!=|&&|\|\||[-+*/%&|^]=|\.\.\.|.)""",
    re.VERBOSE | re.DOTALL | re.MULTILINE,
)
JUMPS = {"return", "throw", "break", "continue", "using", "case", "default", "goto", "typedef", "static_assert"}
HEADS = {"if", "for", "while", "switch", "catch"}
CLOSING = {"(": ")", "[": "]", "{": "}"}
DECLARATION = re.compile(
    r"(?:(?:const|static|constexpr|inline)\s)*[A-Za-z_][\w:]*(?:<.*?>)?(?:\s*[*&]+\s*|\s+)(?:const\s+)?"
    r"(?P<name>[A-Za-z_]\w*)\s*(?:=|\(|\{|;|\[)|(?:const\s)?auto\s*&?\s*\[(?P<names>[^\]]*)\]",
    re.DOTALL,
)


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass
class Statement:
    """One statement that ends with a semicolon, or a head with its condition (`kind` is then "head")."""

    kind: str
    first: int
    last: int
    function: str
    # Whether it is a head after which the flow only leaves the function.
    leaves: bool = False


@dataclass
class Source:
    text: str
    tokens: list = field(default_factory=list)
    # Every block is a list of statements; blocks of lambdas and of control flow are blocks of their own.
    blocks: list = field(default_factory=list)
    # Index of a token in a function body -> name of the function.
    functions: dict = field(default_factory=dict)

    def slice(self, statement):
        return self.text[self.tokens[statement.first].start : self.tokens[statement.last].end]


def tokens_of(text):
    result = []
    for match in TOKEN.finditer(text):
        if match.lastgroup != "skip" and match.group("skip") is None:
            kind = next(kind for kind in ("string", "word", "number", "sign") if match.group(kind) is not None)
            result.append(Token(kind, match.group(0), match.start(), match.end()))
    return result


class Reader:
    def __init__(self, text):
        self.source = Source(text, tokens_of(text))
        self.tokens = self.source.tokens
        self.function = ""

    def read(self):
        begin = position = 0
        while position < len(self.tokens):
            text = self.tokens[position].text
            if text == "{":
                head = [token.text for token in self.tokens[begin:position]]
                if self.is_code_block(position, head):
                    self.function = function_name(head)
                    opening, position = position, self.block(position + 1)
                    self.source.functions.update(dict.fromkeys(range(opening, position), self.function))
                    begin = position
                    continue
                if not {"namespace", "class", "struct", "enum", "union"}.intersection(head):
                    # Values in braces, of a member or a constant.
                    position = self.closing(position) + 1
                    continue
                begin = position + 1
            elif text in (";", "}") or (text == ":" and self.tokens[position - 1].text in ("public", "private", "protected")):
                begin = position + 1
            position += 1
        return self.source

    def is_code_block(self, position, head):
        if {"namespace", "enum", "union"}.intersection(head[:3]) or (head and head[0] in ("class", "struct")):
            return False
        before = self.tokens[position - 1].text if position else ""
        if before in (")", "]", "const", "noexcept", "override", "else", "do", "try", ";", "{", "}"):
            return True
        if before == ">" or before in ("*", "&") or self.tokens[position - 1].kind == "word":
            # Values in braces, unless it is the body of what names its result behind an arrow.
            return "->" in head and ")" in head and head.index("->") > head.index(")") and "=" not in head[head.index("->") :]
        return False

    def closing(self, position):
        opening, depth = self.tokens[position].text, 0
        closing = CLOSING[opening]
        while position < len(self.tokens):
            if self.tokens[position].text == opening:
                depth += 1
            elif self.tokens[position].text == closing:
                depth -= 1
                if depth == 0:
                    return position
            position += 1
        raise ValueError(f"unbalanced {opening}")

    def block(self, position):
        """Reads from behind the opening brace; returns the position behind the closing one."""
        statements = []
        self.source.blocks.append(statements)
        while self.tokens[position].text != "}":
            text = self.tokens[position].text
            if text in HEADS:
                position = self.head(position, statements)
            elif text in ("else", "do", "try"):
                statements.append(Statement("head", position, position, self.function))
                position += 1
            elif text == "{":
                position = self.block(position + 1)
            else:
                position = self.simple(position, statements)
        return position + 1

    def head(self, position, statements):
        opening = position + 1
        last = self.closing(opening)
        body = [token.text for token in self.tokens[last + 1 : last + 3]]
        leaves = body[:1] == ["{"] and body[1:] == ["return"]
        statements.append(Statement("head", position, last, self.function, leaves))
        return last + 1

    def simple(self, position, statements):
        first, depth = position, 0
        while self.tokens[position].text != ";" or depth > 0:
            text = self.tokens[position].text
            if text == "{" and self.is_code_block(position, [token.text for token in self.tokens[first:position]]):
                position = self.block(position + 1)
                continue
            depth += (text in "([{") - (text in ")]}")
            position += 1
        statements.append(Statement(self.kind_of(first, position), first, position, self.function))
        return position + 1

    def kind_of(self, first, last):
        if self.tokens[first].text in JUMPS:
            return "jump"
        if self.tokens[first].text in ("Q_EMIT", "delete"):
            return "expression"
        text = self.source.text[self.tokens[first].start : self.tokens[last].end]
        return "declaration" if DECLARATION.match(text) else "expression"


def function_name(head):
    """The name before the first bracket that does not belong to a template or an attribute."""
    if "(" not in head:
        return head[-1] if head else ""
    end = head.index("(")
    if end > 1 and head[end - 1] in ("==", "!=", "bool", "=") or "operator" in head[:end]:
        return "operator" + "".join(head[head.index("operator") + 1 : end])
    return head[end - 1]


def declared_names(text):
    match = DECLARATION.match(text)
    if match is None:
        return set()
    return {match["name"]} if match["name"] else set(re.findall(r"\w+", match["names"]))


def read_source(text):
    return Reader(text).read()
