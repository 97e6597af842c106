#!/usr/bin/env python3
"""Writes regu.xml, the sample register description, beside this script.

The tables below are the description: categories, registers, bit fields. The file is UTF-16 little-endian with a
byte-order mark and CR LF, one tag to a line and the attributes in the one order in which they are read. "#$" in a
description or sample is a line break.

Access, the attribute "write": "W" is saved to register files and to flash, "R" is read-only, "V" is writable but
volatile, "C" starts something when it is written.
"""

import pathlib

ON_OFF = "0: off#$1: on"


def flag(bit, name, what):
    return (f"[{bit}]", name, what, ON_OFF)


def value(name, what, sample="0..255", high=7, low=0):
    return (f"[{high}:{low}]" if high != low else f"[{high}]", name, what, sample)


def reg(address, name, access="W", reset=0, *bits):
    return (address, name, access, reset, bits or (value(name, "Whole register"),))


def word(address, name, what, access="W", reset=0, high_bits=8):
    """A quantity in two registers, high byte first."""
    top = value("HIGH", what + ", high byte#$written first", f"0..{2**high_bits - 1}", high_bits - 1)
    low = value("LOW", what + ", low byte", "0..255")
    return [reg(address, name + "_H", access, reset >> 8, top), reg(address + 1, name + "_L", access, reset & 255, low)]


CATEGORIES = [
    ("System", [
        reg(0xF800, "CHIP_ID_H", "R", 0x51, value("ID", "Chip number, high byte", "0x51")),
        reg(0xF801, "CHIP_ID_L", "R", 0x2C, value("ID", "Chip number, low byte", "0x2C")),
        reg(0xF802, "REVISION", "R", 0x23, value("MAJOR", "Mask set", "0..15", 7, 4), value("MINOR", "Metal fix", "0..15", 3)),
        reg(0xF803, "SOFT_RESET", "C", 0, flag(7, "ALL", "Resets all but the host link"), flag(1, "ISP", "Resets the image pipe"),
            flag(0, "OSD", "Resets the on-screen display")),
        reg(0xF804, "CLOCK_DIVIDER", "W", 0x12, value("PIXEL", "Pixel clock divider", "0: by 1#$1: by 2#$2: by 4", 5, 4),
            value("CORE", "Core clock divider", "0: by 1#$1: by 2#$2: by 3#$3: by 4", 1)),
        reg(0xF805, "PLL_MULTIPLIER", "W", 0x24, value("M", "PLL feedback divider#$output = 27 MHz x M / 8", "16..63", 5)),
        reg(0xF806, "PLL_CONTROL", "W", 0x81, flag(7, "ENABLE", "PLL on"), flag(6, "BYPASS", "27 MHz straight through"),
            value("CHARGE", "Charge pump current", "0..7", 2)),
        reg(0xF807, "PLL_STATUS", "R", 0, flag(0, "LOCKED", "PLL has settled")),
        reg(0xF808, "GPIO_DIRECTION", "W", 0xFF, *[flag(i, f"OUT{i}", f"Pin {i} drives") for i in range(7, -1, -1)]),
        reg(0xF809, "GPIO_OUTPUT", "V", 0, *[flag(i, f"PIN{i}", f"Level driven on pin {i}") for i in range(7, -1, -1)]),
        reg(0xF80A, "GPIO_INPUT", "R", 0, *[flag(i, f"PIN{i}", f"Level seen on pin {i}") for i in range(7, -1, -1)]),
        reg(0xF80B, "IRQ_MASK", "W", 0, flag(3, "FRAME", "End of frame"), flag(2, "STAT", "Statistics ready"),
            flag(1, "FLASH", "Flash write done"), flag(0, "HOST", "Host command")),
        reg(0xF80C, "IRQ_STATUS", "R", 0, flag(3, "FRAME", "End of frame"), flag(2, "STAT", "Statistics ready"),
            flag(1, "FLASH", "Flash write done"), flag(0, "HOST", "Host command")),
        reg(0xF922, "FACTORY_CMD", "C", 0, value("KEY", "0xCC puts the factory settings back", "0xCC")),
    ]),
    ("Sensor interface", [
        reg(0xF820, "SENSOR_MODE", "W", 0x01, value("FORMAT", "Video format", "0: PAL#$1: NTSC#$2: 960H#$3: 720p", 1),
            flag(4, "DDR", "Data on both clock edges")),
        reg(0xF821, "SENSOR_SYNC", "W", 0, flag(2, "PCLK_INV", "Inverts the pixel clock"), flag(1, "HSYNC_LOW", "HSYNC is active low"),
            flag(0, "VSYNC_LOW", "VSYNC is active low")),
        reg(0xF822, "BAYER_PHASE", "W", 0, value("PHASE", "First pixel of the first line", "0: R#$1: Gr#$2: Gb#$3: B", 1)),
        reg(0xF823, "MIRROR_FLIP", "W", 0, flag(1, "FLIP", "Upside down"), flag(0, "MIRROR", "Left to right")),
        *word(0xF824, "CROP_X", "First pixel taken", reset=8, high_bits=4),
        *word(0xF826, "CROP_Y", "First line taken", reset=12, high_bits=4),
        *word(0xF828, "CROP_WIDTH", "Pixels taken", reset=976, high_bits=4),
        *word(0xF82A, "CROP_HEIGHT", "Lines taken", reset=582, high_bits=4),
        reg(0xF82C, "BLACK_LEVEL", "W", 0x10, value("LEVEL", "Subtracted from every pixel")),
        reg(0xF82D, "I2C_ADDRESS", "W", 0x30, value("DEVICE", "Sensor's bus address", "0..127", 6)),
        reg(0xF82E, "I2C_STATUS", "R", 0, flag(1, "BUSY", "Transfer under way"), flag(0, "NACK", "Sensor did not answer")),
    ]),
    ("Auto exposure", [
        reg(0xFA00, "AE_CONTROL", "W", 0x03, flag(0, "ENABLE", "Exposure task runs"), flag(1, "GAIN", "May change the gain"),
            flag(2, "SHUTTER", "May change the shutter"), flag(3, "DC_IRIS", "Drives the iris"),
            value("WINDOW", "Weighting", "0: even#$1: centre#$2: lower half#$3: back light", 5, 4)),
        reg(0xFA01, "AE_TARGET", "W", 0x60, value("LUMA", "Mean brightness aimed at")),
        reg(0xFA02, "AE_SPEED", "W", 0x24, value("UP", "Speed towards bright", "0..15", 7, 4), value("DOWN", "Speed towards dark", "0..15", 3)),
        reg(0xFA03, "AE_DEAD_ZONE", "W", 0x04, value("ZONE", "No change within this of the target", "0..31", 4)),
        *word(0xFA04, "SHUTTER_MAX", "Longest exposure in lines", reset=625, high_bits=4),
        *word(0xFA06, "SHUTTER", "Exposure in lines now", "R", high_bits=4),
        *word(0xFA08, "GAIN", "Gain now, 256 = 1x", "R", 256),
        *word(0xFA0A, "GAIN_MAX", "Highest gain, 256 = 1x", reset=8192),
        reg(0xFA0C, "AE_LUMA", "R", 0, value("MEAN", "Mean brightness of the last frame")),
        reg(0xFA0D, "FLICKER", "W", 0, value("MODE", "Mains frequency", "0: none#$1: 50 Hz#$2: 60 Hz", 1)),
    ]),
    ("Statistics and picker", [
        reg(0xFA10, "STAT_CONTROL", "W", 0x10, flag(4, "LSC_STAT", "Takes samples behind the shading correction"),
            value("GRID", "Statistics windows", "0: 4 x 4#$1: 8 x 8#$2: 16 x 16", 1)),
        reg(0xFA20, "PIPE_CONTROL", "W", 0x90, flag(7, "RUN", "Image pipe runs"), flag(4, "PROCESS", "Colour processing on;#$off while the picker measures")),
        reg(0xFA29, "PICKER_CTRL", "W", 1, flag(7, "ENABLE", "Colour picker on"), value("SIZE", "Edge of the picked square", "0: 8#$1: 16#$2: 32", 1)),
        *word(0xFC38, "PICKER_X", "Middle of the picked square, pixel", "V", 960, 4),
        *word(0xFC3A, "PICKER_Y", "Middle of the picked square, line", "V", 540, 4),
        reg(0xFC3C, "PICKER_STATUS", "R", 0, flag(0, "VALID", "Values belong to the last frame")),
        reg(0xFC3D, "PICKER_R", "R", 0, value("MEAN", "Mean red of the square")),
        reg(0xFC3E, "PICKER_G", "R", 0, value("MEAN", "Mean green of the square")),
        reg(0xFC3F, "PICKER_B", "R", 0, value("MEAN", "Mean blue of the square")),
    ]),
    ("White balance", [
        reg(0xFC80, "AWB_CONTROL", "W", 0x01, flag(0, "ENABLE", "White balance task runs"), flag(1, "HOLD", "Keeps the gains as they are"),
            value("MODE", "Light source", "0: automatic#$1: tungsten#$2: fluorescent#$3: daylight", 5, 4)),
        reg(0xFC81, "AWB_SPEED", "W", 0x08, value("STEP", "Largest gain change in a frame", "1..31", 4)),
        *word(0xFC82, "GAIN_R", "Red gain, 256 = 1x", reset=416, high_bits=4),
        *word(0xFC84, "GAIN_G", "Green gain, 256 = 1x", reset=256, high_bits=4),
        *word(0xFC86, "GAIN_B", "Blue gain, 256 = 1x", reset=388, high_bits=4),
        reg(0xFC88, "WHITE_Y_MIN", "W", 0x20, value("LIMIT", "Darkest pixel taken for white")),
        reg(0xFC89, "WHITE_Y_MAX", "W", 0xD0, value("LIMIT", "Brightest pixel taken for white")),
        reg(0xFC92, "RAW_R", "R", 0, value("MEAN", "Mean red of the picked square#$in front of the white balance")),
        reg(0xFC96, "RAW_G", "R", 0, value("MEAN", "Mean green of it")),
        reg(0xFC9A, "RAW_B", "R", 0, value("MEAN", "Mean blue of it")),
    ]),
    ("Colour", [
        *[r for i, name in enumerate(["RR", "RG", "RB", "GR", "GG", "GB", "BR", "BG", "BB"])
          for r in word(0xFB00 + 2 * i, "MATRIX_" + name, "Matrix element, 256 = 1.0,#$two's complement", reset=256 if name[0] == name[1] else 0)],
        reg(0xFB14, "SATURATION", "W", 0x80, value("FACTOR", "Colour strength", "0: grey#$128: as it is#$255: double")),
        reg(0xFB15, "HUE", "W", 0x80, value("ANGLE", "Colour rotation", "128: none")),
        reg(0xFB16, "GAMMA_CONTROL", "W", 0x01, flag(0, "ENABLE", "Gamma curve on"), flag(1, "FRONT", "Front curve on")),
    ]),
    ("Noise and edges", [
        reg(0xFD00, "DPC_CONTROL", "W", 0x01, flag(0, "ENABLE", "Replaces defect pixels"), value("LEVEL", "How strict", "0: mild#$3: strong", 5, 4)),
        reg(0xFD01, "DPC_THRESHOLD", "W", 0x30, value("DIFFERENCE", "Difference that makes a pixel defect")),
        reg(0xFD02, "NR2D_CONTROL", "W", 0x11, flag(0, "ENABLE", "Spatial noise reduction"), value("STRENGTH", "Filter", "0..7", 6, 4)),
        reg(0xFD03, "NR3D_CONTROL", "W", 0x21, flag(0, "ENABLE", "Temporal noise reduction"), flag(1, "AUTO", "Strength follows the gain"),
            value("STRENGTH", "Share of the frame before", "0..7", 6, 4)),
        reg(0xFD04, "NR3D_MOTION", "W", 0x18, value("THRESHOLD", "Difference that counts as motion")),
        reg(0xFD05, "EDGE_GAIN", "W", 0x40, value("H", "Horizontal edges", "0..15", 7, 4), value("V", "Vertical edges", "0..15", 3)),
        reg(0xFD06, "EDGE_CORING", "W", 0x06, value("CORING", "Edges below this stay as they are", "0..63", 5)),
        reg(0xFD07, "EDGE_LIMIT", "W", 0x50, value("LIMIT", "Edges above this are cut")),
        reg(0xFD10, "LSC_CONTROL", "W", 1, flag(0, "ENABLE", "Lens shading correction"), value("SHIFT", "Scale of the curves", "0..7", 6, 4)),
        *word(0xFD12, "LSC_CENTRE_X", "Optical centre, pixel", reset=960, high_bits=4),
        *word(0xFD14, "LSC_CENTRE_Y", "Optical centre, line", reset=540, high_bits=4),
    ]),
    ("Output and OSD", [
        reg(0xFE00, "OUTPUT_FORMAT", "W", 0, value("FORMAT", "Digital output", "0: BT.656#$1: BT.601#$2: RGB565", 2), flag(7, "TEST", "Colour bars")),
        reg(0xFE01, "DAC_CONTROL", "W", 0x01, flag(0, "ENABLE", "Composite output on"), flag(1, "SETUP", "7.5 IRE setup")),
        reg(0xFE02, "Y_GAIN", "W", 0x80, value("GAIN", "Contrast", "128: as it is")),
        reg(0xFE03, "Y_OFFSET", "W", 0x80, value("OFFSET", "Brightness", "128: none")),
        reg(0xFE04, "Y_MIN", "W", 0x10, value("LIMIT", "Darkest value put out")),
        reg(0xFE05, "Y_MAX", "W", 0xEB, value("LIMIT", "Brightest value put out")),
        reg(0xFE20, "OSD_CONTROL", "W", 0x01, flag(0, "ENABLE", "On-screen display on"), flag(1, "BLINK", "Cursor blinks"),
            value("PATTERN", "Menu pattern", "0: pattern 1#$1: pattern 2", 4, 4)),
        reg(0xFE21, "OSD_X", "W", 0x08, value("POSITION", "Left edge in units of 4 pixels")),
        reg(0xFE22, "OSD_Y", "W", 0x06, value("POSITION", "Top edge in units of 4 lines")),
        reg(0xFE23, "OSD_COLOR", "W", 0x70, value("TEXT", "Palette entry of the text", "0..7", 6, 4), value("SHADOW", "Palette entry of the shadow", "0..7", 2)),
        reg(0xFE24, "OSD_STATUS", "R", 0, flag(7, "OPEN", "A menu is shown"), value("ITEM", "Line of the cursor", "0..15", 3)),
        reg(0xFFFC, "FLASH_CMD", "C", 0, value("COMMAND", "What to do with the flash", "1: save#$2: load", 1)),
        reg(0xFFFD, "FLASH_STATUS", "R", 0, flag(0, "BUSY", "Flash write under way"), flag(1, "ERROR", "Last write failed")),
        reg(0xFFFF, "SCRATCH", "V", 0, value("ANY", "Free for the host")),
    ]),
]


def lines():
    yield '<isp chip="QV512x">'
    for name, registers in CATEGORIES:
        yield f'<category catname="{name}">'
        for address, reg_name, access, reset, bits in registers:
            yield f'<reg regname="{reg_name}" addr="0x{address:04X}" write="{access}" reset="0x{reset:02X}">'
            for bit_range, bit_name, desc, sample in bits:
                yield f'<bit bitname="{bit_name}" range="{bit_range}" desc="{desc}" sample="{sample}">'
            yield "</reg>"
        yield "</category>"
    yield "</isp>"


def check():
    addresses = [r[0] for _, registers in CATEGORIES for r in registers]
    assert len(CATEGORIES) == 8 and len(set(addresses)) == len(addresses)
    assert all(0xF800 <= a <= 0xFFFF for a in addresses)
    assert all(len(r[4]) <= 8 for _, registers in CATEGORIES for r in registers)


if __name__ == "__main__":
    check()
    text = "".join(line + "\r\n" for line in lines())
    pathlib.Path(__file__).with_name("regu.xml").write_bytes(b"\xff\xfe" + text.encode("utf-16-le"))
