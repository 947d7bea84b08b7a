#!/usr/bin/env python3
"""Writes the 48 and 256 px PNG application icons from resources/Runplan.ico, the icon the window
already uses, so the launcher shows the same picture. Run again after the .ico changes:
    python3 packaging/icons/extract-icons.py"""
import os
import struct
import zlib

here = os.path.dirname(os.path.abspath(__file__))
ico = open(os.path.join(here, "..", "..", "resources", "Runplan.ico"), "rb").read()


def png(width, height, rows):
    def chunk(kind, data):
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))
    raw = b"".join(b"\0" + r for r in rows)
    return (b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", struct.pack(">IIBBBBB", width, height, 8, 6, 0, 0, 0))
            + chunk(b"IDAT", zlib.compress(raw, 9)) + chunk(b"IEND", b""))


count = struct.unpack("<HHH", ico[:6])[2]
for i in range(count):
    w, h, _, _, _, bits, size, offset = struct.unpack("<BBBBHHII", ico[6 + 16 * i:22 + 16 * i])
    w, h = w or 256, h or 256
    if w not in (48, 256):
        continue
    data = ico[offset:offset + size]
    if data.startswith(b"\x89PNG"):
        out = data
    else:  # 32-bit BGRA device-independent bitmap, bottom row first
        assert bits == 32, "only 32-bit icon images are expected"
        header = struct.unpack("<I", data[:4])[0]
        pixels = data[header:header + w * h * 4]
        rows = []
        for y in range(h - 1, -1, -1):
            row = bytearray(pixels[y * w * 4:(y + 1) * w * 4])
            row[0::4], row[2::4] = row[2::4], row[0::4]  # BGRA to RGBA
            rows.append(bytes(row))
        out = png(w, h, rows)
    with open(os.path.join(here, "runplan-%d.png" % w), "wb") as f:
        f.write(out)
