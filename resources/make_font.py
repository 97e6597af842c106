#!/usr/bin/env python3
"""Draws the sample font library, fontT_16x24_.bin: 1024 glyphs of 16 x 24 pixels, 49152 bytes.

Every character is drawn here, as strokes on a small grid, for this program; no existing font was used.

Page 0  printable ASCII at its own codes, symbols at 0x80, box drawing at 0x90, level bars at 0xA0 and 0xB0
Page 1  page 0 with drawn and clear pixels swapped, for selected menu lines
Page 2  page 0 in bold
Page 3  empty, for characters of your own

Usage: make_font.py [output file]
"""

import pathlib
import sys

WIDTH, HEIGHT = 16, 24
PAGE = 256

# Strokes through grid points "xy", parted by "/": x from 0 (left) to 4, y from 0 (top of capitals) by 2 (top of
# small letters) and 6 (baseline) to 8 (bottom of descenders).
STROKES = {
    "!": "20 24/26 26",
    '"': "10 12/30 32",
    "#": "10 16/30 36/02 42/04 44",
    "$": "41 11 02 13 33 44 35 05/20 26",
    "%": "40 06/00 10 11 01 00/35 45 46 36 35",
    "&": "46 11 20 31 04 05 16 26 44",
    "'": "20 22",
    "(": "30 21 25 36",
    ")": "10 21 25 16",
    "*": "21 25/02 44/42 04",
    "+": "21 25/03 43",
    ",": "25 26 17",
    "-": "03 43",
    ".": "26 26",
    "/": "40 06",
    "0": "10 30 41 45 36 16 05 01 10/14 32",
    "1": "11 20 26/16 36",
    "2": "01 10 30 41 42 06 46",
    "3": "01 10 30 41 42 33 44 45 36 16 05/23 33",
    "4": "36 30 04 44",
    "5": "40 00 03 33 44 45 36 06",
    "6": "40 20 02 05 16 36 45 44 33 13 04",
    "7": "00 40 16",
    "8": "10 30 41 42 33 13 02 01 10/13 04 05 16 36 45 44 33",
    "9": "06 26 44 41 30 10 01 02 13 33 42",
    ":": "23 23/26 26",
    ";": "23 23/25 26 17",
    "<": "40 03 46",
    "=": "02 42/04 44",
    ">": "00 43 06",
    "?": "01 10 30 41 42 23 24/26 26",
    "@": "46 16 05 01 10 30 41 44 24 22 42",
    "A": "06 02 20 42 46/04 44",
    "B": "00 06 36 45 44 33 03/33 42 41 30 00",
    "C": "41 30 10 01 05 16 36 45",
    "D": "00 06 26 44 42 20 00",
    "E": "40 00 06 46/03 33",
    "F": "40 00 06/03 33",
    "G": "41 30 10 01 05 16 36 45 43 23",
    "H": "00 06/40 46/03 43",
    "I": "10 30/20 26/16 36",
    "J": "20 40/30 35 26 16 05",
    "K": "00 06/40 03 46",
    "L": "00 06 46",
    "M": "06 00 23 40 46",
    "N": "06 00 46 40",
    "O": "10 30 41 45 36 16 05 01 10",
    "P": "06 00 30 41 42 33 03",
    "Q": "10 30 41 45 36 16 05 01 10/34 46",
    "R": "06 00 30 41 42 33 03/23 46",
    "S": "41 30 10 01 02 13 33 44 45 36 16 05",
    "T": "00 40/20 26",
    "U": "00 05 16 36 45 40",
    "V": "00 26 40",
    "W": "00 16 23 36 40",
    "X": "00 46/40 06",
    "Y": "00 23 40/23 26",
    "Z": "00 40 06 46",
    "[": "30 10 16 36",
    "\\": "00 46",
    "]": "10 30 36 16",
    "^": "02 20 42",
    "_": "07 47",
    "`": "10 21",
    "a": "12 32 43 46 16 05 14 44",
    "b": "00 06 36 45 43 32 02",
    "c": "43 32 12 03 05 16 36 45",
    "d": "40 46 16 05 03 12 42",
    "e": "04 44 43 32 12 03 05 16 46",
    "f": "40 30 21 26/02 42",
    "g": "42 47 38 18 07/42 12 03 05 16 46",
    "h": "00 06/03 12 32 43 46",
    "i": "12 22 26/16 36/20 20",
    "j": "22 32 37 28 08/30 30",
    "k": "00 06/42 04 46",
    "l": "10 20 26/16 36",
    "m": "06 02 12 23 26/23 32 43 46",
    "n": "06 02/03 12 32 43 46",
    "o": "12 32 43 45 36 16 05 03 12",
    "p": "08 02 32 43 45 36 06",
    "q": "48 42 12 03 05 16 46",
    "r": "06 02/03 12 32 43",
    "s": "42 12 03 14 34 45 36 06",
    "t": "20 25 36 46/02 42",
    "u": "02 05 16 46 42",
    "v": "02 26 42",
    "w": "02 16 24 36 42",
    "x": "02 46/42 06",
    "y": "02 25/42 08",
    "z": "02 42 06 46",
    "{": "30 20 22 13 24 26 36",
    "|": "20 27",
    "}": "10 20 22 33 24 26 16",
    "~": "04 12 34 42",
}

SYMBOLS = {
    0x80: "26 20/02 20 42",  # arrow up
    0x81: "20 26/04 26 44",  # arrow down
    0x82: "43 03/21 03 25",  # arrow left
    0x83: "03 43/21 43 25",  # arrow right
    0x84: "03 26 40",  # check mark
    0x85: "01 45/41 05",  # cross
    0x86: "10 30 32 12 10",  # degree
    0x87: "20 24/02 42/06 46",  # plus minus
    0x88: "12 32 34 14 12/20 20/26 26/03 03/43 43",  # sun
    0x89: "30 11 02 04 15 36 24 22 30",  # moon
    0x8A: "03 43 46 06 03/13 11 20 31 33",  # lock
    0x8B: "00 43 06 00",  # play
    0x8C: "10 16/30 36",  # pause
    0x8D: "01 31 35 05 01/32 41 45 34",  # camera
    0x8E: "08 02/02 05 16 36 45/42 46",  # micro
    0x8F: "00 40 46 06 00",  # box to tick
}


def empty():
    return [[0] * WIDTH for _ in range(HEIGHT)]


def fill(glyph, left, top, width, height):
    for y in range(max(top, 0), min(top + height, HEIGHT)):
        for x in range(max(left, 0), min(left + width, WIDTH)):
            glyph[y][x] = 1


# Where the grid's columns and rows stand, for the left and upper pixel of the pen; columns mirror each other.
COLUMNS = (2, 4, 7, 10, 12)
MIDDLE = COLUMNS[2]
ROWS = (3, 5, 7, 10, 12, 14, 16, 18, 21)


def to_pixels(point):
    return COLUMNS[int(point[0])], ROWS[int(point[1])]


def between(start, end, i, steps, middle):
    """The place after i of so many steps, halves rounded towards the middle so that both sides look alike."""
    place, rest = divmod(start * (steps - i) + end * i, steps)
    return place + (2 * rest > steps or (2 * rest == steps and place < middle))


def draw_strokes(strokes):
    """Draws strokes with a pen 2 x 2."""
    glyph = empty()
    for stroke in strokes.split("/"):
        points = [to_pixels(point) for point in stroke.split()]
        for (x0, y0), (x1, y1) in zip(points, points[1:]):
            steps = max(abs(x1 - x0), abs(y1 - y0), 1)
            for i in range(steps + 1):
                fill(glyph, between(x0, x1, i, steps, MIDDLE), between(y0, y1, i, steps, HEIGHT), 2, 2)
    return glyph


def draw_box_lines(arms):
    """Lines from the middle to the sides in `arms`: 1 up, 2 down, 4 left, 8 right."""
    glyph = empty()
    middle_x, middle_y = WIDTH // 2 - 1, HEIGHT // 2 - 1
    if arms & 1:
        fill(glyph, middle_x, 0, 2, middle_y + 2)
    if arms & 2:
        fill(glyph, middle_x, middle_y, 2, HEIGHT)
    if arms & 4:
        fill(glyph, 0, middle_y, middle_x + 2, 2)
    if arms & 8:
        fill(glyph, middle_x, middle_y, WIDTH, 2)
    return glyph


def draw_bar(eighths, upright):
    """A level bar filled by eighths, from the left or from the bottom, between two rails."""
    glyph = empty()
    if upright:
        fill(glyph, 2, 0, 1, HEIGHT)
        fill(glyph, WIDTH - 3, 0, 1, HEIGHT)
        fill(glyph, 4, HEIGHT - 3 * eighths, WIDTH - 8, HEIGHT)
    else:
        fill(glyph, 0, 6, WIDTH, 1)
        fill(glyph, 0, HEIGHT - 7, WIDTH, 1)
        fill(glyph, 0, 8, 2 * eighths, HEIGHT - 16)
    return glyph


def inverted(glyph):
    return [[1 - pixel for pixel in row] for row in glyph]


def bold(glyph):
    return [[row[x] | (row[x - 1] if x else 0) for x in range(WIDTH)] for row in glyph]


def plain_page():
    page = [empty() for _ in range(PAGE)]
    for character, strokes in STROKES.items():
        page[ord(character)] = draw_strokes(strokes)
    for code, strokes in SYMBOLS.items():
        page[code] = draw_strokes(strokes)
    for arms in range(16):
        page[0x90 + arms] = draw_box_lines(arms)
    for eighths in range(9):
        page[0xA0 + eighths] = draw_bar(eighths, upright=False)
        page[0xB0 + eighths] = draw_bar(eighths, upright=True)
    return page


def to_bytes(glyph):
    """24 rows, high byte first; bit 15 is the leftmost pixel."""
    rows = (int("".join(map(str, row)), 2) for row in glyph)
    return b"".join(row.to_bytes(2, "big") for row in rows)


def main():
    plain = plain_page()
    pages = [plain, [inverted(g) for g in plain], [bold(g) for g in plain], [empty() for _ in plain]]
    library = b"".join(to_bytes(glyph) for page in pages for glyph in page)
    default = pathlib.Path(__file__).with_name("fontT_16x24_.bin")
    (pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default).write_bytes(library)


if __name__ == "__main__":
    main()
