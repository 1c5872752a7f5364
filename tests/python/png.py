"""Reads the PNG files that the command writes: RGB of 8 or 16 bits, not interlaced."""

import struct
import zlib

import numpy as np


def _unfiltered(kind, row, above, pixel):
    if kind == 2:
        return row + above
    for i in range(row.size):
        left = int(row[i - pixel]) if i >= pixel else 0
        up, corner = int(above[i]), int(above[i - pixel]) if i >= pixel else 0
        paeth = min((left, up, corner), key=lambda near: abs(left + up - corner - near))
        row[i] = (int(row[i]) + (0, left, up, (left + up) // 2, paeth)[kind]) % 256
    return row


def read_png(path):
    data, at, chunks = path.read_bytes(), 8, {}
    while at < len(data):
        size, name = struct.unpack(">I4s", data[at : at + 8])
        chunks[name] = chunks.get(name, b"") + data[at + 8 : at + 8 + size]
        at += 12 + size
    width, height, bits, colours = struct.unpack(">IIBB", chunks[b"IHDR"][:10])
    assert colours == 2
    pixel = 3 * bits // 8
    lines = np.frombuffer(zlib.decompress(chunks[b"IDAT"]), np.uint8).reshape(height, -1)
    rows = np.zeros((height + 1, width * pixel), np.uint8)
    for y, line in enumerate(lines):
        rows[y + 1] = _unfiltered(line[0], line[1:].copy(), rows[y], pixel)
    return rows[1:].copy().view(">u2" if bits == 16 else np.uint8).reshape(height, width, 3)
