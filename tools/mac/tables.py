# SPDX-License-Identifier: Apache-2.0
"""Tables of texts and property lists, as the program reads them."""
import plistlib
import re

BLANKS = re.compile(r"(?:[ \t-\r]|/\*.*?\*/|//[^\n]*)*", re.DOTALL)
TEXT = re.compile(r'''"(?:[^"\\]|\\.)*"|'(?:[^'\\]|\\.)*'|[A-Za-z0-9_.:/$-]+''', re.DOTALL)
ESCAPE = re.compile(r"\\(?:[Uu]([0-9A-Fa-f]{0,4})|([0-7]{1,3})|(.))", re.DOTALL)
CONTROLS = {"n": "\n", "t": "\t", "r": "\r", "a": "\a", "b": "\b", "f": "\f", "v": "\v"}


class Mistake(Exception):
    """What the maker has to put right, as a sentence."""


def content_of(path):
    if not path.is_file():
        raise Mistake(f"there is no file {path}")
    return path.read_bytes()


def property_list(path):
    try:
        listing = plistlib.loads(content_of(path))
    except Mistake:
        raise
    except Exception as error:  # the reader raises whatever the damage leads to
        raise Mistake(f"{path} is no property list: {error}") from error
    if not isinstance(listing, dict):
        raise Mistake(f"{path} is a property list without keys")
    return listing


def decoded(data):
    if data.startswith((b"\xff\xfe", b"\xfe\xff")):
        return data.decode("utf-16")
    if len(data) % 2 == 0 and data and (data[0] == 0) != (data[1] == 0):
        return data.decode("utf-16-be" if data[0] == 0 else "utf-16-le")
    return data.decode("utf-8-sig")


def without_escapes(text):
    def character(found):
        if found[3]:
            return CONTROLS.get(found[3], found[3])
        return chr(int(found[2], 8) if found[2] else int(found[1] or "0", 16))
    halves = ESCAPE.sub(character, text).encode("utf-16", "surrogatepass")
    return halves.decode("utf-16", "replace")


class Reader:
    """Of the text form of a strings table."""

    def __init__(self, text):
        self.text = text
        self.at = self.entry = BLANKS.match(text).end()

    def takes(self, character):
        if not self.text.startswith(character, self.at):
            return False
        self.at = BLANKS.match(self.text, self.at + 1).end()
        return True

    def word(self):
        found = TEXT.match(self.text, self.at)
        if not found:
            raise ValueError
        self.at = BLANKS.match(self.text, found.end()).end()
        return without_escapes(found[0][1:-1] if found[0][0] in "\"'" else found[0])

    def entries(self):
        is_braced = self.takes("{")
        while self.at < len(self.text) and not (is_braced and self.takes("}")):
            self.entry = self.at
            key = self.word()
            value = self.word() if self.takes("=") else key
            if not self.takes(";"):
                raise ValueError
            yield key, value


def strings_table(path):
    data = content_of(path)
    if data.startswith((b"bplist", b"<?xml")):
        return {key: text for key, text in property_list(path).items() if isinstance(text, str)}
    try:
        reader = Reader(decoded(data))
    except UnicodeError as error:
        raise Mistake(f"{path} is neither UTF-8 nor UTF-16") from error
    try:
        return dict(reader.entries())
    except ValueError as error:
        line = 1 + reader.text.count("\n", 0, reader.entry)
        raise Mistake(f"{path}, line {line}: \"key\" = \"text\"; is expected") from error
