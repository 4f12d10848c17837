#!/usr/bin/env python3
"""Makes leaflet.docx from the folder leaflet/, and index-cards.cfb.

The results are the same whenever it runs: no clock and no order of a file system goes into them.
"""
import struct
import zlib
import zipfile
from pathlib import Path

HERE = Path(__file__).parent

# The package. Parts that describe the others come first, so that detection finds them early.


def png(width, height, is_dark):
    """A grey image of one bit a pixel."""
    rows = b""
    for y in range(height):
        bits = [0 if is_dark(x, y) else 1 for x in range(width)] + [0] * (-width % 8)
        packed = (int("".join(map(str, bits[i:i + 8])), 2) for i in range(0, len(bits), 8))
        rows += b"\0" + bytes(packed)

    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))

    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 1, 0, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b""))


def halves(x, y, width=99, height=140):
    """Whether a fold of a sheet lies at x, y: each fold halves the longer side of what is left."""
    left, top, right, bottom = 0, 0, width - 1, height - 1
    if x in (left, right) or y in (top, bottom):
        return True
    for fold in range(7):
        if fold % 2 == 0:
            bottom = (top + bottom) // 2
            if y >= bottom:
                return y == bottom and x <= right
        else:
            right = (left + right) // 2
            if x >= right:
                return x == right and y <= bottom
    return False


def make_package(target):
    first = ["[Content_Types].xml", "_rels/.rels", "word/document.xml", "word/_rels/document.xml.rels"]
    source = HERE / "leaflet"
    names = sorted(p.relative_to(source).as_posix() for p in source.rglob("*") if p.is_file())
    parts = [(name, (source / name).read_bytes()) for name in first]
    parts += [(name, (source / name).read_bytes()) for name in names if name not in first]
    parts.append(("word/media/halves.png", png(99, 140, halves)))
    with zipfile.ZipFile(target, "w") as archive:
        for name, data in parts:
            member = zipfile.ZipInfo(name, (1980, 1, 1, 0, 0, 0))
            is_image = name.endswith(".png")
            member.compress_type = zipfile.ZIP_STORED if is_image else zipfile.ZIP_DEFLATED
            archive.writestr(member, data, compresslevel=9)


# The compound file ([MS-CFB]): version 3, sectors of 512 bytes, streams below 4096 bytes in the mini stream.

SECTOR, MINI, CUTOFF = 512, 64, 4096
END, FREE, FAT_SECTOR, NONE = 0xFFFFFFFE, 0xFFFFFFFF, 0xFFFFFFFD, 0xFFFFFFFF
STORAGE, STREAM, ROOT = 1, 2, 5


class Entry:
    def __init__(self, name, kind, data=b"", children=()):
        self.name, self.kind, self.data = name, kind, data
        # The order of the format: shorter names first, then by upper case.
        self.children = sorted(children, key=lambda e: (len(e.name), e.name.upper()))
        self.left = self.right = self.child = NONE
        self.start = 0


def pad(data, size):
    return data + b"\0" * (-len(data) % size)


def balance(entries):
    """The root of a balanced tree of siblings; ids are set."""
    if not entries:
        return NONE
    middle = len(entries) // 2
    entries[middle].left = balance(entries[:middle])
    entries[middle].right = balance(entries[middle + 1:])
    return entries[middle].id


def make_compound(root):
    order = [root]
    for entry in order:
        order.extend(entry.children)
    for number, entry in enumerate(order):
        entry.id = number
    for entry in order:
        entry.child = balance(entry.children)

    mini, mini_fat, sectors, fat = b"", [], [], []

    def chain(table, count):
        start = len(table)
        table.extend([start + i + 1 for i in range(count - 1)] + [END])
        return start

    def store(data):
        data = pad(data, SECTOR)
        if not data:
            return END
        sectors.extend(data[i:i + SECTOR] for i in range(0, len(data), SECTOR))
        return chain(fat, len(data) // SECTOR)

    for entry in order:
        if entry.kind != STREAM:
            continue
        if not entry.data:
            entry.start = END
        elif len(entry.data) < CUTOFF:
            data = pad(entry.data, MINI)
            entry.start = chain(mini_fat, len(data) // MINI)
            mini += data
        else:
            entry.start = store(entry.data)
    root.start, root.data = store(mini), mini
    table = b"".join(struct.pack("<I", n) for n in mini_fat)
    table += struct.pack("<I", FREE) * (-len(mini_fat) % (SECTOR // 4))
    mini_fat_sectors = len(table) // SECTOR
    mini_fat_start = store(table)
    directory = b""
    for entry in order:
        name = entry.name.encode("utf-16-le") + b"\0\0"
        directory += struct.pack("<64sHBBIII16sIQQIQ", name, len(name), entry.kind, 1, entry.left, entry.right,
                                 entry.child, b"", 0, 0, 0, entry.start, len(entry.data))
    unused = struct.pack("<64sHBBIII16sIQQIQ", b"", 0, 0, 0, NONE, NONE, NONE, b"", 0, 0, 0, 0, 0)
    directory += unused * (-len(order) % (SECTOR // 128))
    directory_start = store(directory)
    fat_start = len(fat)
    fat.append(FAT_SECTOR)
    assert len(fat) <= SECTOR // 4, "one sector of FAT is enough for a sample"
    fat += [FREE] * (SECTOR // 4 - len(fat))
    sectors.append(struct.pack("<128I", *fat))
    header = struct.pack("<8s16sHHHHH6sIIIIIIIIII", b"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", b"", 0x3E, 3, 0xFFFE, 9, 6,
                         b"", 0, 1, directory_start, 0, CUTOFF, mini_fat_start, mini_fat_sectors, END, 0, fat_start)
    return header + struct.pack("<I", FREE) * 108 + b"".join(sectors)


# Property sets ([MS-OLEPS]).

SUMMARY = "{F29F85E0-4FF9-1068-AB91-08002B27B3D9}"
DOCUMENT_SUMMARY = "{D5CDD502-2E9C-101B-9397-08002B2CF9AE}"
USER_DEFINED = "{D5CDD505-2E9C-101B-9397-08002B2CF9AE}"


def guid(text):
    a, b, c, d, e = text.strip("{}").split("-")
    return struct.pack("<IHH", int(a, 16), int(b, 16), int(c, 16)) + bytes.fromhex(d + e)


def short(value):
    return struct.pack("<IhH", 2, value, 0)


def integer(value):
    return struct.pack("<Ii", 3, value)


def narrow(text, encoding="cp1252"):
    data = text.encode(encoding) + b"\0"
    return struct.pack("<II", 30, len(data)) + pad(data, 4)


def file_time(seconds_since_1601):
    return struct.pack("<IQ", 64, seconds_since_1601 * 10_000_000)


def wide(text):
    data = (text + "\0").encode("utf-16-le")
    return struct.pack("<II", 31, len(data) // 2) + pad(data, 4)


def hyperlinks(links):
    """Each link is six values, of which the fifth and sixth are its address and the place in it."""
    elements = [e for link in links for e in [integer(0), integer(0), integer(0), integer(0), wide(link), wide("")]]
    data = struct.pack("<I", len(elements)) + b"".join(elements)
    return struct.pack("<II", 65, len(data)) + pad(data, 4)


def dictionary(names):
    data = struct.pack("<I", len(names))
    for number, name in names.items():
        text = name.encode("cp1252") + b"\0"
        data += struct.pack("<II", number, len(text)) + text
    return pad(data, 4)


def section(properties):
    offset, table, values = 8 + 8 * len(properties), b"", b""
    for number, value in properties.items():
        table += struct.pack("<II", number, offset + len(values))
        values += value
    return struct.pack("<II", 8 + len(table) + len(values), len(properties)) + table + values


def property_set(*sections):
    head = struct.pack("<HHI16sI", 0xFFFE, 0, 0x00020006, b"", len(sections))
    bodies, offset = b"", len(head) + 20 * len(sections)
    for name, properties in sections:
        head += guid(name) + struct.pack("<I", offset + len(bodies))
        bodies += section(properties)
    return head + bodies


def cards():
    sizes = {"A4": (210, 297), "A5": (148, 210), "A6": (105, 148)}
    summary = property_set((SUMMARY, {
        1: short(1252), 2: narrow("Index cards"), 3: narrow("Sizes of paper"), 4: narrow("The RynCommon project"),
        5: narrow("paper, cards, naïve measures"), 12: file_time(13_348_540_800), 14: integer(3), 19: integer(0)}))
    document = property_set(
        (DOCUMENT_SUMMARY, {1: short(1252), 15: narrow("The RynCommon project")}),
        (USER_DEFINED, {0: dictionary({2: "_PID_HLINKS"}), 1: short(1252),
                        2: hyperlinks(["https://example.org/paper", "https://example.org/cards"])}))
    book = "".join(f"{name}: {w} mm x {h} mm\n" for name, (w, h) in sizes.items()).encode() * 120
    return Entry("Root Entry", ROOT, children=[
        Entry("WordDocument", STREAM, book),
        Entry("\x05SummaryInformation", STREAM, summary),
        Entry("\x05DocumentSummaryInformation", STREAM, document),
        Entry("Cards", STORAGE, children=[
            Entry(name, STORAGE, children=[Entry("Width", STREAM, f"{w} mm".encode()),
                                           Entry("Height", STREAM, f"{h} mm".encode())])
            for name, (w, h) in sizes.items()])])


if __name__ == "__main__":
    make_package(HERE / "leaflet.docx")
    (HERE / "index-cards.cfb").write_bytes(make_compound(cards()))
