"""Pictures for textures: painting, noise, a few letters, and PNG writing."""

import math
import struct
import zlib

from .vectors import mix

# Five columns by seven rows, top row first; only the letters that are needed.
GLYPHS = {
    "A": "01110 10001 10001 11111 10001 10001 10001",
    "B": "11110 10001 10001 11110 10001 10001 11110",
    "C": "01110 10001 10000 10000 10000 10001 01110",
    "E": "11111 10000 10000 11110 10000 10000 11111",
    "F": "11111 10000 10000 11110 10000 10000 10000",
    "G": "01110 10001 10000 10111 10001 10001 01110",
    "H": "10001 10001 10001 11111 10001 10001 10001",
    "I": "01110 00100 00100 00100 00100 00100 01110",
    "K": "10001 10010 10100 11000 10100 10010 10001",
    "L": "10000 10000 10000 10000 10000 10000 11111",
    "M": "10001 11011 10101 10101 10001 10001 10001",
    "N": "10001 11001 10101 10011 10001 10001 10001",
    "O": "01110 10001 10001 10001 10001 10001 01110",
    "P": "11110 10001 10001 11110 10000 10000 10000",
    "R": "11110 10001 10001 11110 10100 10010 10001",
    "T": "11111 00100 00100 00100 00100 00100 00100",
}


class Picture:
    """Colours from 0 to 1. Everywhere u runs to the right and v up, from 0 to 1, as texture
    coordinates do; only the PNG file starts with its top row."""

    def __init__(self, width, height):
        self.width = width
        self.height = height
        self.rows = [[(0.0, 0.0, 0.0)] * width for _ in range(height)]  # top row first

    def paint(self, colour, samples=2):
        """Every pixel: the mean of `samples` x `samples` values of `colour(u, v)`."""
        offsets = [(i + 0.5) / samples for i in range(samples)]
        weight = 1 / samples**2
        for y in range(self.height):
            for x in range(self.width):
                values = [colour((x + dx) / self.width, 1 - (y + dy) / self.height)
                          for dy in offsets for dx in offsets]
                self.rows[y][x] = tuple(sum(channel) * weight for channel in zip(*values))
        return self

    def png(self):
        """8-bit RGB: true colour, which every reader takes as four bytes a pixel."""
        data = bytearray()
        above = bytes(3 * self.width)
        for row in self.rows:
            line = bytes(round(255 * min(1.0, max(0.0, c))) for pixel in row for c in pixel)
            data += _filtered(line, above)
            above = line
        header = struct.pack(">IIBBBBB", self.width, self.height, 8, 2, 0, 0, 0)
        return (b"\x89PNG\r\n\x1a\n" + _chunk(b"IHDR", header)
                + _chunk(b"IDAT", zlib.compress(bytes(data), 9)) + _chunk(b"IEND", b""))


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def _filtered(line, above):
    """The line under the PNG filter that leaves the smallest differences: none, left or up."""
    left = bytes(3) + line[:-3]
    choices = [line, bytes((a - b) & 255 for a, b in zip(line, left)),
               bytes((a - b) & 255 for a, b in zip(line, above))]
    costs = [sum(min(b, 256 - b) for b in choice) for choice in choices]
    best = costs.index(min(costs))
    return bytes([best]) + choices[best]


def png_content(data):
    """What a PNG file says, with the compression undone: compressors differ by version."""
    parts, at = [], 8
    while at < len(data):
        size, kind = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + size]
        parts.append((kind, zlib.decompress(body) if kind == b"IDAT" else body))
        at += 12 + size
    return parts


def text_covers(text, x, y):
    """Whether the word has ink at (x, y); a letter is 5 wide and 7 high, one apart, and the
    word stands on y = 0, centred about x = 0."""
    x += (6 * len(text) - 1) / 2
    column, row = math.floor(x), 6 - math.floor(y)
    if not (0 <= column < 6 * len(text) and 0 <= row < 7) or column % 6 == 5:
        return False
    return GLYPHS[text[column // 6]].split()[row][column % 6] == "1"


def _lattice(i, j, seed):
    """A fixed "random" number from 0 to 1 for every lattice point."""
    h = (i * 374761393 + j * 668265263 + seed * 2147483647) & 0xFFFFFFFF
    h = ((h ^ (h >> 13)) * 1274126177) & 0xFFFFFFFF
    return ((h ^ (h >> 16)) & 0xFFFF) / 0xFFFF


def noise(x, y, seed=0, period=None):
    """Smooth noise from 0 to 1, one bump a unit; `period`: x repeats after so many units."""
    i, j = math.floor(x), math.floor(y)
    fx, fy = x - i, y - j
    fx, fy = fx * fx * (3 - 2 * fx), fy * fy * (3 - 2 * fy)
    i0, i1 = (i % period, (i + 1) % period) if period else (i, i + 1)
    low = mix(_lattice(i0, j, seed), _lattice(i1, j, seed), fx)
    high = mix(_lattice(i0, j + 1, seed), _lattice(i1, j + 1, seed), fx)
    return mix(low, high, fy)


def layered_noise(x, y, layers, seed=0):
    """Noise with ever finer, ever weaker layers on top, from 0 to 1."""
    total = weight = 0.0
    for layer in range(layers):
        total += noise(x * 2**layer, y * 2**layer, seed + layer) / 2**layer
        weight += 1 / 2**layer
    return total / weight
