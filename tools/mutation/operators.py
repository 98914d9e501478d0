"""Mutation operators: the small faults that are put into C++ sources."""

from collections import Counter
from dataclasses import dataclass, replace

from tokens import Source

RELATIONAL = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",),
}  # fmt: skip
LOGICAL = {"&&": "||", "||": "&&"}
ARITHMETIC = {
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "*", "&": "|", "|": "&", "^": "&",
    "<<": ">>", ">>": "<<",
}  # fmt: skip
ASSIGNING = {
    "+=": "-=", "-=": "+=", "*=": "/=", "/=": "*=", "&=": "|=", "|=": "&=", "^=": "|=",
    "<<=": ">>=", ">>=": "<<=", "++": "--", "--": "++",
}  # fmt: skip
# The order of the first two arguments does not matter.
SYMMETRIC = {"min", "max", "swap", "binary_gcd", "real_gcd"}


@dataclass(frozen=True)
class Mutant:
    """A replacement of the characters [start, end) of a file."""

    file: str
    line: int
    operator: str
    start: int
    end: int
    replacement: str
    before: str
    after: str
    procedure: str = ""
    change: str = ""
    occurrence: int = 1

    def apply(self, text):
        return text[: self.start] + self.replacement + text[self.end :]

    def key(self):
        """Identifies the mutant: file, lines before and after, and the number among equal changes."""
        return self.file, squeeze(self.before), squeeze(self.after), self.occurrence


def change_of(operator, before, after):
    """Describes the change without names of the source."""
    fixed = {"condition": "negated", "statement": "deleted", "arguments": "swapped"}
    if operator in fixed:
        return fixed[operator]
    return f"{before} dropped" if operator == "negation" else f"{before} into {after}"


def squeeze(text):
    return " ".join(text.split())


def mutants_of(file, text):
    """All mutants of a source, in the order of the text."""
    source = Source(text)
    found = []

    def add(operator, start, end, replacement):
        if text[start:end] == replacement:
            return
        before = source.lines_from(start, end)
        offset = start - text.rfind("\n", 0, start) - 1
        after = before[:offset] + replacement + before[offset + end - start :]
        found.append(
            Mutant(
                file, source.line_of(start), operator, start, end, replacement, before, after,
                source.procedure_at(start), change_of(operator, text[start:end], replacement),
            )
        )  # fmt: skip

    for index, token in enumerate(source.tokens):
        if token.masked:
            continue
        if token.kind == "number":
            _change_constant(token, add)
        elif token.text in ("true", "false"):
            add("constant", token.start, token.end, "false" if token.text == "true" else "true")
        elif token.kind == "mark":
            _replace_operator(source, index, add)
        if not token.in_body:
            continue
        if token.text in ("if", "while"):
            _negate_condition(source, index, add)
        if token.text in ("(", "{"):
            _swap_arguments(source, index, add)
        if _begins_statement(source, index):
            _delete_statement(source, index, add)
    found.sort(key=lambda m: (m.start, m.end, m.replacement))
    return _numbered(found)


def _numbered(mutants):
    seen = Counter()
    numbered = []
    for each in mutants:
        seen[each.key()] += 1
        numbered.append(replace(each, occurrence=seen[each.key()]))
    return numbered


def _change_constant(token, add):
    text = token.text
    if text.isdigit():
        changed = str(int(text) + 1), str(int(text) - 1)
    elif text.endswith(".0") and text[:-2].isdigit():
        changed = f"{int(text[:-2]) + 1}.0", f"{int(text[:-2]) - 1}.0"
    else:
        changed = f"({text} + 1)", f"({text} - 1)"
    for each in changed:
        add("constant", token.start, token.end, each)


def _replace_operator(source, index, add):
    token = source.tokens[index]
    if token.text in ASSIGNING:
        add("assignment", token.start, token.end, ASSIGNING[token.text])
    elif source.is_spaced(index):
        for each in RELATIONAL.get(token.text, ()):
            add("relational", token.start, token.end, each)
        if token.text in LOGICAL:
            add("logical", token.start, token.end, LOGICAL[token.text])
        if token.text in ARITHMETIC:
            add("arithmetic", token.start, token.end, ARITHMETIC[token.text])
    elif token.text in ("!", "~") or token.text == "-" and _is_prefix(source, index):
        add("negation", token.start, token.end, "")


def _is_prefix(source, index):
    token, before = source.tokens[index], source.tokens[index - 1]
    return not source.text[token.end].isspace() and (
        before.kind == "mark" and before.text not in (")", "]", "]]") or before.text == "return"
    )


def _negate_condition(source, index, add):
    opening = index + 1
    if source.tokens[opening].text == "constexpr":
        opening += 1
    if source.tokens[opening].text != "(":
        return
    closing = source.partner[opening]
    first = opening + 1
    for each in range(first, closing):
        if source.tokens[each].text == ";":
            first = each + 1
    texts = source.texts(first, closing)
    relations = sum(
        source.tokens[each].text in RELATIONAL and source.is_spaced(each)
        for each in range(first, closing)
    )
    # Other operators already negate a single comparison and drop a negation. A declaration cannot be
    # put in brackets.
    single = relations == 1 and not any(text in LOGICAL for text in texts)
    negated = texts[0] == "!" and (
        first + 1 in source.partner and source.partner[first + 1] == closing - 1
    )
    if single or negated or "=" in texts:
        return
    start, end = source.tokens[first].start, source.tokens[closing].start
    add("condition", start, end, f"!({source.text[start:end]})")


def _swap_arguments(source, index, add):
    before = source.tokens[index - 1]
    if source.tokens[index].text == "(":
        if before.kind != "word" and before.text != ">" or before.text in (
            "if", "while", "for", "switch", "return", "sizeof", "noexcept",
        ):
            return
    elif before.text in (")", "]", "]]", "noexcept", "const", "else", ";", "{", "}"):
        return
    parts = source.arguments(index)
    inside = source.texts(index, source.partner[index])
    if source.tokens[index].text == "{" and ";" in inside:
        return
    pairs = list(zip(parts, parts[1:]))
    for (a, a_end), (b, b_end) in pairs[before.text in SYMMETRIC :]:
        start, end = source.tokens[a].start, source.tokens[b_end - 1].end
        first = source.text[start : source.tokens[a_end - 1].end]
        second = source.text[source.tokens[b].start : end]
        between = source.text[start + len(first) : source.tokens[b].start]
        if first != second:
            add("arguments", start, end, second + between + first)


def _begins_statement(source, index):
    before = source.tokens[index - 1]
    if before.text in ("{", "}", ";", "else"):
        return True
    if before.text == ")":
        opening = next(o for o, c in source.partner.items() if c == index - 1)
        return source.tokens[opening - 1].text in ("if", "while", "for")
    return False


def _delete_statement(source, index, add):
    end = index
    while source.tokens[end].text != ";":
        if source.tokens[end].text in ("}", "{") and end == index:
            return
        end = source.partner.get(end, end) + 1
        if end >= len(source.tokens) or source.tokens[end].text in ("}", ",", ")"):
            return
    if _is_deletable(source, index, end):
        add("statement", source.tokens[index].start, source.tokens[end].start, "")


def _is_deletable(source, first, last):
    """Whether the code can compile without the statement."""
    words = source.texts(first, last)
    if not words:
        return False
    if words[0] in ("return", "break", "continue"):
        return len(words) == 1
    # A call that only prefetches; its arguments have mutants, because they may read.
    if "(" in words and words[words.index("(") - 1].startswith("prefetch"):
        return False
    if words[0] in ("*", "++", "--", "delete") or "delete" in words[:3]:
        return True
    if words[0] in (
        "if", "for", "while", "do", "switch", "case", "const", "constexpr", "auto", "static",
        "using", "else", "struct", "static_assert", "typedef", "try",
    ):
        return False
    # In a declaration a name follows a type, before any token that only expressions contain.
    for index in range(first, last):
        text = source.tokens[index].text
        if text in ("=", "(", ".", "->", "[", "++", "--") or text in ASSIGNING:
            return True
        behind = source.tokens[index + 1]
        if behind.kind == "word" and (
            source.tokens[index].kind == "word" or text in (">", "*", "&", "*&")
        ):
            return False
        if behind.text == "{":
            return False
    return False
