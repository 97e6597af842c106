#!/usr/bin/env python3
"""Makes the sample firmware image, firmware.bin: 20000 bytes that no chip runs, but that show at once where a
transfer or a flash image went wrong.

The file starts with a line of text. Every block of 256 bytes starts with its number, twice, and goes on with
bytes that depend on both the block and the place in it. The last block is not full, and its last byte is not
0xFF, the value that fills a block up.

Usage: make_firmware.py [output file]
"""

import pathlib
import sys

SIZE = 20000
BLOCK = 256
TITLE = b"QV5123 sample firmware\r\n"


def block(number):
    return bytes([number & 0xFF] * 2 + [(7 * i + 13 * number) % 251 for i in range(2, BLOCK)])


def main():
    image = b"".join(block(number) for number in range(-(-SIZE // BLOCK)))[:SIZE]
    image = TITLE + image[len(TITLE) :]
    default = pathlib.Path(__file__).with_name("firmware.bin")
    (pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else default).write_bytes(image)


if __name__ == "__main__":
    main()
