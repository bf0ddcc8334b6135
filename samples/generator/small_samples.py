"""The samples that each show one thing. Every function returns its files: name to bytes."""

import math

from . import solids
from .mesh import Mesh, mtl
from .picture import Picture, layered_noise, noise, text_covers
from .vectors import HERE, add, cross, mix, on_circle, scale, smoothstep, subtract, unit


def files(name, mesh, title, materials=None, pictures=None, relative=False):
    library = f"{name}.mtl" if materials else None
    made = {f"{name}.obj": mesh.obj(title, library, relative).encode()}
    if materials:
        made[library] = mtl(title, materials).encode()
    for picture_name, picture in (pictures or {}).items():
        made[picture_name] = picture.png()
    return made


# --- textured_cube ---------------------------------------------------------------------

# Side, its word, its colour; three to a row of the picture, the first row at the bottom.
CUBE_SIDES = (
    ("front", "FRONT", (0.84, 0.26, 0.22)),
    ("right", "RIGHT", (0.95, 0.62, 0.17)),
    ("back", "BACK", (0.55, 0.32, 0.66)),
    ("left", "LEFT", (0.16, 0.55, 0.60)),
    ("top", "TOP", (0.25, 0.48, 0.80)),
    ("bottom", "BOTTOM", (0.36, 0.62, 0.30)),
)


def cube_colour(u, v):
    """A frame, an arrow that points up, and the side's name below it."""
    column, row = min(2, int(3 * u)), min(1, int(2 * v))
    _, word, colour = CUBE_SIDES[3 * row + column]
    x, y = 3 * u - column, 2 * v - row
    from_edge = min(x, 1 - x, y, 1 - y)
    white = (0.97, 0.96, 0.93)
    if 0.035 < from_edge < 0.06:
        return white
    if abs(x - 0.5) < 0.055 and 0.42 < y < 0.66:
        return white
    if 0.66 <= y < 0.88 and abs(x - 0.5) < (0.88 - y) * 0.8:
        return white
    if text_covers(word, (x - 0.5) * 46, (y - 0.16) * 46):
        return white
    return scale(colour, 1.0 if from_edge > 0.035 else 0.8)


def textured_cube():
    mesh = Mesh()
    mesh.part("cube")
    for i, (side, _, _) in enumerate(CUBE_SIDES):
        left, low = (i % 3) / 3, (i // 3) / 2
        pairs = [(left, low), (left + 1 / 3, low), (left + 1 / 3, low + 0.5), (left, low + 0.5)]
        solids.box(mesh, "sides", 2, 2, 2, sides=(side,), texture=pairs)
    materials = {"sides": {"Kd": (1, 1, 1), "Ks": (0.15, 0.15, 0.15), "Ns": 30,
                           "map_Kd": "textured_cube.png"}}
    return files("textured_cube", mesh, "A cube whose sides say which way is up", materials,
                 {"textured_cube.png": Picture(576, 384).paint(cube_colour)})


# --- materials ---------------------------------------------------------------------------

PAWNS = {
    "chalk": {"Kd": (0.88, 0.86, 0.80), "Ks": (0, 0, 0), "Ns": 1},
    "plastic": {"Kd": (0.78, 0.10, 0.09), "Ks": (0.55, 0.55, 0.55), "Ns": 70},
    "glass": {"Kd": (0.35, 0.72, 0.86), "Ks": (1, 1, 1), "Ns": 180, "d": 0.35},
    "gold": {"Kd": (0.72, 0.50, 0.12), "Ks": (0.95, 0.80, 0.42), "Ns": 28},
    "ebony": {"Kd": (0.06, 0.055, 0.06), "Ks": (0.75, 0.75, 0.75), "Ns": 140},
}
PAWN_PROFILE = (
    [(0.43, 0.0), (0.43, 0.08)],
    [(0.43, 0.08), (0.40, 0.13), (0.33, 0.16), (0.29, 0.20)],
    [(0.29, 0.20), (0.30, 0.24), (0.26, 0.29), (0.19, 0.40), (0.155, 0.55), (0.14, 0.74)],
    [(0.14, 0.74), (0.25, 0.77), (0.26, 0.80), (0.15, 0.84)],
    [(0.12, 0.84), (0.19, 0.89), (0.225, 0.96), (0.235, 1.04), (0.22, 1.11), (0.18, 1.18),
     (0.10, 1.235), (0.0, 1.255)],
)


def materials():
    mesh = Mesh(3)
    mesh.part("board")
    solids.box(mesh, "frame", 5.3, 0.16, 3.3, HERE.moved(0, -0.10, 0))
    for column in range(5):
        for row in range(3):
            tile = "dark_tile" if (column + row) % 2 else "light_tile"
            solids.box(mesh, tile, 1, 0.06, 1, HERE.moved(column - 2, -0.03, row - 1),
                       sides=("top", "front", "back", "left", "right"))
    # The glass stands in front, to be looked through.
    places = {"chalk": (-2, -1), "plastic": (-1, 0), "glass": (0, 1), "gold": (0, -1), "ebony": (2, 0)}
    for name, (x, z) in places.items():
        mesh.part(f"{name}_pawn")
        solids.lathe(mesh, name, PAWN_PROFILE, 24, HERE.moved(x, 0, z).scaled(1.05))
        solids.disc(mesh, name, 0.43, 0.0, 24, HERE.moved(x, 0, z).scaled(1.05), up=False)
    library = {
        "frame": {"Kd": (0.30, 0.17, 0.09), "Ks": (0.2, 0.2, 0.2), "Ns": 25},
        "light_tile": {"Kd": (0.86, 0.79, 0.65), "Ks": (0.3, 0.3, 0.3), "Ns": 60},
        "dark_tile": {"Kd": (0.33, 0.22, 0.16), "Ks": (0.3, 0.3, 0.3), "Ns": 60},
    }
    return files("materials", mesh, "One shape in matte, glossy, metallic, dark and transparent",
                 {**library, **PAWNS})


# --- concave_polygons --------------------------------------------------------------------

# Outlines run counter-clockwise.
L_SHAPE = [(-0.6, -0.8), (0.6, -0.8), (0.6, -0.35), (-0.1, -0.35), (-0.1, 0.8), (-0.6, 0.8)]
ARROW = [(-0.9, -0.22), (0.1, -0.22), (0.1, -0.62), (0.9, 0.0), (0.1, 0.62), (0.1, 0.22), (-0.9, 0.22)]
CROSS = [(0.25, -0.75), (0.25, -0.25), (0.75, -0.25), (0.75, 0.25), (0.25, 0.25), (0.25, 0.75),
         (-0.25, 0.75), (-0.25, 0.25), (-0.75, 0.25), (-0.75, -0.25), (-0.25, -0.25), (-0.25, -0.75)]


def star(points, outer, inner):
    """The first point up."""
    outline = []
    for i in range(2 * points):
        x, y = on_circle(-i / (2 * points), inner if i % 2 else outer)
        outline.append((x, y))
    return outline


def gear(teeth, outer, inner):
    outline = []
    for tooth in range(teeth):
        for radius, offset in ((inner, -0.27), (outer, -0.17), (outer, 0.17), (inner, 0.27)):
            outline.append(on_circle(-(tooth + offset) / teeth, radius))
    return outline


def concave_polygons():
    """Three walls and a slope, and on each of them shapes whose ends are one face each."""
    mesh = Mesh()
    floor = HERE.turned(0, -90)  # x-y outlines then lie flat and rise along +Y
    left_wall = HERE.moved(-2, 0, 0).turned(1, 90)
    back_wall = HERE.moved(0, 0, -2)
    mesh.part("walls")
    solids.box(mesh, "wall", 4.2, 0.2, 4.2, HERE.moved(0, -0.1, 0).moved(-0.1, 0, -0.1))
    solids.box(mesh, "wall", 4.2, 3, 0.2, HERE.moved(-0.1, 1.5, -2.1))
    solids.box(mesh, "wall", 0.2, 3, 4.0, HERE.moved(-2.1, 1.5, 0))
    shapes = (
        ("star", star(5, 0.85, 0.36), floor.moved(-0.8, -1.0, 0)),
        ("gear", gear(9, 0.72, 0.52), floor.moved(-0.75, 0.75, 0)),
        ("l_shape", L_SHAPE, back_wall.moved(-0.9, 1.45, 0)),
        ("zigzag", [(-0.8, -0.9), (-0.2, 0.3), (0.1, -0.5), (0.8, 0.9), (0.15, 0.15), (-0.15, 0.9)],
         back_wall.moved(0.9, 1.5, 0)),
        ("arrow", ARROW, left_wall.moved(0, 1.5, 0).turned(2, 90)),
    )
    for name, outline, place in shapes:
        mesh.part(name)
        solids.extrude(mesh, name, outline, 0.22, place, back=False)
    mesh.part("wedge")
    wedge = HERE.moved(0.2, 0, 0.85).turned(1, 90)
    solids.extrude(mesh, "wedge", [(-0.9, 0.0), (0.9, 0.0), (0.9, 1.2)], 1.5, wedge)
    mesh.part("cross")
    slope = HERE.moved(0.2 + 0.75, 0.6, 0.85).turned(0, math.degrees(math.atan2(1.2, 1.8)) - 90)
    solids.extrude(mesh, "cross", CROSS, 0.2, slope.scaled(0.8), back=False)
    glossy = {"Ks": (0.25, 0.25, 0.25), "Ns": 40}
    library = {
        "wall": {"Kd": (0.80, 0.79, 0.76), "Ks": (0.03, 0.03, 0.03), "Ns": 10},
        "star": {"Kd": (0.93, 0.68, 0.14), **glossy},
        "gear": {"Kd": (0.45, 0.50, 0.56), **glossy},
        "l_shape": {"Kd": (0.76, 0.22, 0.20), **glossy},
        "zigzag": {"Kd": (0.90, 0.45, 0.15), **glossy},
        "arrow": {"Kd": (0.20, 0.45, 0.72), **glossy},
        "wedge": {"Kd": (0.62, 0.60, 0.56), **glossy},
        "cross": {"Kd": (0.27, 0.56, 0.32), **glossy},
    }
    return files("concave_polygons", mesh, "Faces of 6 to 36 corners with dents, in many planes", library)


# --- quad_sphere ---------------------------------------------------------------------------

def quad_sphere(cells=12):
    """A cube of quads blown up to a sphere; no pole, no triangle."""
    mesh = Mesh()
    mesh.part("sphere")
    tints = {"orange": [], "cream": []}
    for corners in solids.BOX_SIDES.values():
        low_left, low_right, _, top_left = corners
        across = scale(subtract(low_right, low_left), 0.5)
        upward = scale(subtract(top_left, low_left), 0.5)
        outward = cross(across, upward)

        def point(i, j):
            # The tangent evens out the sizes of the cells.
            a, b = (math.tan(math.pi / 4 * (2 * k / cells - 1)) for k in (i, j))
            p = unit(add(outward, add(scale(across, a), scale(upward, b))))
            return p, None, p

        for i in range(cells):
            for j in range(cells):
                tint = "orange" if (i // 2 + j // 2) % 2 else "cream"
                tints[tint].append([point(i, j), point(i + 1, j), point(i + 1, j + 1), point(i, j + 1)])
    for tint, faces in tints.items():
        for face in faces:
            mesh.face(tint, face)
    library = {"orange": {"Kd": (0.85, 0.36, 0.12), "Ks": (0.5, 0.5, 0.5), "Ns": 60},
               "cream": {"Kd": (0.93, 0.88, 0.76), "Ks": (0.5, 0.5, 0.5), "Ns": 60}}
    return files("quad_sphere", mesh, "A sphere of quads only, with its own normals", library)


# --- generated_normals ---------------------------------------------------------------------

def generated_normals(around=3, through=2, steps=144, sides=14):
    """A knotted tube; nothing but "v" and "f" lines."""
    def centre(t):
        out = 2 + 0.85 * math.cos(around * t)
        return out * math.cos(through * t), out * math.sin(through * t), 0.65 * math.sin(around * t)

    mesh = Mesh()
    mesh.part("knot")

    def corner(column, row):
        t = 2 * math.pi * column / steps
        ahead = unit(subtract(centre(t + 1e-4), centre(t - 1e-4)))
        # The knot nowhere runs along z, so that z can tell its sides apart all the way round.
        side = unit(cross(ahead, (0, 0, 1)))
        up = cross(ahead, side)
        a, b = on_circle(row / sides, 0.4)
        return add(centre(t), add(scale(side, a), scale(up, b))), None, None

    solids.grid(mesh, None, steps, sides, lambda c, r: corner(c, r % sides), closed=True)
    return files("generated_normals", mesh, "A curved shape without normals and without a material")


# --- negative_indices ----------------------------------------------------------------------

def negative_indices(steps=17):
    """A spiral staircase, every step followed by a face list that counts backwards."""
    mesh = Mesh(3)
    arc, rise, inner, outer = 1 / 18, 0.24, 0.28, 1.5

    def pillar_texture(turn, along):
        return 3 * turn, 2 * along

    mesh.part("pillar")
    top = steps * rise + 0.5
    solids.lathe(mesh, "stone", [[(inner, -0.1), (inner, top)]], 20, texture=pillar_texture)
    solids.disc(mesh, "stone", inner, top, 20, texture=lambda x, z: (x, z))
    for step in range(steps):
        mesh.part(f"step_{step + 1}")
        # Six corners: the outer edge is bent once so that the stair looks round.
        turns = [step * arc, (step + 0.5) * arc, (step + 1) * arc]
        outline = [on_circle(t, outer) for t in turns] + [on_circle(t, inner * 0.98) for t in turns[::-1]]
        high, low = step * rise + 0.12, step * rise - 0.08
        upper = [(x, high, z) for x, z in outline]
        lower = [(x, low, z) for x, z in outline]
        solids.polygon(mesh, "wood", upper, texture=[(x / 2, z / 2) for x, z in outline])
        solids.polygon(mesh, "wood", lower[::-1], texture=[(x / 2, z / 2) for x, z in outline[::-1]])
        for i in range(len(outline)):
            j = (i + 1) % len(outline)
            solids.polygon(mesh, "wood", [lower[i], lower[j], upper[j], upper[i]],
                           texture=[(0, 0), (0.5, 0), (0.5, 0.1), (0, 0.1)])

    def wood(u, v):
        rings = 9 * v + 1.4 * noise(3 * u, 10 * v, 5, 3) + 0.5 * noise(12 * u, 40 * v, 6, 12)
        return mix((0.62, 0.40, 0.21), (0.42, 0.25, 0.12), 0.5 + 0.5 * math.sin(2 * math.pi * rings))

    library = {
        "stone": {"Kd": (0.78, 0.77, 0.74), "Ks": (0.05, 0.05, 0.05), "Ns": 10},
        "wood": {"Kd": (1, 1, 1), "Ks": (0.2, 0.2, 0.2), "Ns": 30, "map_Kd": "negative_indices.png"},
    }
    return files("negative_indices", mesh, "Steps whose faces count back from the latest values", library,
                 {"negative_indices.png": Picture(128, 128).paint(wood)}, relative=True)


# --- specular_map --------------------------------------------------------------------------

VASE_POINTS = [(0.50, 0.0), (0.56, 0.04), (0.66, 0.25), (0.80, 0.55), (0.90, 0.85), (0.94, 1.12),
                (0.92, 1.38), (0.84, 1.62), (0.70, 1.84), (0.54, 2.02), (0.42, 2.18), (0.36, 2.36),
                (0.36, 2.52), (0.42, 2.68), (0.54, 2.80)]
VASE_PROFILE = solids.rounded(VASE_POINTS, 2)


def glaze(u, v):
    """How much of the vase is glazed here, 0 or 1: bands, a wave and drops."""
    wave = 0.40 + 0.045 * math.sin(2 * math.pi * 6 * u)
    if 0.12 < v < 0.15 or 0.19 < v < 0.21 or abs(v - wave) < 0.018:
        return 1.0
    x = (u * 12) % 1 - 0.5
    if x * x + ((v - 0.285) * 14) ** 2 < 0.06:
        return 1.0
    x = (u * 6 + 0.25) % 1 - 0.5
    if x * x + ((v - 0.50) * 9) ** 2 < 0.035:
        return 1.0
    return 1.0 if v > 0.64 + 0.07 * noise(10 * u, 0.5, 3, 10) else 0.0


def specular_map():
    mesh = Mesh()
    mesh.part("vase")

    def unrolled(turn, along):
        return turn, along

    solids.lathe(mesh, "glazed", [VASE_PROFILE], 36, texture=unrolled)
    solids.disc(mesh, "clay", 0.50, 0.0, 36, up=False)
    mesh.part("inside")
    # A profile that goes down faces the axis.
    inside = [(0.54, 2.80), (0.50, 2.80), (0.38, 2.66), (0.32, 2.52), (0.32, 2.36), (0.40, 2.12), (0.76, 1.62),
              (0.86, 1.12), (0.60, 0.30), (0.0, 0.08)]
    solids.lathe(mesh, "clay", [inside[:2], inside[1:]], 36)

    def diffuse(u, v):
        grain = 0.10 * (layered_noise(40 * u, 60 * v, 2, 8) - 0.5)
        clay = scale((0.72, 0.42, 0.27), 1 + grain)
        deep = mix((0.06, 0.20, 0.42), (0.10, 0.42, 0.52), smoothstep(0.6, 1.0, v))
        return mix(clay, deep, glaze(u, v))

    def specular(u, v):
        return (0.9 * glaze(u, v),) * 3

    library = {
        "glazed": {"Kd": (1, 1, 1), "Ks": (1, 1, 1), "Ns": 90,
                   "map_Kd": "specular_map_kd.png", "map_Ks": "specular_map_ks.png"},
        "clay": {"Kd": (0.72, 0.42, 0.27), "Ks": (0, 0, 0), "Ns": 1},
    }
    return files("specular_map", mesh, "A vase that shines only where it is glazed", library,
                 {"specular_map_kd.png": Picture(384, 256).paint(diffuse),
                  "specular_map_ks.png": Picture(384, 256).paint(specular, 3)})


ALL = (textured_cube, materials, concave_polygons, quad_sphere, generated_normals, negative_indices,
       specular_map)
