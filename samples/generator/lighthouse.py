"""The sample that the demo shows: a lighthouse on an island in a round slab of sea."""

import math

from . import lighthouse_ground as ground
from . import solids
from .mesh import Mesh
from .small_samples import files
from .vectors import HERE, add, cross, mix, on_circle, subtract, unit

MATERIALS = {
    "wood": {"Kd": (1, 1, 1), "Ks": (0.35, 0.30, 0.25), "Ns": 50, "map_Kd": "lighthouse_wood.png"},
    "brass": {"Kd": (0.72, 0.52, 0.18), "Ks": (0.9, 0.75, 0.4), "Ns": 40},
    "land": {"Kd": (1, 1, 1), "Ks": (0, 0, 0), "Ns": 1, "map_Kd": "lighthouse_land.png"},
    "rock": {"Kd": (0.56, 0.53, 0.50), "Ks": (0.08, 0.08, 0.08), "Ns": 12},
    "white": {"Kd": (0.94, 0.92, 0.88), "Ks": (0.12, 0.12, 0.12), "Ns": 20},
    "red": {"Kd": (0.78, 0.12, 0.10), "Ks": (0.25, 0.22, 0.22), "Ns": 35},
    "stone": {"Kd": (0.66, 0.63, 0.58), "Ks": (0.05, 0.05, 0.05), "Ns": 10},
    "iron": {"Kd": (0.13, 0.14, 0.17), "Ks": (0.45, 0.45, 0.45), "Ns": 45},
    "lamp": {"Kd": (1.0, 0.86, 0.36), "Ks": (1, 1, 0.8), "Ns": 20},
    "door": {"Kd": (0.16, 0.33, 0.36), "Ks": (0.2, 0.2, 0.2), "Ns": 25},
    "pane": {"Kd": (0.20, 0.30, 0.42), "Ks": (0.9, 0.9, 0.9), "Ns": 90},
    "roof": {"Kd": (1, 1, 1), "Ks": (0.1, 0.1, 0.1), "Ns": 15, "map_Kd": "lighthouse_roof.png"},
    "bark": {"Kd": (0.36, 0.25, 0.17), "Ks": (0, 0, 0), "Ns": 1},
    "needles": {"Kd": (0.13, 0.37, 0.22), "Ks": (0.08, 0.1, 0.08), "Ns": 10},
    "fresh_needles": {"Kd": (0.22, 0.47, 0.24), "Ks": (0.08, 0.1, 0.08), "Ns": 10},
    "plank": {"Kd": (0.60, 0.47, 0.33), "Ks": (0.05, 0.05, 0.05), "Ns": 10},
    "hull": {"Kd": (0.14, 0.30, 0.50), "Ks": (0.5, 0.5, 0.5), "Ns": 60},
    "sail": {"Kd": (0.97, 0.94, 0.86), "Ks": (0.03, 0.03, 0.03), "Ns": 5},
    # Last, so that what lies behind glass and water is drawn before them.
    "sea_wall": {"Kd": (0.12, 0.45, 0.62), "Ks": (0.6, 0.6, 0.6), "Ns": 80, "d": 0.6},
    "sea": {"Kd": (1, 1, 1), "Ks": (0.8, 0.8, 0.8), "Ns": 90, "d": 0.72, "map_Kd": "lighthouse_sea.png"},
    "glass": {"Kd": (0.75, 0.90, 0.95), "Ks": (1, 1, 1), "Ns": 150, "d": 0.3},
}


# Land, sea and plinth share their rim: as many corners for each leave no gaps between them.
ROUND = 50


def plinth(mesh):
    mesh.part("plinth")

    def grain(turn, along):
        return 6 * turn, along

    rim = ground.RADIUS
    low = [[(rim - 0.1, -0.72), (rim + 0.46, -0.72)], [(rim + 0.46, -0.72), (rim + 0.52, -0.66), (rim + 0.52, -0.54)],
           [(rim + 0.52, -0.54), (rim + 0.40, -0.47), (rim + 0.30, -0.34), (rim + 0.28, -0.20)]]
    high = [[(rim + 0.34, -0.12), (rim + 0.38, -0.06), (rim + 0.34, 0.0)], [(rim + 0.34, 0.0), (rim, 0.0)]]
    place = HERE.moved(0, -ground.DEPTH, 0)
    for runs in (low, high):
        solids.lathe(mesh, "wood", runs, ROUND, place, grain)
    solids.lathe(mesh, "brass", [[(rim + 0.28, -0.20), (rim + 0.34, -0.20)], [(rim + 0.34, -0.20), (rim + 0.34, -0.12)]],
                 ROUND, place)


def polar(mesh, material, rings, segments, corner):
    """A round surface of quads about a fan of triangles; `corner(x, z)` gives corner tuples."""
    def at(ring, segment):
        return corner(*on_circle(segment % segments / segments, rings[ring]))

    for s in range(segments):
        mesh.face(material, [corner(0, 0), at(0, s), at(0, s + 1)])
        for r in range(len(rings) - 1):
            mesh.face(material, [at(r, s), at(r + 1, s), at(r + 1, s + 1), at(r, s + 1)])


def land(mesh):
    mesh.part("land")

    def corner(x, z):
        return (x, ground.height(x, z), z), ground.from_above(x, z), ground.normal(x, z)

    rings = [0.5, 0.95, 1.3, 1.6, 1.85, 2.1, 2.3, 2.5, 2.7, 2.95, 3.2, 3.5, 3.8, 4.1, ground.RADIUS]
    polar(mesh, "land", rings, ROUND, corner)


def sea(mesh):
    """Ripples in shape and, stronger, in the normals."""
    mesh.part("sea")

    def ripple(x, z):
        return (math.sin(3.1 * x + 1.7 * z) + math.sin(-1.9 * x + 3.7 * z + 1) + math.sin(4.6 * x - 2.2 * z + 2)) / 3

    def corner(x, z):
        calm = min(1.0, (ground.RADIUS - math.hypot(x, z)) / 0.8)
        slope_x = (ripple(x + 0.01, z) - ripple(x - 0.01, z)) / 0.02
        slope_z = (ripple(x, z + 0.01) - ripple(x, z - 0.01)) / 0.02
        bump = unit((-0.045 * slope_x, 1, -0.045 * slope_z))
        return (x, 0.03 * calm * ripple(x, z), z), ground.from_above(x, z), bump

    rings = [1.2, 1.8, 2.2, 2.6, 2.95, 3.3, 3.65, 4.0, ground.RADIUS]
    polar(mesh, "sea", rings, ROUND, corner)
    solids.lathe(mesh, "sea_wall", [[(ground.RADIUS, -ground.DEPTH), (ground.RADIUS, 0.0)]], ROUND)


def rocks(mesh):
    mesh.part("rocks")
    for i, (x, z, size) in enumerate(ground.ROCKS):
        place = HERE.moved(x, max(-0.1, ground.height(x, z)) + 0.05, z).turned(1, 77 * i).scaled(size)

        def dented(p):
            # Every corner of the sphere is pushed in by an amount of its own.
            push = 0.72 + 0.28 * abs(math.sin(12.9898 * p[0] + 78.233 * p[1] + 37.719 * p[2] + i))
            return p[0] * push * 1.15, p[1] * push * 0.9, p[2] * push

        solids.faceted(mesh, "rock", [[dented(p) for p in t] for t in solids.round_triangles(2)
                                      if max(p[1] for p in t) > -0.2], place)


def arch(width, high, pieces=6):
    """A doorway: upright sides under half a circle."""
    half = width / 2
    outline = [(-half, 0.0), (half, 0.0)]
    for i in range(pieces + 1):
        a = math.pi * i / pieces
        outline.append((half * math.cos(a), high - half + half * math.sin(a)))
    return outline


TOWER_FOOT, TOWER_TOP = (0.56, 0.3), (0.37, 3.3)  # radius and height


def tower_radius(high):
    """It tapers quickly at first, then less."""
    t = (high - TOWER_FOOT[1]) / (TOWER_TOP[1] - TOWER_FOOT[1])
    return mix(TOWER_FOOT[0], TOWER_TOP[0], 1 - (1 - t) ** 1.4)


def on_tower(place, degrees, high):
    """A place on the shaft's surface, z pointing out of it."""
    return place.turned(1, degrees).moved(0, high, tower_radius(high) - 0.025)


def tower(mesh):
    place = HERE.moved(ground.TOWER[0], 1.3, ground.TOWER[1])
    for build in (shaft, gallery, lantern, weather_vane):
        mesh.part(build.__name__)
        build(mesh, place)


def shaft(mesh, place):
    solids.lathe(mesh, "stone", [[(0.80, -0.25), (0.74, 0.18)], [(0.74, 0.18), (0.68, 0.24)],
                                 [(0.68, 0.24), (0.5, 0.24)]], 12, place, facets=True)
    bands = 5
    for band in range(bands):
        low, high = (mix(0.24, TOWER_TOP[1], (band + k) / bands) for k in (0, 1))
        run = [(tower_radius(h), h) for h in (low, (low + high) / 2, high)]
        solids.lathe(mesh, "white" if band % 2 else "red", [run], 28, place)
    for degrees, high in ((12, 1.15), (100, 1.7), (12, 2.3), (-75, 2.0)):
        window = on_tower(place, degrees, high)
        solids.extrude(mesh, "white", arch(0.22, 0.34), 0.05, window.moved(0, -0.03, 0), back=False)
        solids.extrude(mesh, "pane", arch(0.15, 0.27), 0.06, window, back=False)
    door = on_tower(place, -8, 0.24)
    solids.extrude(mesh, "stone", arch(0.46, 0.72), 0.06, door, back=False)
    solids.extrude(mesh, "door", arch(0.34, 0.64), 0.08, door, back=False)


def gallery(mesh, place):
    solids.lathe(mesh, "white", [[(0.37, 3.3), (0.40, 3.40), (0.48, 3.49), (0.60, 3.54)]], 28, place)
    solids.cylinder(mesh, "iron", 0.66, 3.54, 3.61, 28, place)
    for post in range(14):
        x, z = on_circle(post / 14, 0.62)
        solids.box(mesh, "iron", 0.025, 0.27, 0.025, place.moved(x, 3.745, z), sides=("front", "back", "left", "right"))
    for high in (3.75, 3.88):
        solids.ring(mesh, "iron", 0.62, 0.018, 28, 3, place.moved(0, high, 0))


def lantern(mesh, place):
    solids.lathe(mesh, "red", [[(0.34, 3.61), (0.34, 3.80)], [(0.36, 3.80), (0.36, 3.84)], [(0.36, 3.84), (0.0, 3.84)]],
                 20, place)
    solids.cylinder(mesh, "iron", 0.05, 3.84, 3.95, 10, place)
    solids.sphere(mesh, "lamp", 0.15, 14, 8, place.moved(0, 4.08, 0))
    for bar in range(10):
        x, z = on_circle(bar / 10, 0.31)
        solids.box(mesh, "iron", 0.025, 0.52, 0.025, place.moved(x, 4.09, z).turned(1, 36 * bar),
                   sides=("front", "back", "left", "right"))
    solids.lathe(mesh, "red", [[(0.30, 4.34), (0.41, 4.34)], [(0.41, 4.34), (0.41, 4.39)],
                               [(0.41, 4.39), (0.36, 4.50), (0.26, 4.60), (0.12, 4.68), (0.06, 4.74)]], 20, place)
    solids.sphere(mesh, "brass", 0.075, 12, 7, place.moved(0, 4.79, 0))
    solids.lathe(mesh, "glass", [[(0.305, 3.84), (0.305, 4.34)]], 10, place, facets=True)


def weather_vane(mesh, place):
    solids.cylinder(mesh, "iron", 0.014, 4.82, 5.25, 6, place)
    vane = [(-0.32, -0.02), (0.14, -0.02), (0.10, -0.09), (0.32, 0.0), (0.10, 0.09), (0.14, 0.02), (-0.20, 0.02),
            (-0.28, 0.10), (-0.40, 0.10), (-0.32, 0.0), (-0.40, -0.10), (-0.34, -0.10)]
    solids.extrude(mesh, "brass", vane, 0.02, place.moved(0, 5.17, 0).turned(1, -25).moved(0, 0, -0.01))


def house(mesh):
    place = HERE.moved(ground.HOUSE[0], 0.60, ground.HOUSE[1]).turned(1, 14)
    mesh.part("house")
    gable = [(-0.42, -0.1), (0.42, -0.1), (0.42, 0.52), (0.0, 0.92), (-0.42, 0.52)]
    # The gables look left and right: the outline's depth runs along x.
    solids.extrude(mesh, "white", gable, 1.3, place.turned(1, 90).moved(0, 0, -0.65))
    slope = math.degrees(math.atan2(0.40, 0.42))
    for side in (1, -1):
        slab = place.moved(0, 0.92, 0).turned(1, 0 if side == 1 else 180).turned(0, slope).moved(0, 0.035, 0.34)
        solids.box(mesh, "roof", 1.5, 0.07, 0.72, slab, texture=[(0, 0), (1, 0), (1, 0.625), (0, 0.625)])
    solids.box(mesh, "stone", 0.17, 0.42, 0.17, place.moved(-0.36, 0.98, -0.12))
    solids.box(mesh, "iron", 0.11, 0.06, 0.11, place.moved(-0.36, 1.2, -0.12))
    front = place.moved(0, 0, 0.42)
    solids.extrude(mesh, "stone", arch(0.30, 0.46), 0.03, front.moved(0.15, -0.02, 0), back=False)
    solids.extrude(mesh, "door", arch(0.22, 0.41), 0.045, front.moved(0.15, -0.02, 0), back=False)
    for x in (-0.38, 0.47):
        window(mesh, front.moved(x, 0.29, 0))
    window(mesh, place.turned(1, 90).moved(0.0, 0.36, 0.65))


def window(mesh, place):
    solids.box(mesh, "stone", 0.24, 0.26, 0.04, place)
    for x in (-0.048, 0.048):
        for y in (-0.055, 0.055):
            solids.box(mesh, "pane", 0.08, 0.09, 0.05, place.moved(x, y, 0), sides=("front",))


def trees(mesh):
    mesh.part("trees")
    for i, (x, z, size) in enumerate(ground.TREES):
        place = HERE.moved(x, ground.height(x, z) - 0.05, z).turned(1, 50 * i).scaled(size)
        solids.lathe(mesh, "bark", [[(0.09, 0.0), (0.07, 0.3)]], 7, place)
        for tier, (radius, low, high) in enumerate(((0.46, 0.25, 0.85), (0.37, 0.60, 1.15), (0.26, 0.92, 1.45))):
            turned = place.turned(1, 17 * tier)
            solids.lathe(mesh, "fresh_needles" if i % 2 else "needles", [[(radius, low), (0.0, high)]], 9, turned)
            solids.disc(mesh, "needles", radius, low, 9, turned, up=False)


def pier(mesh):
    mesh.part("pier")
    (ax, az), (bx, bz) = ground.PIER
    long = math.hypot(bx - ax, bz - az)
    place = HERE.moved(ax, 0.22, az).turned(1, math.degrees(math.atan2(bx - ax, bz - az)))
    count = 15
    for i in range(count):
        z = (i + 0.5) * long / count
        solids.box(mesh, "plank", 0.62, 0.05, 0.78 * long / count, place.moved(0.015 * (-1) ** i, 0, z),
                   sides=("top", "front", "back", "left", "right"))
    for x in (-0.2, 0.2):
        solids.box(mesh, "bark", 0.06, 0.07, long, place.moved(x, -0.06, long / 2))
    for z in (0.45, 0.72, 0.98):
        for x in (-0.33, 0.33):
            solids.cylinder(mesh, "bark", 0.05, -0.9, 0.14, 8, place.moved(x, 0, z * long))


def boat(mesh):
    """Cross-sections along the keel; the deck is one face around all of them."""
    mesh.part("boat")
    place = HERE.moved(1.95, 0.0, 2.75).turned(1, 118).scaled(1.1)
    stations = 9

    def section(s):
        """Half width and keel depth at 0 (stern) to 1 (bow), and the deck's height."""
        return 0.24 * (1 - s**3) ** 0.6 * (0.72 + 0.28 * min(1, 3 * s)), 0.13 * (1 - s**4), 0.15 + 0.1 * s * s

    def corner(station, side):
        s = station / (stations - 1)
        half, deep, deck = section(s)
        # side: 0 left edge of the deck, 4 right edge, along a rounded belly
        a = math.pi * side / 4
        return -half * math.cos(a), deck - (deck + deep) * math.sin(a) ** 0.8, 1.3 * s - 0.65

    def with_normal(station, side):
        along = subtract(corner(min(station + 0.01, stations - 1), side), corner(max(station - 0.01, 0), side))
        round_ = subtract(corner(station, min(side + 0.02, 4)), corner(station, max(side - 0.02, 0)))
        return place.point(corner(station, side)), None, place.direction(unit(cross(round_, along)))

    bow = place.point((0, section(1)[2], 0.65))
    for station in range(stations - 2):
        for side in range(4):
            mesh.face("hull", [with_normal(station, side), with_normal(station, side + 1),
                               with_normal(station + 1, side + 1), with_normal(station + 1, side)])
    for side in range(4):
        a, b = with_normal(stations - 2, side), with_normal(stations - 2, side + 1)
        mesh.face("hull", [a, b, (bow, None, unit(add(a[2], b[2])))])
    solids.polygon(mesh, "hull", [corner(0, side) for side in range(4, -1, -1)], place)
    deck = [corner(s, 4) for s in range(stations - 1)] + [(0, section(1)[2], 0.65)]
    deck += [corner(s, 0) for s in range(stations - 2, -1, -1)]
    solids.polygon(mesh, "plank", [(x, 0.16, z) for x, _, z in deck[::-1]], place)
    solids.cylinder(mesh, "bark", 0.022, 0.1, 1.75, 8, place.moved(0, 0, 0.1))
    sails(mesh, place)


def sails(mesh, place):
    """Two triangles that the wind has filled."""
    rows = 6
    for low_front, low_back, top, belly in (((0, 0.30, 0.06), (0, 0.34, -0.62), (0, 1.68, 0.08), 0.16),
                                            ((0, 0.24, 0.62), (0, 0.34, 0.16), (0, 1.5, 0.12), 0.1)):
        def surface(across, down):
            out = belly * math.sin(math.pi * across) * math.sin(math.pi * down**0.7)
            return add(mix(top, mix(low_front, low_back, across), down), (out, 0, 0))

        def corner(column, row):
            across, down = (column / row if row else 0.5), max(row / rows, 0.01)
            wider = subtract(surface(across + 0.01, down), surface(across - 0.01, down))
            lower = subtract(surface(across, down + 0.005), surface(across, down - 0.005))
            point = surface(across, row / rows)
            return place.point(point), None, place.direction(unit(cross(lower, wider)))

        for row in range(rows):
            for column in range(row + 1):
                left, right = corner(column, row + 1), corner(column + 1, row + 1)
                mesh.face("sail", [corner(column, row), left, right])
                if column < row:
                    mesh.face("sail", [corner(column, row), right, corner(column + 1, row)])


def gulls(mesh):
    """Every wing a dark tip and a face of six corners, bent in at the tail."""
    mesh.part("gulls")
    for x, y, z, turn, size in ((-0.7, 3.9, 0.4, 30, 0.55), (-1.8, 3.3, 1.1, 55, 0.48), (2.7, 4.2, -0.6, -40, 0.5)):
        place = HERE.moved(x, y, z).turned(1, turn).turned(0, 20).scaled(size)
        for side in (1, -1):
            wing = [(0, 0, 0.3), (0.35, 0, 0.16), (0.62, 0, 0.04), (0.58, 0, -0.1), (0.12, 0, -0.12), (0, 0, -0.3)]
            tip = [(0.62, 0, 0.04), (0.95, 0, -0.16), (0.58, 0, -0.1)]
            for material, outline in (("white", wing), ("iron", tip)):
                points = [(side * px, py, pz) for px, py, pz in outline]
                solids.polygon(mesh, material, points if side == 1 else points[::-1], place.turned(2, 22 * side))


def lighthouse():
    mesh = Mesh(3, 3)
    for build in (plinth, land, rocks, tower, house, trees, pier, boat, gulls, sea):
        build(mesh)
    return files("lighthouse", mesh, "A lighthouse on an island", MATERIALS, ground.pictures())
