# SPDX-FileCopyrightText: 2026 The Ostrafel developers
# SPDX-License-Identifier: Apache-2.0

"""Makes mutants of a C++ source: copies in which one operator, constant or statement is changed.

Works on the tokens of the source as clang-format writes it, without comments and preprocessor
lines. It need not understand C++: what does not compile afterwards is no mutant.
"""

import bisect
import re
from collections import namedtuple

Token = namedtuple("Token", "kind text start end")

# One change. `text` replaces source[start:end].
Mutant = namedtuple("Mutant", "file function line kind start end text before after")

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<raw>R"(?P<mark>[^\s()\\]*)\(.*?\)(?P=mark)")
      | (?P<directive>^\#[^\n]*(?:\\\n[^\n]*)*)
      | (?P<string>(?:u8|[uUL])?"(?:[^"\\\n]|\\.)*")
      | (?P<char>'(?:[^'\\\n]|\\.)*')
      | (?P<number>\d(?:[\w.']|[eE][+-])*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<operator>\.\.\.|<<=|>>=|->|\+\+|--|::|&&|\|\||[=!<>]=|[-+*/%&|^]=|[^\sA-Za-z_0-9])""",
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)

SWAPPED = {
    "==": ["!="], "!=": ["=="],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="],
    "++": ["--"], "--": ["++"],
    "true": ["false"], "false": ["true"],
}
TEXTS = {"string", "char"}
# These stand for something else (templates, pointers, references, signs) without spaces around.
ONLY_BETWEEN_SPACES = {"<", ">", "&&", "+", "-", "*", "/", "%"}

# Names that mean values of one kind: each is replaced by the next one. Those of the libraries; the
# program's own enumerations are found in its sources.
LIBRARY_CONSTANTS = [
    ["REDIS_REPLY_STRING", "REDIS_REPLY_ARRAY", "REDIS_REPLY_INTEGER", "REDIS_REPLY_STATUS"],
    ["json_is_object", "json_is_array", "json_is_string"],
]
ENUMERATION = re.compile(r"\benum\b[^;{]*\{([^}]*)\}")

# What only checks the program, or only asks for memory early, can be changed without any effect.
CHECKS = {"static_assert", "assert"}
HINTS = {"reserve"}

OPENING, CLOSING = {"(": ")", "[": "]", "{": "}"}, {")", "]", "}"}
# What ends an operand of && and ||, besides these themselves and an unmatched bracket.
OPERAND_ENDS = {"&&", "||", ";", ",", "?", ":", "=", "return", "case"}
BEFORE_A_BLOCK = {")", "]", "{", "}", ";", "else", "do", "try", "const", "noexcept", "override"}
NO_CALL = {
    "return", "if", "for", "while", "do", "else", "switch", "case", "default", "break", "continue",
    "try", "catch", "using", "const", "constexpr", "static", "auto", "template", "extern", "enum",
    "struct", "namespace", "public", "private", "inline", "typedef", "throw",
}


def next_constants(texts):
    """Name -> the next one of its kind, in the libraries and in the enumerations of these sources."""
    groups = list(LIBRARY_CONSTANTS)
    for text in texts:
        bare = re.sub(r"//[^\n]*|/\*.*?\*/", "", text, flags=re.DOTALL)
        for match in ENUMERATION.finditer(bare):
            groups.append(re.findall(r"(?:^|,)\s*([A-Za-z_]\w*)", match.group(1)))
    return {name: group[(i + 1) % len(group)]
            for group in groups if len(group) > 1 for i, name in enumerate(group)}


class Source:
    def __init__(self, name, text, constants):
        self.name, self.text, self.constants = name, text, constants
        self.tokens = [
            Token("raw" if match["raw"] else match.lastgroup, match.group(), *match.span())
            for match in TOKEN.finditer(text)
            if match.lastgroup not in ("comment", "directive")
        ]
        self.partner = self._match_brackets()
        self.line_starts = [0] + [match.end() for match in re.finditer("\n", text)]

    def _match_brackets(self):
        partner, stack = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind != "operator":
                continue
            if token.text in OPENING:
                stack.append(i)
            elif token.text in CLOSING and stack:
                partner[i] = stack.pop()
                partner[partner[i]] = i
        return partner

    def line_of(self, offset):
        return bisect.bisect_right(self.line_starts, offset)

    def function_at(self, offset):
        """The name of the function around offset, or what is nearest to it before; '' for none."""
        name = ""
        for match in re.finditer(r"^(?![\s}#/])[^;\n]*?([A-Za-z_]\w*)(?: =|\(|\[)", self.text, re.M):
            if match.start() > offset:
                break
            name = match.group(1)
        return name

    def text_at(self, i):
        return self.tokens[i].text if 0 <= i < len(self.tokens) else ""

    def kind_at(self, i):
        return self.tokens[i].kind if 0 <= i < len(self.tokens) else ""

    def mutant(self, kind, start, end, text):
        """The mutant that has text instead of what lies from start to end."""
        first = self.text.rfind("\n", 0, start) + 1
        last = self.text.find("\n", end)
        last = len(self.text) if last < 0 else last
        before = " ".join(self.text[first:last].split())
        after = " ".join((self.text[first:start] + text + self.text[end:last]).split())
        return Mutant(self.name, self.function_at(start), self.line_of(start), kind, start, end,
                      text, before, after)

    def replacing(self, kind, i, text):
        return self.mutant(kind, self.tokens[i].start, self.tokens[i].end, text)

    def apply(self, mutant):
        return self.text[: mutant.start] + mutant.text + self.text[mutant.end:]

    # --- Parts of expressions and statements ------------------------------------------------------

    def operand_before(self, i):
        """The first token of what stands left of the logical operator i."""
        j = i - 1
        while j >= 0:
            text = self.text_at(j)
            if text in CLOSING and self.tokens[j].kind == "operator":
                j = self.partner[j]
            elif text in OPENING or text in OPERAND_ENDS:
                break
            j -= 1
        return j + 1

    def operand_after(self, i):
        """The last token of what stands right of the logical operator i."""
        j = i + 1
        while j < len(self.tokens):
            text = self.text_at(j)
            if text in OPENING:
                j = self.partner[j]
            elif text in CLOSING or text in OPERAND_ENDS:
                break
            j += 1
        return j - 1

    def statement_end(self, i):
        """The token that ends the statement that begins at i: its ';' or its '}'."""
        while i < len(self.tokens):
            text = self.text_at(i)
            if text == ";":
                return i
            if text == "{":
                return self.partner[i]
            i = self.partner[i] + 1 if text in OPENING else i + 1
        return len(self.tokens) - 1

    def statement_starts(self):
        """The first tokens of all statements in function bodies."""
        for i in range(1, len(self.tokens)):
            previous = self.text_at(i - 1)
            if self.text_at(i) in ("{", "}", ";") or not self._is_in_block(i):
                continue
            if previous in (";", "{", "}", "else"):
                yield i
            elif previous == ")" and self.text_at(self.partner[i - 1] - 1) in ("if", "for", "while"):
                yield i

    def _is_in_block(self, i):
        j = i - 1
        while j >= 0:
            text = self.text_at(j)
            if text in CLOSING and self.tokens[j].kind == "operator":
                j = self.partner[j]
            elif text in OPENING:
                # A block, not the braces of an initializer.
                return text == "{" and self.text_at(j - 1) in BEFORE_A_BLOCK
            j -= 1
        return False


    def unchanged(self):
        """The ranges of tokens that stay as they are."""
        for i, token in enumerate(self.tokens):
            if token.kind != "name" or self.text_at(i + 1) != "(":
                continue
            if token.text in CHECKS or token.text in HINTS and self.text_at(i - 1) in (".", "->"):
                first = i
                while first > 0 and self.text_at(first - 1) not in (";", "{", "}", ")"):
                    first -= 1
                last = self.partner[i + 1] + (self.text_at(self.partner[i + 1] + 1) == ";")
                yield self.tokens[first].start, self.tokens[last].end


def _between_spaces(source, token):
    return source.text[token.start - 1].isspace() and source.text[token.end].isspace()


def _operators(source):
    for i, token in enumerate(source.tokens):
        if token.kind not in ("operator", "name"):
            continue
        for text in SWAPPED.get(token.text, []):
            if token.text in ONLY_BETWEEN_SPACES and not _between_spaces(source, token):
                continue
            if token.text in ("+", "+=") and {source.kind_at(i - 1), source.kind_at(i + 1)} & TEXTS:
                continue  # strings are not subtracted
            yield source.replacing("operator", i, text)
        if token.text == "!":
            yield source.replacing("negation", i, "")


def _operands(source):
    for i, token in enumerate(source.tokens):
        if token.text in ("&&", "||") and _between_spaces(source, token):
            left, right = source.operand_before(i), source.operand_after(i)
            yield source.mutant("operand", source.tokens[left].start, source.tokens[i + 1].start, "")
            yield source.mutant("operand", source.tokens[i - 1].end, source.tokens[right].end, "")
        if token.text == "+" and _between_spaces(source, token):
            right = source.operand_after(i)
            following = next((j for j in range(i + 1, right + 1) if source.text_at(j) == "+"), None)
            if following is not None:
                right = following - 1
            yield source.mutant("operand", source.tokens[i - 1].end, source.tokens[right].end, "")
        if token.text == "?":
            left = source.operand_before(i)
            start, end = source.tokens[left].start, source.tokens[i - 1].end
            yield source.mutant("negation", start, end, f"!({source.text[start:end]})")


def _constants(source):
    for i, token in enumerate(source.tokens):
        if token.kind == "number":
            match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)", token.text)
            if not match:
                continue
            value = int(match.group(1), 16 if token.text[:2].lower() == "0x" else 10)
            suffix = match.group(2)
            values = [value + 1, value - 1] if value > 0 else [1]
            if source.text_at(i - 1) == "return":
                values = [0 if value else 1]
            for changed in values:
                yield source.replacing("integer", i, f"{changed}{suffix}")
        elif token.kind == "name" and token.text in source.constants:
            yield source.replacing("constant", i, source.constants[token.text])
        elif token.kind == "char":
            content = token.text[1:-1]
            changed = chr(ord(content) + 1) if len(content) == 1 and content not in "&[" else "x"
            yield source.replacing("text", i, f"'{changed}'")
        elif token.kind == "string":
            yield from _texts(source, i)
        elif token.kind == "raw":
            yield source.replacing("text", i, '""')


def _is_message(source, i):
    """A string that ends a line, with the literals before it that are parts of it."""
    while i + 1 < len(source.tokens) and source.tokens[i + 1].kind == "string":
        i += 1
    return source.text_at(i).endswith('\\n"')


def _texts(source, i):
    content = source.text_at(i)[1:-1]
    if _is_message(source, i):  # each once
        if content and (i == 0 or source.tokens[i - 1].kind != "string"):
            yield source.replacing("text", i, '""')
        return
    if not content:
        yield source.replacing("text", i, '"x"')
        return
    # A letter that is part of neither an escape nor a conversion.
    found = re.search(r"(?<![\\%])[A-Za-z&]", content)
    position = found.start() if found else None
    if position is not None:
        letter = "b" if content[position] == "a" else "a"
        changed = content[:position] + letter + content[position + 1:]
        yield source.replacing("text", i, f'"{changed}"')
    digit = re.search(r"\d", content)
    if position is None and digit is None:
        yield source.replacing("text", i, '""')
    if digit:
        changed = content[:digit.start()] + str((int(digit.group()) + 1) % 10) + content[digit.end():]
        yield source.replacing("text", i, f'"{changed}"')
    if content[-1] in " *":
        yield source.replacing("text", i, f'"{content[:-1]}"')


def _conditions(source):
    for i, token in enumerate(source.tokens):
        if token.text not in ("if", "while") or source.text_at(i + 1) != "(":
            continue
        close = source.partner[i + 1]
        inside = [j for j in range(i + 2, close)]
        semicolons = [j for j in inside if source.text_at(j) == ";"]
        first = semicolons[-1] + 1 if semicolons else i + 2
        start, end = source.tokens[first].start, source.tokens[close - 1].end
        condition = source.text[start:end]
        texts = {source.text_at(j) for j in range(first, close)}
        # With a single comparison or a single "!" the mutated operator is the same.
        if source.text_at(first) != "!" and not texts & {"==", "!="} or texts & {"&&", "||"}:
            yield source.mutant("negation", start, end, f"!({condition})")
        body = close + 1 + (source.text_at(close + 1) == "{")
        if token.text == "if" and source.text_at(body) in ("return", "break", "continue"):
            if "(" in texts:  # the calls in the condition stay
                yield source.mutant("condition", start, end, f"({condition}) && false")
            else:
                last = source.statement_end(close + 1)
                yield source.mutant("statement", token.start, source.tokens[last].end, ";")


def _statements(source):
    for i in source.statement_starts():
        text, following = source.text_at(i), source.text_at(i + 1)
        end = source.statement_end(i)
        if text in ("break", "continue"):
            yield source.mutant("statement", source.tokens[i].start, source.tokens[end].end, ";")
            other = "continue" if text == "break" else "break"
            yield source.replacing("statement", i, other)
            continue
        if text in NO_CALL or source.text_at(end) != ";":
            continue
        if following == ":" or (
            source.tokens[i].kind == "name" and i + 1 < end and source.tokens[i + 1].kind == "name"
        ):
            continue  # a label or a declaration
        yield source.mutant("statement", source.tokens[i].start, source.tokens[end].end, ";")


def mutants_of(name, text, constants):
    """All mutants of a source in the order of their places, each once. constants is what
    next_constants has found."""
    source = Source(name, text, constants)
    unchanged = list(source.unchanged())
    found = {}
    for make in (_operators, _operands, _constants, _conditions, _statements):
        for mutant in make(source):
            if not any(start <= mutant.start and mutant.end <= end for start, end in unchanged):
                found.setdefault(source.apply(mutant), mutant)
    found.pop(text, None)
    mutated = sorted(found.items(), key=lambda item: (item[1].start, item[1].end, item[1].text))
    return [(mutant, changed) for changed, mutant in mutated]
