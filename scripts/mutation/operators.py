"""Makes the mutants of a C++ source: small changes to its code, each of which ought to be noticed.

Works on tokens and leans on the project's format: binary operators are between blanks, template
brackets, references and pointers do not.
"""

import re
from dataclasses import dataclass

TOKEN = re.compile(
    r"""(?P<skipped>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*
                   |"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+'|\[\[.*?\]\])
      |(?P<number>(?:0[xX][0-9A-Fa-f']+|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?)[uUlLfF]*)
      |(?P<name>[A-Za-z_]\w*)
      |(?P<operator><<=|>>=|<=>|->\*|\.\*|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||\+=|-=|\*=|/=
                   |[-+*/%&|^!~<>=?:;,.(){}\[\]])""",
    re.VERBOSE | re.DOTALL | re.MULTILINE)

BINARY = {
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="],
}
UNARY = {"!": [""], "~": [""], "++": ["--"], "--": ["++"]}
NAMES = {"true": ["false"], "false": ["true"]}
STEPS = {
    "next": ["skip", "descend", "reject"], "skip": ["next", "descend", "endLevel"],
    "descend": ["skip", "next", "endLevel"], "endLevel": ["next", "reject"],
    "reject": ["next", "endLevel"],
}
# What begins with one of these is no statement to be removed, or has a rule of its own.
NO_EXPRESSION = {
    "auto", "break", "case", "const", "constexpr", "continue", "default", "do", "else", "for", "if",
    "namespace", "private", "protected", "public", "return", "static", "static_assert", "struct",
    "switch", "template", "throw", "using", "while",
}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass(frozen=True)
class Mutant:
    """One change of one file. `key` names it also when lines above it come and go."""
    file: str
    line: int
    start: int
    end: int
    replacement: str
    before: str
    after: str
    occurrence: int  # among equal changes of equal lines

    @property
    def key(self):
        number = f" [{self.occurrence}]" if self.occurrence > 1 else ""
        return f"{self.file}{number}\t{self.before}\t{self.after}"

    def applied_to(self, source):
        return source[:self.start] + self.replacement + source[self.end:]


def tokens_of(source):
    found = [Token(m.lastgroup, m.group(), m.start(), m.end()) for m in TOKEN.finditer(source)]
    return without_static_asserts([t for t in found if t.kind != "skipped"])


def without_static_asserts(tokens):
    kept, skipping = [], False
    for token in tokens:
        skipping = skipping or token.text == "static_assert"
        if not skipping:
            kept.append(token)
        skipping = skipping and token.text != ";"
    return kept


def neighbours_of_number(text):
    """n + 1, n - 1 and 0, in the notation of n; nothing for a floating-point number."""
    digits = text.rstrip("uUlL")
    suffix = text[len(digits):]
    hexadecimal = digits[:2] in ("0x", "0X")
    if not hexadecimal and re.search(r"[.eEfF]", digits):
        return []
    value = int(digits.replace("'", ""), 0 if hexadecimal else 10)
    values = dict.fromkeys(v for v in (value + 1, value - 1, 0) if v >= 0 and v != value)
    return [(f"0x{v:02X}" if hexadecimal else str(v)) + suffix for v in values]


def token_changes(source, tokens):
    """Every (start, end, replacement) that exchanges one token."""
    for i, token in enumerate(tokens):
        previous = tokens[i - 1].text if i > 0 else ""
        before, after = source[token.start - 1:token.start], source[token.end:token.end + 1]
        replacements = []
        if token.kind == "number":
            replacements = neighbours_of_number(token.text)
        elif token.kind == "name":
            is_step = previous == "::" and i > 1 and tokens[i - 2].text == "WalkStep"
            is_label = i > 2 and tokens[i - 3].text == "case"
            replacements = STEPS.get(token.text, []) if is_step and not is_label else \
                NAMES.get(token.text, [])
        elif token.text in UNARY:
            replacements = UNARY[token.text]
        elif before.isspace() and after.isspace():
            replacements = BINARY.get(token.text, [])
        for replacement in replacements:
            yield token.start, token.end, replacement


def opens_block(tokens, brace):
    """Whether the brace opens a function's body or a statement within one; and whether an if's."""
    i = brace - 1
    in_head = ("::", "->", "<", ">", "&", "*")  # of the type that a function returns
    while i > 0 and (tokens[i].kind == "name" or tokens[i].text in in_head) \
            and tokens[i].text not in ("else", "do", "return"):
        i -= 1
    if tokens[i].text in ("else", "do"):
        return True, True
    if tokens[i].text == ":" and i == brace - 1:
        return True, False  # after a case label
    if tokens[i].text != ")":
        return False, False
    depth = 0
    while i >= 0:
        depth += {")": 1, "(": -1}.get(tokens[i].text, 0)
        if depth == 0:
            break
        i -= 1
    return True, tokens[i - 1].text == "if"


def statements_of(tokens):
    """(first token, last token, whether in an if) of each simple statement in a function's body."""
    blocks, begin, nesting = [], None, 0
    for i, token in enumerate(tokens):
        if token.text in "()":
            nesting += 1 if token.text == "(" else -1
        elif token.text == "{":
            is_block, is_conditional = opens_block(tokens, i)
            blocks.append((is_block, is_conditional, nesting))
            begin = i + 1 if is_block else begin
        elif token.text == "}":
            begin = i + 1 if blocks.pop()[0] else begin
        elif token.text == ":" and begin is not None and tokens[begin].text in ("case", "default"):
            begin = i + 1
        elif token.text == ";":
            # There are no statements in the head of a for; in a lambda among arguments there are.
            is_statement = blocks and blocks[-1][0] and blocks[-1][2] == nesting
            if is_statement and begin is not None and begin < i and tokens[begin].text != ")":
                yield begin, i, blocks[-1][1]
            begin = i + 1


def is_declaration(tokens):
    """Whether a type and a name come first: two names, or a name after >, & or *."""
    for left, right in zip(tokens, tokens[1:]):
        if left.text in ("=", "(", "{", "[", "+=", "-="):
            return False
        if right.kind == "name" and (left.kind == "name" or left.text in (">", "&")):
            return True
    return False


def removals(tokens):
    """Every (start, end, replacement) that takes a statement away."""
    for first, last, is_conditional in statements_of(tokens):
        head = tokens[first].text
        span = (tokens[first].start, tokens[last].end)
        if head in ("break", "continue") or (head == "return" and is_conditional):
            yield (*span, ";")
        if head == "continue":
            yield (*span, "break;")
        if head not in NO_EXPRESSION and not is_declaration(tokens[first:last]):
            yield (*span, ";")


def mutants_of(file, source):
    """All mutants of one file, from its begin to its end."""
    tokens = tokens_of(source)
    changes = sorted({*token_changes(source, tokens), *removals(tokens)})
    seen, mutants = {}, []
    for start, end, replacement in changes:
        line_start = source.rfind("\n", 0, start) + 1
        line_end = source.find("\n", end)
        one_line = lambda text: " ".join(re.sub(r"//[^\n]*", "", text).split())
        before = one_line(source[line_start:line_end])
        after = one_line(source[line_start:start] + replacement + source[end:line_end])
        occurrence = seen[before, after] = seen.get((before, after), 0) + 1
        mutants.append(Mutant(file, source.count("\n", 0, start) + 1, start, end, replacement,
                              before, after, occurrence))
    return mutants
