"""Reads a Mach-O library: header, load commands, symbols, bindings, exports, code signature.
Checks nothing."""

import hashlib
import struct
from dataclasses import dataclass

MAGIC = 0xFEEDFACF
MAGIC_UNIVERSAL = 0xCAFEBABE
CPU_ARM64 = 0x0100000C
# The number in the processor's subtype. The other bits state how an arm64e library signs pointers.
CPU_SUBTYPE = 0x00FFFFFF
PLATFORM_MACOS = 1
DYLIB = 6
TWO_LEVEL, FORCE_FLAT = 0x80, 0x100

LC_SYMTAB, LC_ID_DYLIB, LC_SEGMENT, LC_RPATH = 0x2, 0xD, 0x19, 0x8000001C
LC_CODE_SIGNATURE, LC_BUILD_VERSION = 0x1D, 0x32
LC_DYLD_INFO, LC_EXPORTS_TRIE = (0x22, 0x80000022), 0x80000033
LC_CHAINED_FIXUPS = 0x80000034
# The older commands, one for each platform, that LC_BUILD_VERSION replaced.
LC_VERSION_MIN = {0x24: 1, 0x25: 2, 0x2F: 3, 0x30: 4}
# The ways to load another library: required, weak, re-exported, lazy, upward.
LOADS = {0xC: "", 0x80000018: "weakly", 0x8000001F: "as a re-export", 0x20: "lazily",
         0x80000023: "upward"}

# Kinds of sections: initialisers, terminators, and thread-local variables.
STARTUP_SECTIONS = {0x9, 0xA, 0x16}
THREAD_SECTIONS = {0x11, 0x12, 0x13, 0x14, 0x15}

# The opcodes with which the loader binds names, and how many numbers follow each.
BIND_DONE, BIND_ORDINAL, BIND_ORDINAL_NUMBER, BIND_ORDINAL_SPECIAL = 0x00, 0x10, 0x20, 0x30
BIND_NAME = 0x40
BIND_SKIPPED_NUMBERS = {0x60: 1, 0x70: 1, 0x80: 1, 0xA0: 1, 0xC0: 2}
BIND_WITHOUT_NUMBERS = {0x50, 0x90, 0xB0}
BIND_DOES = {0x90, 0xA0, 0xB0, 0xC0}

CODE_DIRECTORY, AD_HOC, SHA256 = 0xFADE0C02, 0x2, 2


class NotMachO(Exception):
    """The file is not a library that this module can read."""


@dataclass
class Dylib:
    name: str
    current: tuple
    compatible: tuple
    how: str = ""

    @property
    def stem(self):
        """libqv of @rpath/libqv.dylib and libSystem of /usr/lib/libSystem.B.dylib."""
        return self.name.rsplit("/", 1)[-1].split(".")[0]


@dataclass
class Section:
    name: str
    kind: int


@dataclass
class Import:
    name: str
    ordinal: int  # 1 for the first loaded library; 0 and 253 to 255 are special


@dataclass
class Binding:
    """A name that the loader looks up, and in which library; `at` is the position of the ordinal."""
    name: str
    ordinal: int
    table: str  # ordinary, lazy, weak, chained
    at: int


@dataclass
class Signature:
    ad_hoc: bool
    intact: bool


def version(word):
    return word >> 16, word >> 8 & 0xFF, word & 0xFF


class Library:
    """One thin 64-bit Mach-O file."""

    def __init__(self, path):
        self.path = path
        try:
            with open(path, "rb") as file:
                self.data = file.read()
        except OSError as error:
            raise NotMachO(f"cannot read {path}: {error.strerror}") from error
        self.sections, self.loads, self.run_path, self.imports = [], [], [], []
        self.platforms, self.bindings, self.binding_formats = [], [], set()
        self.identity = self.signature = None
        self.exports = set()
        try:
            self._read()
        except (struct.error, IndexError, ValueError) as error:
            raise NotMachO(f"{path} is truncated or damaged") from error

    def _unpack(self, layout, at):
        return struct.unpack_from(layout, self.data, at)

    def _text(self, at):
        return self.data[at:self.data.index(b"\0", at)].decode()

    def _read(self):
        if len(self.data) >= 4 and self._unpack(">I", 0)[0] == MAGIC_UNIVERSAL:
            raise NotMachO(f"{self.path} is for several processors at once")
        if len(self.data) < 32 or self._unpack("<I", 0)[0] != MAGIC:
            raise NotMachO(f"{self.path} is not a 64-bit Mach-O file")
        _, self.cpu, subtype, self.filetype, count, _, self.flags, _ = self._unpack("<8I", 0)
        self.cpu_subtype = subtype & CPU_SUBTYPE
        at = 32
        for _ in range(count):
            command, size = self._unpack("<II", at)
            self._read_command(command, at)
            at += size

    def _read_command(self, command, at):
        if command in LOADS:
            self.loads.append(self._dylib(at, LOADS[command]))
        elif command == LC_ID_DYLIB:
            self.identity = self._dylib(at)
        elif command == LC_RPATH:
            self.run_path.append(self._text(at + self._unpack("<I", at + 8)[0]))
        elif command == LC_BUILD_VERSION:
            platform, minimum = self._unpack("<2I", at + 8)
            self.platforms.append((platform, version(minimum)))
        elif command in LC_VERSION_MIN:
            minimum = version(self._unpack("<I", at + 8)[0])
            self.platforms.append((LC_VERSION_MIN[command], minimum))
        elif command == LC_SEGMENT:
            self._read_sections(at)
        elif command == LC_SYMTAB:
            self._read_imports(*self._unpack("<3I", at + 8))
        elif command in LC_DYLD_INFO:
            self._read_bind_tables(at)
            self._read_exports(*self._unpack("<2I", at + 40))
        elif command == LC_CHAINED_FIXUPS:
            self._read_chained(*self._unpack("<2I", at + 8))
        elif command == LC_EXPORTS_TRIE:
            self._read_exports(*self._unpack("<2I", at + 8))
        elif command == LC_CODE_SIGNATURE:
            self._read_signature(self._unpack("<I", at + 8)[0])

    def _dylib(self, at, how=""):
        name, _, current, compatible = self._unpack("<4I", at + 8)
        return Dylib(self._text(at + name), version(current), version(compatible), how)

    def _read_sections(self, at):
        for k in range(self._unpack("<I", at + 64)[0]):
            section = at + 72 + 80 * k
            name, segment = (field.rstrip(b"\0").decode() for field in
                             self._unpack("16s16s", section))
            flags = self._unpack("<I", section + 64)[0]
            self.sections.append(Section(f"{segment},{name}", flags & 0xFF))

    def _read_imports(self, symbols, count, strings):
        for k in range(count):
            name, kind, _, description = self._unpack("<IBBH", symbols + 16 * k)
            debugging, undefined = kind & 0xE0, kind & 0x0E == 0
            if not debugging and undefined and kind & 0x01:
                self.imports.append(Import(self._text(strings + name), description >> 8))

    def _number(self, at):
        """A ULEB128 number, and the position after it."""
        value = shift = 0
        while True:
            byte = self.data[at]
            value |= (byte & 0x7F) << shift
            at, shift = at + 1, shift + 7
            if byte < 0x80:
                return value, at

    def _read_bind_tables(self, at):
        self.binding_formats.add("opcodes")
        for table, field in (("ordinary", 16), ("weak", 24), ("lazy", 32)):
            self._read_opcodes(table, *self._unpack("<2I", at + field))

    def _read_opcodes(self, table, start, size):
        """Executes the binding opcodes. In the lazy table BIND_DONE ends each name."""
        name, ordinal, set_at, at = None, 0, start, start
        while at < start + size:
            opcode, small = self.data[at] & 0xF0, self.data[at] & 0x0F
            here, at = at, at + 1
            if opcode == BIND_DONE:
                if table != "lazy":
                    break
                name, ordinal = None, 0
            elif opcode == BIND_ORDINAL:
                ordinal, set_at = small, here
            elif opcode == BIND_ORDINAL_NUMBER:
                set_at = at
                ordinal, at = self._number(at)
            elif opcode == BIND_ORDINAL_SPECIAL:
                ordinal, set_at = small and small | 0xF0, here
            elif opcode == BIND_NAME:
                name = self._text(at)
                at += len(name.encode()) + 1
            elif opcode in BIND_SKIPPED_NUMBERS:
                for _ in range(BIND_SKIPPED_NUMBERS[opcode]):
                    _, at = self._number(at)
            elif opcode not in BIND_WITHOUT_NUMBERS:
                raise NotMachO(f"{self.path} binds names by opcode {opcode:#x}, which is unknown")
            if opcode in BIND_DOES and name is not None:
                self._bind(Binding(name, ordinal, table, set_at))

    def _bind(self, binding):
        if binding not in self.bindings:
            self.bindings.append(binding)

    def _read_chained(self, start, size):
        """The table of imports that newer linkers write in place of the opcodes."""
        if not size:
            return
        self.binding_formats.add("chained fixups")
        _, _, imports, symbols, count, layout, packed = self._unpack("<7I", start)
        width = {1: 4, 2: 8, 3: 16}.get(layout)
        if width is None or packed:
            raise NotMachO(f"{self.path} has chained imports of an unknown format")
        for k in range(count):
            at = start + imports + width * k
            if layout == 3:
                word, bits = self._unpack("<Q", at)[0], 16
                name = word >> 32
            else:
                word, bits = self._unpack("<I", at)[0], 8
                name = word >> 9
            ordinal = word & (1 << bits) - 1
            if ordinal >= (1 << bits) - 15:
                ordinal = ordinal & 0x0F | 0xF0
            self._bind(Binding(self._text(start + symbols + name), ordinal, "chained", at))

    def _read_exports(self, start, size):
        """Reads the exported names from the trie that the loader searches."""
        pending = [(0, "")] if size else []
        while pending:
            node, name = pending.pop()
            terminal, at = self._number(start + node)
            if terminal:
                self.exports.add(name)
            at += terminal
            children, at = self.data[at], at + 1
            for _ in range(children):
                piece = self._text(at)
                node, at = self._number(at + len(piece) + 1)
                pending.append((node, name + piece))

    def _read_signature(self, start):
        _, _, count = self._unpack(">3I", start)
        for k in range(count):
            at = start + self._unpack(">2I", start + 12 + 8 * k)[1]
            if self._unpack(">I", at)[0] == CODE_DIRECTORY:
                self.signature = self._code_directory(start, at)

    def _code_directory(self, end, at):
        flags, hashes, _, _, pages, limit = self._unpack(">6I", at + 12)
        width, kind, _, page_bits = self._unpack("4B", at + 36)
        page = 1 << page_bits
        digests = [hashlib.sha256(self.data[k:min(k + page, limit)]).digest()
                   for k in range(0, limit, page)]
        stored = self.data[at + hashes:at + hashes + width * pages]
        intact = kind == SHA256 and limit == end and b"".join(digests) == stored
        return Signature(bool(flags & AD_HOC), intact)
