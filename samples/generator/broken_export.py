"""A house as a careless exporter might write it: the other samples show what works, this one
what does not. `orv check` says what, and `orv fix` mends all of it."""

import math

from .picture import Picture, noise
from .vectors import mix

HALF_LENGTH, HALF_DEPTH, WALL, RIDGE = 2.0, 1.5, 2.4, 3.9
EAVES, VERGE = 0.35, 0.3  # the roof beyond the walls
GROUND_RADIUS, GROUND_CORNERS = 4.2, 24

HEAD = """# A small house, exported with several faults
# Made by make_samples.py.

mtllib broken_export.mtl broken_export_garden.mtl
"""

# Both names are the same up to the blank, the texture's path is another system's, and "Tr" is
# not read.
HOUSE_LIBRARY = """# The house
# Made by make_samples.py.

newmtl old wood
Kd 0,45 0,29 0,16
Ks 0.1 0.1 0.1
Ns 20

newmtl old brick
Kd 1 1 1
Ks 0.05 0.05 0.05
Ns 10
map_Kd -s 1 1 1 Textures\\Brick.PNG

newmtl pane of glass
Kd 0.45 0.7 0.85
Ks 1 1 1
Ns 150
Tr 0.4
"""

GARDEN_LIBRARY = """# What is around the house
# Made by make_samples.py.

newmtl tiles
Kd 0.62 0.16 0.11
Ks 0.15 0.15 0.15
Ns 25

newmtl grass
Kd 0.33 0.52 0.2
Ks 0.02 0.02 0.02
Ns 5

newmtl gold
Kd 0.8 0.62 0.15
Ks 0.9 0.8 0.5
Ns 60
"""

NORMALS = {"left": (-1, 0, 0), "right": (1, 0, 0), "bottom": (0, -1, 0), "top": (0, 1, 0),
           "back": (0, 0, -1), "front": (0, 0, 1)}


class Text:
    """The lines of the file, and numbers for the values in them."""

    def __init__(self):
        self.lines = []
        self.positions = 0
        self.pairs = 0
        self.normals = {}

    def position(self, point, comma=False):
        text = "v " + " ".join(f"{value:.3f}".rstrip("0").rstrip(".") for value in point)
        self.lines.append(text.replace(".", ",") if comma else text)
        self.positions += 1
        return self.positions

    def pair(self, u, v):
        self.lines.append(f"vt {u:g} {v:g}")
        self.pairs += 1
        return self.pairs

    def normal(self, name, vector):
        length = math.hypot(*vector)
        self.lines.append("vn " + " ".join(f"{value / length:.4g}" for value in vector))
        self.normals[name] = len(self.normals) + 1

    def face(self, corners, normal, pairs=None):
        number = self.normals[normal]
        texture = [str(pair) for pair in pairs] if pairs else [""] * len(corners)
        self.lines.append("f " + " ".join(f"{v}/{vt}/{number}" for v, vt in zip(corners, texture)))


def box(text, low, high, comma=False, sides=tuple(NORMALS)):
    """A box with an edge along every axis; `comma`: its numbers are written with commas."""
    x, y, z = zip(low, high)
    number = {(i, j, k): text.position((x[i], y[j], z[k]), comma)
              for i in (0, 1) for j in (0, 1) for k in (0, 1)}
    rings = {"left": ((0, 0, 0), (0, 0, 1), (0, 1, 1), (0, 1, 0)),
             "right": ((1, 0, 1), (1, 0, 0), (1, 1, 0), (1, 1, 1)),
             "bottom": ((0, 0, 0), (1, 0, 0), (1, 0, 1), (0, 0, 1)),
             "top": ((0, 1, 1), (1, 1, 1), (1, 1, 0), (0, 1, 0)),
             "back": ((1, 0, 0), (0, 0, 0), (0, 1, 0), (1, 1, 0)),
             "front": ((0, 0, 1), (1, 0, 1), (1, 1, 1), (0, 1, 1))}
    for side in sides:
        text.face([number[corner] for corner in rings[side]], side)


def panel(text, left, right, low, high):
    """A rectangle just in front of the front wall."""
    z = HALF_DEPTH + 0.02
    corners = [text.position(point) for point in
               ((left, low, z), (right, low, z), (right, high, z), (left, high, z))]
    text.face(corners, "front")


def walls(text):
    """Four walls under two gables, with texture coordinates."""
    x, z, scale = HALF_LENGTH, HALF_DEPTH, 0.5
    for side, ring in (("front", ((-x, 0, z), (x, 0, z), (x, WALL, z), (-x, WALL, z))),
                       ("back", ((x, 0, -z), (-x, 0, -z), (-x, WALL, -z), (x, WALL, -z))),
                       ("right", ((x, 0, z), (x, 0, -z), (x, WALL, -z), (x, RIDGE, 0), (x, WALL, z))),
                       ("left", ((-x, 0, -z), (-x, 0, z), (-x, WALL, z), (-x, RIDGE, 0), (-x, WALL, -z)))):
        along = 0 if side in ("front", "back") else 2
        corners = [text.position(point) for point in ring]
        pairs = [text.pair(point[along] * scale, point[1] * scale) for point in ring]
        text.face(corners, side, pairs)


def roof(text):
    """Two slopes, a little wider than the walls."""
    x = HALF_LENGTH + VERGE
    slope = (RIDGE - WALL) / HALF_DEPTH
    z = HALF_DEPTH + EAVES
    low, ridge = RIDGE - slope * z + 0.04, RIDGE + 0.04
    front = [(-x, low, z), (x, low, z), (x, ridge, 0), (-x, ridge, 0)]
    back = [(x, low, -z), (-x, low, -z), (-x, ridge, 0), (x, ridge, 0)]
    for side, ring in (("front slope", front), ("back slope", back)):
        text.face([text.position(point) for point in ring], side)


def ground(text):
    """One face, in lines that go on in the next, and without normals."""
    text.lines.append("usemtl grass")
    ring = []
    for i in range(GROUND_CORNERS):
        angle = -2 * math.pi * i / GROUND_CORNERS
        ring.append(text.position((GROUND_RADIUS * math.cos(angle), 0, GROUND_RADIUS * math.sin(angle))))
    rows = [" ".join(map(str, ring[i:i + 8])) for i in range(0, GROUND_CORNERS, 8)]
    text.lines.append("f " + " \\\n  ".join(rows))


def vane(text):
    """A dart on a pole. Its first corner is the tip: the quad is cut from wing to wing."""
    text.lines.append("usemtl old wood")
    box(text, (-0.04, RIDGE, -0.04), (0.04, RIDGE + 0.75, 0.04))
    text.lines.append("usemtl gold")
    y = RIDGE + 0.95
    ring = [(0.9, y, 0), (-0.6, y + 0.4, 0), (-0.2, y, 0), (-0.6, y - 0.4, 0)]
    text.lines.append("f " + " ".join(str(text.position(point)) for point in ring))


def broken_export():
    text = Text()
    for name, vector in NORMALS.items():
        text.normal(name, vector)
    slope = (RIDGE - WALL) / HALF_DEPTH
    text.normal("front slope", (0, 1, slope))
    text.normal("back slope", (0, 1, -slope))
    text.lines.append("usemtl old brick")
    walls(text)
    ground(text)
    text.lines.append("usemtl tiles")
    roof(text)
    text.lines.append("usemtl chimney")  # nothing defines it
    box(text, (0.85, 2.9, -0.75), (1.35, 4.45, -0.25), comma=True)
    text.lines.append("usemtl old wood")
    panel(text, -0.4, 0.4, 0, 1.7)
    text.lines.append("usemtl pane of glass")
    panel(text, -1.5, -0.8, 0.9, 1.7)
    panel(text, 0.8, 1.5, 0.9, 1.7)
    vane(text)
    return {"broken/broken_export.obj": (HEAD + "\n".join(text.lines) + "\n").encode(),
            "broken/broken_export.mtl": HOUSE_LIBRARY.encode(),
            "broken/broken_export_garden.mtl": GARDEN_LIBRARY.encode(),
            "broken/textures/brick.png": Picture(128, 128).paint(brick).png()}


def brick(u, v):
    """Eight courses of four bricks, every other one set off by half a brick."""
    course = int(8 * v)
    across = (4 * u + 0.5 * (course % 2)) % 4
    x, y = across % 1, (8 * v) % 1
    if min(x, 1 - x) < 0.05 or min(y, 1 - y) < 0.1:
        return (0.75, 0.72, 0.66)
    shade = noise(int(across) + 11 * course, 0.5, 7)
    return mix((0.55, 0.23, 0.16), (0.7, 0.35, 0.24), shade)
