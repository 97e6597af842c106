#!/usr/bin/env python3
"""Makes the smaller icons out of icons/qv5123.png: windows/qv5123.ico and linux/qv5123-48.png.

Windows asks for each size by itself and would otherwise shrink the large picture badly; a Linux desktop's
fallback theme must have 48 x 48.

Usage: make_icon.py
"""

import pathlib
import struct
import zlib

FOLDER = pathlib.Path(__file__).parent
ICO_SIZES = (16, 24, 32, 48, 64)


def chunks(png):
    at = 8
    while at < len(png):
        (length,) = struct.unpack(">I", png[at : at + 4])
        yield png[at + 4 : at + 8], png[at + 8 : at + 8 + length]
        at += 12 + length


def paeth(a, b, c):
    return min((abs(b - c), 0, a), (abs(a - c), 1, b), (abs(a + b - 2 * c), 2, c))[2]


def unfiltered(data, stride, step):
    rows, above = [], bytearray(stride)
    for start in range(0, len(data), stride + 1):
        kind, row = data[start], bytearray(data[start + 1 : start + 1 + stride])
        for i in range(stride):
            left = row[i - step] if i >= step else 0
            corner = above[i - step] if i >= step else 0
            row[i] = (row[i] + (0, left, above[i], (left + above[i]) // 2, paeth(left, above[i], corner))[kind]) & 255
        rows.append(row)
        above = row
    return rows


def read_png(path):
    """Rows of (red, green, blue, alpha), 0 to 255, of an RGBA picture."""
    parts = list(chunks(path.read_bytes()))
    width, _, depth, colour, _, _, interlaced = struct.unpack(">IIBBBBB", parts[0][1])
    if colour != 6 or interlaced:
        raise SystemExit("%s: not a plain RGBA picture" % path)
    size = depth // 8
    data = zlib.decompress(b"".join(body for kind, body in parts if kind == b"IDAT"))
    rows = unfiltered(data, width * 4 * size, 4 * size)
    return [[tuple(row[x + c * size] for c in range(4)) for x in range(0, len(row), 4 * size)] for row in rows]


def overlap(low, high, cell):
    return min(high, cell + 1) - max(low, cell)


def shrunk(rows, size):
    """Each pixel is the mean of the area it covers, transparent parts without a say in the colour."""
    scale, small = len(rows) / size, []
    for y in range(size):
        line = []
        for x in range(size):
            left, top, total, alpha, sums = x * scale, y * scale, 0.0, 0.0, [0.0] * 3
            for v in range(int(top), min(len(rows), int(top + scale - 1e-9) + 1)):
                for u in range(int(left), min(len(rows), int(left + scale - 1e-9) + 1)):
                    area = overlap(left, left + scale, u) * overlap(top, top + scale, v)
                    total += area
                    alpha += area * rows[v][u][3]
                    for c in range(3):
                        sums[c] += area * rows[v][u][3] * rows[v][u][c]
            colours = [round(s / alpha) if alpha else 0 for s in sums]
            line.append((*colours, round(alpha / total)))
        small.append(line)
    return small


def png(rows):
    def chunk(kind, body):
        return struct.pack(">I", len(body)) + kind + body + struct.pack(">I", zlib.crc32(kind + body))

    data = b"".join(b"\0" + bytes(v for pixel in row for v in pixel) for row in rows)
    head = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 6, 0, 0, 0)
    return (
        b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", head) + chunk(b"IDAT", zlib.compress(data, 9)) + chunk(b"IEND", b"")
    )


def bitmap(rows):
    """As an icon file holds it: bottom row first, then a mask that alpha makes needless."""
    size = len(rows)
    head = struct.pack("<IiiHHIIiiII", 40, size, size * 2, 1, 32, 0, 0, 0, 0, 0, 0)
    pixels = b"".join(bytes((b, g, r, a)) for row in reversed(rows) for r, g, b, a in row)
    return head + pixels + bytes(size * ((size + 31) // 32 * 4))


def ico(pictures):
    head, body = struct.pack("<HHH", 0, 1, len(pictures)), b""
    start = 6 + 16 * len(pictures)
    for size, data in pictures:
        head += struct.pack("<BBBBHHII", size % 256, size % 256, 0, 0, 1, 32, len(data), start + len(body))
        body += data
    return head + body


def main():
    rows = read_png(FOLDER / "icons" / "qv5123.png")
    pictures = [(size, bitmap(shrunk(rows, size))) for size in ICO_SIZES]
    pictures.append((256, png(rows)))
    (FOLDER / "windows" / "qv5123.ico").write_bytes(ico(pictures))
    (FOLDER / "linux" / "qv5123-48.png").write_bytes(png(shrunk(rows, 48)))


if __name__ == "__main__":
    main()
