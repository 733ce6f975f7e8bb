# SPDX-License-Identifier: Apache-2.0
"""Writes programs for Macs that hold one function and a table: enough to be loaded, told apart and checked."""
import hashlib
import struct

BUNDLE, LIBRARY = 8, 6  # kinds of files
PAGE = 0x4000
# Number, kind and page size of each processor, and a function that answers 0.
PROCESSORS = {"x86_64": (0x01000007, 3, 12, b"\x31\xc0\xc3"), "arm64": (0x0100000C, 0, 14, b"\0\0\x80\x52\xc0\x03\x5f\xd6")}
SIGNATURE_HEAD = 88
SIGNATURE_PAGE = 4096


def number(value):
    """In seven bits a byte."""
    encoded = bytearray()
    while True:
        value, rest = value >> 7, value & 0x7F
        encoded.append(rest | (0x80 if value else 0))
        if not value:
            return bytes(encoded)


def padded(data, alignment):
    return data + bytes(-len(data) % alignment)


def exports(symbol, address):
    """A tree with one name in it."""
    end = number(0) + number(address)
    edge = symbol + b"\0"
    child = 2 + len(edge) + 1
    return padded(bytes([0, 1]) + edge + number(child) + number(len(end)) + end + b"\0", 8)


def command(kind, data):
    data = padded(data, 8)
    return struct.pack("<II", kind, 8 + len(data)) + data


def name_command(kind, head, name):
    """A command with a text behind its fixed part, which begins with where the text is."""
    return command(kind, struct.pack("<I", 12 + len(head)) + head + name.encode() + b"\0")


def segment(name, address, size, offset, length, protection, sections=b""):
    data = struct.pack("<16sQQQQiiII", name, address, size, offset, length, protection, protection, len(sections) // 80, 0)
    return command(0x19, data + sections)


def section(name, address, size, alignment, flags):
    return struct.pack("<16s16sQQIIIIIIII", name, b"__TEXT", address, size, address, alignment, 0, 0, flags, 0, 0, 0)


def signature_size(identifier, length):
    pages = -(-length // SIGNATURE_PAGE)
    return 20 + SIGNATURE_HEAD + len(identifier) + 1 + 32 * pages


def signature(identifier, program, text_size):
    """Names nobody, as a linker signs: the hash of every page."""
    name = identifier.encode() + b"\0"
    pages = [program[i:i + SIGNATURE_PAGE] for i in range(0, len(program), SIGNATURE_PAGE)]
    hashes = b"".join(hashlib.sha256(page).digest() for page in pages)
    length = SIGNATURE_HEAD + len(name) + len(hashes)
    directory = struct.pack(">IIIIIIIIIBBBBIIIIQQQQ", 0xFADE0C02, length, 0x20400, 0x20002, SIGNATURE_HEAD + len(name),
                            SIGNATURE_HEAD, 0, len(pages), len(program), 32, 2, 0, 12, 0, 0, 0, 0, 0, 0, text_size, 0)
    blob = directory + name + hashes
    return struct.pack(">IIIII", 0xFADE0CC0, 20 + len(blob), 1, 0, 20) + blob


def program_for(processor, kind, identifier, entry, table, install_name):
    cpu, subtype, _, code = PROCESSORS[processor]
    symbol = b"_" + entry.encode()
    code_start = 0x1000
    table_start = code_start + len(padded(code, 16))
    text_size = -(-(table_start + len(table)) // PAGE) * PAGE
    tree = exports(symbol, code_start)
    symbols = struct.pack("<IBBHQ", 1, 0x0F, 1, 0, code_start)
    strings = padded(b"\0" + symbol + b"\0", 16)
    linkedit = padded(tree + symbols + strings, 16)
    signature_start = text_size + len(linkedit)
    signature_length = signature_size(identifier.encode(), signature_start)
    symbols_start = text_size + len(tree)

    commands = [
        segment(b"__TEXT", 0, text_size, 0, text_size, 5,
                section(b"__text", code_start, len(code), 4, 0x80000400) + section(b"__const", table_start, len(table), 4, 0)),
        segment(b"__LINKEDIT", text_size, -(-(len(linkedit) + signature_length) // PAGE) * PAGE, text_size,
                len(linkedit) + signature_length, 1)]
    if kind == LIBRARY:
        commands.append(name_command(0xD, struct.pack("<III", 1, 0x030102, 0x030000), install_name))
    commands += [
        command(0x80000022, struct.pack("<10I", 0, 0, 0, 0, 0, 0, 0, 0, text_size, len(tree))),
        command(0x2, struct.pack("<IIII", symbols_start, 1, symbols_start + len(symbols), len(strings))),
        command(0xB, struct.pack("<18I", 0, 0, 0, 1, 1, 0, *[0] * 12)),
        command(0x1B, hashlib.sha256(f"{identifier} {processor}".encode()).digest()[:16]),
        command(0x32, struct.pack("<IIII", 1, 11 << 16, 14 << 16, 0)),
        name_command(0xC, struct.pack("<III", 2, 0x05270000, 0x010000), "/usr/lib/libSystem.B.dylib"),
        command(0x1D, struct.pack("<II", signature_start, signature_length))]
    body = b"".join(commands)
    head = struct.pack("<8I", 0xFEEDFACF, cpu, subtype, kind, len(commands), len(body), 0x85, 0)
    text = (head + body).ljust(code_start, b"\0") + padded(code, 16) + table
    program = text.ljust(text_size, b"\0") + linkedit
    return program + signature(identifier, program, text_size)


def universal_program(kind, identifier, entry, table, install_name):
    """One file for all processors, with the function `entry` in it."""
    head = struct.pack(">II", 0xCAFEBABE, len(PROCESSORS))
    body = b""
    start = PAGE
    for processor, (cpu, subtype, alignment, _) in PROCESSORS.items():
        program = program_for(processor, kind, identifier, entry, table, install_name)
        body = padded(body, PAGE)
        head += struct.pack(">IIIII", cpu, subtype, start + len(body), len(program), alignment)
        body += program
    return head.ljust(start, b"\0") + body
