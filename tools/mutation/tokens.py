"""C++ source as tokens, with their brackets, scopes and procedures."""

import bisect
import re
from dataclasses import dataclass

PATTERN = re.compile(
    r"""(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.|\\\n)*)
      |(?P<text>"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*')
      |(?P<number>0[xX][0-9a-fA-F.]+(?:[pP][+-]?\d+)?\w*|\d[\d']*(?:\.\d*)?(?:[eE][+-]?\d+)?\w*)
      |(?P<word>[A-Za-z_]\w*)
      |(?P<mark><<=|>>=|<=>|\.\.\.|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|::|\[\[|\]\]
        |[^\s\w])
      |(?P<space>\s+)""",
    re.VERBOSE | re.MULTILINE | re.DOTALL,
)

CLOSING = {"(": ")", "[": "]", "{": "}", "[[": "]]"}
TYPE_HEADS = {"struct", "class", "union", "enum", "concept"}
BODY_BEFORE = {")", "]", "]]", "noexcept", "const", "mutable", "else", "do", "try", "{", "}", ";"}


@dataclass
class Token:
    kind: str
    text: str
    start: int
    end: int
    in_body: bool = False
    masked: bool = False
    procedure: str = ""  # see Source._find_procedures


class Source:
    """The tokens of a file without space and comments, and their nesting."""

    def __init__(self, text):
        self.text = text
        self._line_starts = [0] + [m.end() for m in re.finditer("\n", text)]
        self.tokens = [
            Token(match.lastgroup, match.group(), match.start(), match.end())
            for match in PATTERN.finditer(text)
            if match.lastgroup not in ("skip", "space")
        ]
        self._token_starts = [token.start for token in self.tokens]
        self.partner = self._pair_brackets()
        self._mask()
        self._find_bodies()
        self._find_procedures()

    def line_of(self, offset):
        return bisect.bisect_right(self._line_starts, offset)

    def procedure_at(self, offset):
        """The name of the procedure that contains the token at an offset."""
        index = bisect.bisect_right(self._token_starts, offset) - 1
        return self.tokens[index].procedure

    def lines_from(self, start, end):
        """The complete lines that overlap [start, end)."""
        first = self._line_starts[self.line_of(start) - 1]
        last = self.text.find("\n", max(start, end - 1))
        return self.text[first : last if last >= 0 else len(self.text)]

    def is_spaced(self, index):
        """Whether there is space on both sides, where the formatter puts it around binary operators."""
        token = self.tokens[index]
        around = self.text[token.start - 1 : token.start], self.text[token.end : token.end + 1]
        return all(each.isspace() for each in around)

    def texts(self, first, last):
        return [token.text for token in self.tokens[first:last]]

    def arguments(self, opening):
        """The token ranges [first, last) between the commas of a bracket."""
        parts = []
        first = index = opening + 1
        closing = self.partner[opening]
        while index < closing:
            if index in self.partner:
                index = self.partner[index]
            elif self.tokens[index].text == ",":
                parts.append((first, index))
                first = index + 1
            index += 1
        if first < closing:
            parts.append((first, closing))
        return parts

    def _pair_brackets(self):
        partner = {}
        stack = []
        for index, token in enumerate(self.tokens):
            if token.kind != "mark":
                continue
            if token.text in CLOSING:
                stack.append(index)
            elif token.text == "]]" and self.tokens[stack[-1]].text == "[":
                # A ]] that is not an attribute's closes two nested subscripts.
                partner[stack.pop()] = index
                partner[stack.pop()] = index
            elif token.text in CLOSING.values():
                if not stack or CLOSING[self.tokens[stack[-1]].text] != token.text:
                    raise ValueError(f"line {self.line_of(token.start)}: unmatched '{token.text}'")
                partner[stack.pop()] = index
        if stack:
            token = self.tokens[stack[-1]]
            raise ValueError(f"line {self.line_of(token.start)}: unmatched '{token.text}'")
        return partner

    def _mask(self):
        """Masks tokens of code that does not run: a change would not compile or would have no effect."""
        for index, token in enumerate(self.tokens):
            following = self.tokens[index + 1].text if index + 1 < len(self.tokens) else ""
            if token.text == "[[":
                self._mask_through(index, self.partner[index])
            elif token.text == "template" and following == "<":
                self._mask_through(index, self._end_of_angles(index + 1))
            elif following == "(" and token.text in (
                "static_assert", "requires", "__attribute__", "__builtin_prefetch", "alignof",
                "decltype",
            ):
                self._mask_through(index, self.partner[index + 1])
            elif token.text in ("using", "concept", "operator", "namespace"):
                end = index
                while self.tokens[end].text not in (";", "{", "(", "="):
                    end += 1
                if token.text in ("using", "concept"):
                    while self.tokens[end].text != ";":
                        end = self.partner.get(end, end) + 1
                self._mask_through(index, end)

    def _mask_through(self, first, last):
        for token in self.tokens[first : last + 1]:
            token.masked = True

    def _end_of_angles(self, opening):
        depth = 0
        for index in range(opening, len(self.tokens)):
            text = self.tokens[index].text
            depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
            if depth <= 0:
                return index
        raise ValueError("a list of template parameters is not closed")

    def _find_bodies(self):
        """Separates the bodies of procedures from the members of types and namespaces."""
        scopes = ["outside"]
        self._scopes = {}
        head = 0
        for index, token in enumerate(self.tokens):
            token.in_body = scopes[-1] == "body"
            if token.text == "{":
                scopes.append(self._scope_at(index, head, scopes[-1]))
                self._scopes[index] = scopes[-1]
                head = index + 1
            elif token.text == "}":
                scopes.pop()
                head = index + 1
            elif token.text == ";":
                head = index + 1

    def _find_procedures(self):
        """Gives each token the name of its procedure, qualified by the enclosing types. Parameters, member
        initialisers and lambdas are part of a procedure. Outside of procedures the name is that of the
        declared variable or type."""
        self._name_declarations(0, len(self.tokens), ())

    def _name_declarations(self, first, last, types):
        start = index = first
        while index < last:
            text = self.tokens[index].text
            end = self.partner.get(index, index) if text in CLOSING else index
            if text == "{" and self._scopes[index] == "body":
                self._assign(start, end, (*types, self._declared(start, index)))
                start = end + 1
            elif text == "{" and self._declared_type(start, index):
                name = self._declared_type(start, index)
                self._name_declarations(index + 1, end, (*types, name))
                start = end + 1
            elif text == "{" and self._is_namespace(start, index):
                self._name_declarations(index + 1, end, types)
                start = end + 1
            elif text == ";":
                self._assign(start, index, (*types, self._declared(start, index)))
                start = index + 1
            elif text == ":" and self.tokens[index - 1].text in ("public", "protected", "private"):
                start = index + 1
            index = end + 1

    def _is_namespace(self, head, index):
        words = self.texts(head, index)
        return "namespace" in words or "extern" in words and "(" not in words

    def _assign(self, first, last, names):
        for token in self.tokens[first : last + 1]:
            token.procedure = "::".join(each for each in names if each)

    def _without_attributes(self, first, last):
        """The indices of the tokens outside of attributes and template lists."""
        index = first
        while index < last:
            text = self.tokens[index].text
            if text == "[[":
                index = self.partner[index] + 1
            elif text in ("alignas", "requires", "decltype", "__attribute__"):
                index = self.partner.get(index + 1, index) + 1
            elif text == "<" and self.tokens[index - 1].kind == "word":
                index = self._end_of_angles(index) + 1
            else:
                yield index
                index += 1

    def _declared_type(self, first, last):
        """The name of the type whose members follow, or an empty text."""
        words = [self.tokens[k].text for k in self._without_attributes(first, last)]
        heads = [k for k, word in enumerate(words) if word in TYPE_HEADS]
        return next((word for word in words[heads[-1] + 1 :] if word != "class"), "") if heads else ""

    def _declared(self, first, last):
        """The name of the declared procedure or variable: the word before its parameters or its value."""
        name = ""
        for index in self._without_attributes(first, last):
            token = self.tokens[index]
            if token.text == "operator":
                end = next(k for k in range(index + 2, last) if self.tokens[k].text == "(")
                return "operator" + "".join(self.texts(index + 1, end))
            if token.text in ("(", "=", "[", "{", ":"):
                break
            if token.kind == "word":
                name = token.text
        return name

    def _scope_at(self, index, head, around):
        words = [t.text for t in self.tokens[head:index] if not t.masked]
        before = self.tokens[index - 1].text if index else ""
        if any(word in TYPE_HEADS for word in words):
            return "type"
        if "namespace" in self.texts(head, index) or "extern" in words and "(" not in words:
            return "outside"
        if before in BODY_BEFORE or "->" in words and ")" in words and "=" not in words[-2:]:
            return "body"
        return around
