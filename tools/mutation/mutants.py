"""The places of a C++ source where one small change makes a mutant.

A light lexer, no parser: it knows comments, literals, preprocessor lines and brackets, and relies on
the layout that clang-format gives (blanks around binary operators, none inside template brackets).
A change that does not compile costs a compilation and is not counted.
"""

import hashlib
import random
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*|\s+|\[\[.*?\]\])
      |(?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
      |(?P<char>[uUL]?'(?:[^'\\\n]|\\.)*')
      |(?P<number>\d(?:[\w.]|'(?=\w))*)
      |(?P<word>[A-Za-z_]\w*)
      |(?P<punct><=>|<<=|>>=|\.\.\.|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)""",
    re.VERBOSE | re.MULTILINE | re.DOTALL)

SWAPS = {
    "==": ["!="], "!=": ["=="], "<": ["<=", ">="], ">": [">=", "<="], "<=": ["<", ">"],
    ">=": [">", "<"], "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"],
    "%": ["/"], "&": ["|"], "|": ["&"], "<<": [">>"], "+=": ["-="], "|=": ["&="], "*=": ["/="],
    "/=": ["*="], "^=": ["&="]}
WORDS = {
    "true": "false", "false": "true", "SW_SHOW": "SW_HIDE", "SW_HIDE": "SW_SHOW",
    "GENERIC_READ": "GENERIC_WRITE", "GENERIC_WRITE": "GENERIC_READ", "CREATE_NEW": "CREATE_ALWAYS",
    "CREATE_ALWAYS": "OPEN_EXISTING", "OPEN_EXISTING": "CREATE_ALWAYS", "kFiles": "kEverything",
    "Info": "Warning", "Warning": "Error", "Error": "Info", "Plain": "Error", "front": "back",
    "back": "front", "stdout": "stderr", "stderr": "stdout", "starts_with": "ends_with",
    "ends_with": "starts_with"}
NOT_A_STATEMENT = {"return", "if", "for", "while", "do", "else", "switch", "case", "default", "const",
                   "constexpr", "static", "using", "namespace", "struct", "class", "enum", "template",
                   "public", "private", "explicit", "virtual", "extern", "inline", "auto", "try",
                   "catch", "operator", "friend", "static_assert", "typedef", "volatile", "goto"}
JUMPS = {"throw", "continue", "break", "delete"}


@dataclass
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclass
class Mutant:
    file: str
    kind: str
    start: int
    end: int
    after: str
    line: int = 0
    before: str = ""
    id: str = ""

    def apply(self, source):
        return source[:self.start] + self.after + source[self.end:]


def tokenize(source):
    return [Token(m.lastgroup, m.group(), m.start()) for m in TOKEN.finditer(source)
            if m.lastgroup != "skip"]


def matching(tokens):
    """The index of the other bracket, for each bracket's index."""
    pairs, stack = {}, []
    for i, token in enumerate(tokens):
        if token.kind != "punct":
            continue
        if token.text in "([{":
            stack.append(i)
        elif token.text in ")]}" and stack:
            first = stack.pop()
            pairs[first], pairs[i] = i, first
    return pairs


def enclosing(tokens):
    """The index of the bracket that each token is in, -1 outside all."""
    result, stack = [], [-1]
    for i, token in enumerate(tokens):
        if token.kind == "punct" and token.text in ")]}" and len(stack) > 1:
            stack.pop()
        result.append(stack[-1])
        if token.kind == "punct" and token.text in "([{":
            stack.append(i)
    return result


def changed_text(literal, chance):
    """A literal with one character changed; None when it has none that can be."""
    first = literal.index('"') + 1
    places = [m.start() for m in re.finditer(r"\\.|[^\\]", literal[first:-1])
              if not m.group().startswith("\\")]
    if not places:
        return None
    at = first + chance.choice(places)
    return literal[:at] + ("x" if literal[at] != "x" else "y") + literal[at + 1:]


def numbers(text):
    """One more and one less, in the notation of `text`; nothing for a floating-point number."""
    plain = text.replace("'", "")
    if not re.fullmatch(r"0[xX][0-9A-Fa-f]+|\d+", plain):
        return []
    value = int(plain, 0)
    return [str(value + 1)] + ([str(value - 1)] if value > 0 else [])


class Finder:
    """Collects the mutants of one source."""

    def __init__(self, file, source, seed):
        self.file, self.source = file, source
        self.tokens = tokenize(source)
        self.pairs = matching(self.tokens)
        self.enclosing = enclosing(self.tokens)
        self.chance = random.Random(f"{seed} {file}")
        self.found = []

    def add(self, kind, first, last, after):
        self.found.append(Mutant(self.file, kind, first.start, last.end, after))

    def all(self):
        for i in range(len(self.tokens)):
            self.at(i)
        seen = {}
        for mutant in self.found:
            mutant.line = self.source.count("\n", 0, mutant.start) + 1
            mutant.before = self.source[mutant.start:mutant.end]
            begin = self.source.rfind("\n", 0, mutant.start) + 1
            end = self.source.find("\n", mutant.start)
            # The place by its text, so that a change elsewhere in the file does not rename it.
            place = f"{self.file}|{self.source[begin:end]}|{mutant.start - begin}|{mutant.after}"
            seen[place] = seen.get(place, 0) + 1
            mutant.id = hashlib.sha1(f"{place}|{seen[place]}".encode()).hexdigest()[:12]
        return self.found

    def text(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def at(self, i):
        token = self.tokens[i]
        if token.kind == "punct":
            self.operator(i, token)
            if token.text == "{":
                self.function_body(i)
        elif token.kind == "number":
            for after in numbers(token.text):
                self.add("constant", token, token, after)
        elif token.kind == "string":
            self.literal(i, token)
        elif token.kind == "char" and "\\" not in token.text:
            self.add("constant", token, token, "'x'" if token.text != "'x'" else "'y'")
        elif token.kind == "word":
            self.word(i, token)
        if self.begins_statement(i):
            self.statement(i)

    def operator(self, i, token):
        spaced = self.source[token.start - 1] in " \n" and self.source[token.end] in " \n"
        if spaced and token.text in SWAPS and self.tokens[i - 1].text != "operator":
            texts = token.text in "+=-" and "string" in (self.tokens[i - 1].kind,
                                                         self.tokens[i + 1].kind)
            if not texts:  # joined texts cannot be subtracted
                for after in SWAPS[token.text]:
                    self.add("operator", token, token, after)
        elif token.text == "!" and self.source[token.end] not in " =":
            self.add("operator", token, token, "")
        elif token.text in ("++", "--"):
            self.add("operator", token, token, "--" if token.text == "++" else "++")

    def literal(self, i, token):
        if self.text(i - 1) == "extern":
            return
        changed = changed_text(token.text, self.chance)
        if changed:
            self.add("text", token, token, changed)
        if not token.text.endswith('""'):
            self.add("text", token, token, token.text[:token.text.index('"')] + '""')

    def word(self, i, token):
        if token.text in WORDS and self.text(i + 1) != "=" and self.text(i - 1) != "enum":
            self.add("constant", token, token, WORDS[token.text])
        elif re.fullmatch(r"[A-Z][A-Z0-9]*(_[A-Z0-9]+)+", token.text) and self.text(i + 1) != "(" \
                and self.tokens[i + 1].kind != "word" and self.text(i - 1) not in ("#", "struct"):
            none = "{}" if token.text == "INVALID_HANDLE_VALUE" else "0"
            self.add("constant", token, token, none)
        elif token.text == "if" and self.text(i + 1) == "(":
            last = self.pairs[i + 1]
            inside = {t.text for t in self.tokens[i + 2:last]}
            if not inside & {"=", ";", "const", "auto"}:
                for value in ("true", "false"):
                    self.add("condition", self.tokens[i + 1], self.tokens[last], f"({value})")
        elif token.text == "while" and self.text(i + 1) == "(":
            self.add("condition", self.tokens[i + 1], self.tokens[self.pairs[i + 1]], "(false)")

    def begins_statement(self, i):
        token, before = self.tokens[i], self.text(i - 1)
        if token.text == "return" and self.text(i + 1) == ";":
            return True
        if i == 0 or self.text(self.enclosing[i]) != "{" or (token.kind != "word" and token.text not in ("*", "++", "--", "::")):
            return False
        if token.text in NOT_A_STATEMENT or not self.inside_function(i):
            return False
        if before == ")":
            return self.text(self.pairs.get(i - 1, 0) - 1) in ("if", "for", "while")
        return before in (";", "{", "}", "else") or (before == ":" and token.text in JUMPS)

    def inside_function(self, i):
        depth = getattr(self, "_functions", None)
        if depth is None:
            depth = self._functions = [
                (start, end) for start, end in self.pairs.items()
                if start < end and self.tokens[start].text == "{" and self.is_body(start)]
        return any(start < i < end for start, end in depth)

    def is_body(self, i):
        return self.text(i - 1) in (")", "const", "override", "noexcept", "mutable")

    def statement(self, i):
        """A call, an assignment, a throw or a jump, without which the next statement follows."""
        last = i
        while self.text(last) != ";":
            if self.text(last) in ("{", "}") and self.text(last - 1) in (";", "{", "}", ")", ""):
                return
            last = self.pairs[last] + 1 if last in self.pairs and self.pairs[last] > last else last + 1
            if last >= len(self.tokens):
                return
        first = self.tokens[i]
        words = [t for t in self.tokens[i:last]]
        if first.text not in JUMPS and first.text != "return":
            if not any(t.text in ("(", "=", "+=", "|=", "^=", "++", "--") for t in words):
                return
            # "Type name..." is a declaration: two names in a row, or a template's closing bracket.
            for one, two in zip(words, words[1:]):
                if one.text == "(" or one.text == "=":
                    break
                if two.kind == "word" and (one.kind == "word" or one.text in (">", "&", "*", "]")) \
                        and one is not words[0] or (two.kind == "word" and one.kind == "word"):
                    return
        self.add("statement", first, self.tokens[last], ";")

    def function_body(self, i):
        """An early return at the beginning of a function."""
        if not self.is_body(i):
            return
        close = i - 1
        while self.text(close) != ")":
            close -= 1
        name = self.pairs.get(close, 0) - 1
        if self.tokens[name].kind != "word" or self.text(name) in ("if", "for", "while", "switch",
                                                                   "catch"):
            return
        begin = name
        while begin > 0 and self.text(begin - 1) not in (";", "{", "}", ")", ":") or \
                self.text(begin - 1) == ":" and self.text(begin - 2) == ":":
            begin -= 1
        words = [t.text for t in self.tokens[begin:name]]
        constructor = not [w for w in words if w not in ("::", self.text(name), "explicit", "~")
                           and not (len(words) > 1 and w == words[-2])]
        value = "" if "void" in words or constructor else " {}"
        if "(" in words or "operator" in words or self.pairs[i] == i + 1:
            return
        brace = self.tokens[i]
        self.add("return", brace, brace, "{ return" + value + ";")


def find(file, source, seed):
    return Finder(file, source, seed).all()
