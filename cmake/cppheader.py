"""A rough reader of C++ headers: the classes and functions that they declare, and where each function is defined.

Made for headers in this tree's style. What a template declares counts as defined in the header.
"""
import re
from dataclasses import dataclass
from enum import Enum, auto
from pathlib import Path

BLANKED = re.compile(r'//[^\n]*|/\*.*?\*/|^[ \t]*#(?:[^\n]*\\\n)*[^\n]*|"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'',
                     re.DOTALL | re.MULTILINE)
TOKEN = re.compile(r"[A-Za-z_]\w*|\d[\w.']*|::|->\*?|\.\.\.|\[\[|\]\]|<=>|[-+*/%^&|=!<>]=|&&|\|\||\+\+|--|\S")
CLOSING = {"(": ")", "{": "}", "[": "]", "[[": "]]"}
PASSED_OVER = {"using", "typedef", "static_assert", "enum"}
TYPE_WORDS = {"class", "struct", "union"}
DEFINED_WHEREVER_DECLARED = {"inline", "constexpr", "consteval"}


class Body(Enum):
    elsewhere = auto()   # in a source file, so that a symbol is needed
    here = auto()        # in the header, or by the compiler
    none = auto()        # deleted or pure
    befriended = auto()  # a friend's declaration, which may repeat one at namespace scope
    of_above = auto()    # an inline definition, outside the class, of what was declared as `elsewhere`


@dataclass(frozen=True)
class Class:
    name: str
    place: str


@dataclass(frozen=True)
class Function:  # or variable
    name: str
    body: Body
    place: str


def tokens_of(text):
    """Pairs of token and line, without comments, directives and the insides of literals."""
    text = BLANKED.sub(lambda match: ('""' if match[0][0] in "\"'" else " ") + "\n" * match[0].count("\n"), text)
    line, last = 1, 0
    for match in TOKEN.finditer(text):
        line += text.count("\n", last, match.start())
        last = match.start()
        yield match[0], line


class Reader:
    def __init__(self, path):
        tokens = list(tokens_of(Path(path).read_text(encoding="utf-8")))
        self.words = [word for word, _ in tokens] + [""]
        self.lines = [line for _, line in tokens] + [0]
        self.path = path
        self.at = 0
        self.found = []
        self.namespaces = ()
        self.in_template = False
        self.scope(())

    def word(self, ahead=0):
        return self.words[min(self.at + ahead, len(self.words) - 1)]

    def place(self):
        return f"{self.path}:{self.lines[self.at]}"

    def skip_pair(self):
        """From an opening bracket to behind its partner."""
        opening, depth = self.word(), 0
        closing = CLOSING.get(opening, ">")
        while self.word():
            depth += (self.word() == opening) - (self.word() == closing)
            self.at += 1
            if depth == 0:
                return

    def skip_statement(self):
        """Behind the next `;`, or behind the body that ends the statement instead."""
        while self.word() and self.word() != ";":
            if self.word() in CLOSING:
                ends_here = self.word() == "{" and self.word(-1) != "="
                self.skip_pair()
                if ends_here and self.word() != ";" and self.word() != ",":
                    return
            else:
                self.at += 1
        self.at += 1

    def scope(self, path, in_class=None):
        """Everything up to the `}` that ends the scope."""
        while self.word() and self.word() != "}":
            word = self.word()
            if word in ("public", "protected", "private") and self.word(1) == ":":
                self.at += 2
            elif word == "[[":
                self.skip_pair()
            elif word in (";", "inline") and (word == ";" or self.word(1) == "namespace"):
                self.at += 1
            elif word == "extern" and self.word(2) == "{":
                self.at += 3
                self.scope(path)
            elif word == "namespace":
                self.namespace(path)
            elif word in PASSED_OVER or (word == "extern" and self.word(1) == "template"):
                self.skip_statement()
            elif word == "template":
                self.template(path, in_class)
            else:
                self.item(path, in_class)
        self.at += 1

    def item(self, path, in_class):
        if self.word() == "friend":
            self.at += 1
            if self.word() in TYPE_WORDS:
                self.skip_statement()
            else:
                self.declaration(self.namespaces, None, is_friend=True)
        elif self.word() in TYPE_WORDS:
            self.type(path)
        else:
            self.declaration(path, in_class)

    def template(self, path, in_class):
        outer, self.in_template = self.in_template, True
        while self.word() == "template":
            self.at += 1
            self.skip_pair()
        if self.word() == "requires":
            self.skip_constraint()
        self.item(path, in_class)
        self.in_template = outer

    def skip_constraint(self):
        """A `requires` clause made of concepts and parentheses, joined by `&&` and `||`."""
        while self.word() in ("requires", "&&", "||"):
            self.at += 1
            if self.word() == "(":
                self.skip_pair()
                continue
            self.at += 1
            while self.word() == "::":
                self.at += 2
            if self.word() == "<":
                self.skip_pair()

    def namespace(self, path):
        self.at += 1
        names = []
        while self.word() not in ("{", ";", "="):
            names += [self.word()] if self.word() != "::" else []
            self.at += 1
        if self.word() == "{":
            self.at += 1
            outer, self.namespaces = self.namespaces, path + tuple(names)
            self.scope(self.namespaces)
            self.namespaces = outer
        else:
            self.skip_statement()

    def type(self, path):
        place, head = self.place(), []
        self.at += 1
        while self.word() not in ("{", ";", ":", "(", ""):
            if self.word() == "<":
                self.skip_pair()
            else:
                head.append(self.word())
                self.at += 1
        if self.word() == ":":
            while self.word() not in ("{", ""):
                self.at += 1
        words = [word for word in head if word not in ("NX_API", "final")]
        name = path + (self.name_of(words) if words else "",)
        self.found.append(Class("::".join(name), place))
        if self.word() != "{":  # announced only
            self.skip_statement()
            return
        self.at += 1
        self.scope(name, in_class=name[-1])
        self.skip_statement()

    def declaration(self, path, in_class, is_friend=False):
        """A function or a variable: its words up to its parameters, then how it ends."""
        place, words = self.place(), []
        while self.word() not in ("(", ";", "{", "=", "}", "") or self.is_operator(words):
            if self.word() == "<" and words and words[-1] != "operator" and re.match(r"\w", words[-1]):
                self.skip_pair()
            elif self.word() in ("[", "[[") and words[-1:] != ["operator"]:
                self.skip_pair()
            else:
                words.append(self.word())
                self.at += 1
        if self.word() == "(" and words and words[-1] in ("explicit", "alignas"):
            self.skip_pair()
            self.declaration(path, in_class)
            return
        is_pointer = self.word() == "(" and self.word(1) in ("*", "&")  # to a function
        is_function = self.word() == "(" and not is_pointer and words and (
            re.match(r"\w", words[-1]) or "operator" in words)
        body = self.function_end(words) if is_function else self.variable_end(words, in_class)
        if words and not is_pointer:
            name = self.name_of(words)
            if self.in_template:
                body = Body.here
            elif "::" in name and body is Body.here and not in_class:
                body = Body.of_above
            elif is_friend and body is Body.elsewhere:
                body = Body.befriended
            self.found.append(Function("::".join(path + (name,)), body, place))

    def is_operator(self, words):
        """Whether the word is still part of an operator's name: `operator()`, `operator=`."""
        return words[-1:] == ["operator"] or (words[-2:] == ["operator", "("] and self.word() == ")")

    @staticmethod
    def name_of(words):
        if "operator" in words:
            at = words.index("operator")
            named = words[at + 1:]
            return "operator" + (" " if re.match(r"\w", named[0]) else "") + "".join(named)
        first = len(words) - 1
        if first > 0 and words[first - 1] == "~":
            first -= 1
        while first > 1 and words[first - 1] == "::":
            first -= 2
        return "".join(words[first:])

    def variable_end(self, words, in_class):
        is_elsewhere = self.word() == ";" and ("static" in words if in_class else "extern" in words)
        is_here = DEFINED_WHEREVER_DECLARED.intersection(words)
        self.skip_statement()
        return Body.elsewhere if is_elsewhere and not is_here else Body.here

    def function_end(self, words):
        self.skip_pair()
        tail = []
        while self.word() not in (";", "{", ":", ""):
            tail.append(self.word())
            if self.word() in CLOSING:
                self.skip_pair()
            else:
                self.at += 1
        if self.word() == ":":
            self.skip_initialisers()
        if self.word() == "{":
            self.skip_pair()
            return Body.here
        self.at += 1
        if "=" in tail:
            return Body.here if "default" in tail else Body.none
        return Body.here if DEFINED_WHEREVER_DECLARED.intersection(words) else Body.elsewhere

    def skip_initialisers(self):
        """From the `:` of a constructor to its body."""
        while self.word() in (":", ","):
            while self.word() not in ("(", "{", ""):
                self.at += 1
            self.skip_pair()


def read(path):
    """The classes, functions and variables of a header, in its order."""
    return Reader(path).found
