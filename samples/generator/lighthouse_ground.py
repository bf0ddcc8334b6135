"""The island under the lighthouse: its shape, and the pictures of land, sea and wood.

The pictures of land and sea are seen from straight above. Contact shadows and the shade in
hollows are painted in, so that the scene looks grounded under any light.
"""

import math

from .picture import Picture, layered_noise, noise
from .vectors import mix, on_circle, scale, smoothstep, unit

RADIUS = 4.3  # of the sea and of the ground below it
DEPTH = 0.75  # of the sea at its rim
TOWER = (1.15, -1.05)
HOUSE = (-1.45, -0.55)
BEACH = (-1.1, 1.55)
WOOD = (-1.95, -1.45)
PIER = ((-1.2, 1.75), (-1.8, 3.55))  # its ends on land and on the water
TREES = ((-2.5, -1.0, 1.0), (-2.15, -1.6, 1.25), (-1.4, -1.95, 1.1), (-0.5, -2.1, 0.9),
         (-0.55, -1.35, 0.75), (-2.4, -0.2, 0.8))  # x, z, size
ROCKS = ((2.6, 0.2, 0.42), (2.3, 0.95, 0.3), (3.15, -0.75, 0.34), (0.6, 2.35, 0.26), (1.2, 2.0, 0.4),
         (-3.1, 1.1, 0.3))
PATH = ((-1.2, 1.7), (-1.15, 0.95), (-1.0, 0.35), (-0.2, 0.15), (0.55, -0.1), (0.95, -0.4))


def height(x, z):
    """Of the ground above the sea, which lies at 0."""
    rough = layered_noise(0.9 * x + 20, 0.9 * z + 20, 4, 11) - 0.5
    # A bay in front on the left, a headland on the right.
    shore = 2.85 + 0.5 * math.sin(2 * math.atan2(x, z) + 0.6) + 1.0 * rough
    from_middle = math.hypot(x + 0.1, (z + 0.2) * 1.12)
    ground = mix(-DEPTH, 0.62, smoothstep(shore + 1.0, shore - 1.5, from_middle)) + 0.3 * rough
    cliff = smoothstep(1.95, 0.95, math.hypot(x - TOWER[0] - 0.12, z - TOWER[1]) + 0.9 * rough)
    ground = mix(ground, 1.3 + 0.2 * rough, cliff)
    ground = mix(ground, 0.45, 0.9 * smoothstep(1.25, 0.5, _distance(x, z, WOOD)))
    ground = mix(ground, 0.13, 0.9 * smoothstep(1.0, 0.35, _distance(x, z, BEACH)))
    ground = mix(ground, 1.32, smoothstep(1.05, 0.75, _distance(x, z, TOWER)))
    ground = mix(ground, 0.62, smoothstep(1.25, 0.75, _distance(x, z, HOUSE)))
    return mix(ground, -DEPTH, smoothstep(RADIUS - 0.7, RADIUS - 0.1, math.hypot(x, z)))


def normal(x, z, reach=0.05):
    across = height(x + reach, z) - height(x - reach, z)
    along = height(x, z + reach) - height(x, z - reach)
    return unit((-across, 2 * reach, -along))


def _distance(x, z, place):
    return math.hypot(x - place[0], z - place[1])


def _distance_to_line(x, z, line):
    best = 1e9
    for (ax, az), (bx, bz) in zip(line, line[1:]):
        dx, dz = bx - ax, bz - az
        t = min(1, max(0, ((x - ax) * dx + (z - az) * dz) / (dx * dx + dz * dz)))
        best = min(best, math.hypot(x - ax - t * dx, z - az - t * dz))
    return best


def from_above(x, z):
    """Where the pictures of land and sea show a place."""
    return 0.5 + x / (2 * RADIUS), 0.5 - z / (2 * RADIUS)


def _place(u, v):
    return (2 * u - 1) * RADIUS, (1 - 2 * v) * RADIUS


class Field:
    """A function of the place, sampled once on a grid: painting asks too often for more."""

    def __init__(self, cells, function):
        self.cells = cells
        self.rows = [[function(*_place(i / cells, j / cells)) for i in range(cells + 1)] for j in range(cells + 1)]

    def at(self, u, v):
        x, y = u * self.cells, v * self.cells
        i, j = min(self.cells - 1, int(x)), min(self.cells - 1, int(y))
        low = mix(self.rows[j][i], self.rows[j][i + 1], x - i)
        high = mix(self.rows[j + 1][i], self.rows[j + 1][i + 1], x - i)
        return mix(low, high, y - j)


def _open_sky(heights, x, z):
    """How much of the sky a place of the ground sees, 0 to 1."""
    here = heights.at(*from_above(x, z))
    seen = 0.0
    for direction in range(10):
        dx, dz = on_circle(direction / 10)
        slope = 0.0
        for away in (0.2, 0.4, 0.8, 1.3):
            u, v = from_above(x + dx * away, z + dz * away)
            if 0 <= u <= 1 and 0 <= v <= 1:
                slope = max(slope, (heights.at(u, v) - here) / away)
        seen += 1 - math.sin(math.atan(slope))
    return seen / 10


def _contact_shadow(x, z):
    """What stands on the ground darkens it around its foot."""
    dark = 0.62 * smoothstep(1.25, 0.55, _distance(x, z, TOWER))
    dark = max(dark, 0.6 * smoothstep(1.15, 0.5, _distance(x, z, HOUSE)))
    for tx, tz, size in TREES:
        dark = max(dark, 0.55 * smoothstep(0.62 * size, 0.1, math.hypot(x - tx, z - tz)))
    for rx, rz, size in ROCKS:
        dark = max(dark, 0.5 * smoothstep(1.5 * size, 0.7 * size, math.hypot(x - rx, z - rz)))
    return 1 - dark


def land_picture(heights):
    steepness = Field(96, lambda x, z: 1 - normal(x, z)[1])
    open_sky = Field(72, lambda x, z: _open_sky(heights, x, z))

    def colour(u, v):
        x, z = _place(u, v)
        high = heights.at(u, v)
        fine = noise(11 * x, 11 * z, 31)
        coarse = layered_noise(2.1 * x, 2.1 * z, 3, 33)
        ripples = 0.5 + 0.5 * math.sin(26 * (z + 0.25 * math.sin(2 * x)) + 4 * coarse)
        sand = scale(mix((0.90, 0.80, 0.58), (0.84, 0.72, 0.50), ripples), 0.94 + 0.1 * fine)
        sand = mix(sand, (0.42, 0.58, 0.56), smoothstep(0.0, -0.6, high))
        blades = noise(22 * x, 22 * z, 37)
        grass = mix((0.38, 0.57, 0.21), (0.53, 0.67, 0.27), smoothstep(0.3, 0.7, coarse))
        grass = scale(grass, 0.82 + 0.18 * fine + 0.2 * blades)
        rock = scale(mix((0.52, 0.49, 0.46), (0.66, 0.62, 0.57), coarse), 0.82 + 0.2 * fine + 0.16 * blades)
        result = mix(sand, grass, smoothstep(0.20, 0.28, high + 0.25 * (coarse - 0.5)))
        result = mix(result, rock, smoothstep(0.22, 0.32, steepness.at(u, v) + 0.16 * (fine - 0.5)))
        if high > 0.1:
            worn = _distance_to_line(x, z, PATH) + 0.06 * (fine - 0.5)
            result = mix((0.80, 0.69, 0.50), result, smoothstep(0.13, 0.19, worn))
        light = mix(0.35, 1.0, smoothstep(0.25, 0.95, open_sky.at(u, v)))
        return scale(result, light * _contact_shadow(x, z))

    return Picture(384, 384).paint(colour, 1)


def sea_picture(heights):
    """Turquoise over the shallows, blue over the deep, foam where it meets the shore."""
    def colour(u, v):
        x, z = _place(u, v)
        depth = -heights.at(u, v)
        wobble = layered_noise(1.6 * x, 1.6 * z, 3, 41) - 0.5
        water = mix((0.32, 0.74, 0.72), (0.06, 0.36, 0.58), smoothstep(0.05, 0.7, depth + 0.25 * wobble))
        crest = layered_noise(1.3 * x + 0.6 * z, 3.4 * z - 0.9 * x, 2, 45)
        water = mix(water, (0.45, 0.75, 0.80), 0.3 * smoothstep(0.07, 0.0, abs(crest - 0.5)))
        foam = smoothstep(0.13, 0.03, abs(depth + 0.10 * wobble))
        foam = max(foam, 0.75 * smoothstep(0.035, 0.01, abs(depth - 0.26 + 0.16 * wobble)))
        for rx, rz, size in ROCKS:
            away = math.hypot(x - rx, z - rz) + 0.15 * wobble
            foam = max(foam, 0.9 * smoothstep(0.13, 0.04, abs(away - 1.02 * size)) * smoothstep(0.0, 0.1, depth))
        return mix(water, (0.95, 0.98, 0.98), foam)

    return Picture(320, 320).paint(colour, 1)


def wood_picture():
    """Dark, with a grain that runs along u and repeats."""
    def colour(u, v):
        grain = 7 * v + 1.2 * noise(4 * u, 6 * v, 51, 4)
        streaks = noise(20 * u, 70 * v, 53, 20)
        tone = 0.5 + 0.35 * math.sin(2 * math.pi * grain) + 0.4 * (streaks - 0.5)
        return mix((0.30, 0.17, 0.09), (0.47, 0.29, 0.16), tone)

    return Picture(192, 96).paint(colour)


def roof_picture():
    """Rows of rounded tiles, every other row set off by half a tile."""
    def colour(u, v):
        row = math.floor(8 * v)
        across, down = (10 * u + 0.5 * (row % 2)) % 1 - 0.5, 1 - (8 * v) % 1
        tile = noise(math.floor(10 * u + 0.5 * (row % 2)) % 10 * 3.7, row * 5.3, 61)
        edge = down - 0.98 * math.sqrt(max(0.0, 1 - 2.6 * across * across))
        shine = 1 - 0.5 * abs(across) - 0.25 * smoothstep(0.0, 0.5, 1 - down)
        base = mix((0.66, 0.27, 0.17), (0.82, 0.42, 0.26), tile)
        return scale(base, shine * mix(1.0, 0.5, smoothstep(-0.04, 0.06, edge)))

    return Picture(160, 128).paint(colour)


def pictures():
    heights = Field(180, height)
    return {"lighthouse_land.png": land_picture(heights), "lighthouse_sea.png": sea_picture(heights),
            "lighthouse_wood.png": wood_picture(), "lighthouse_roof.png": roof_picture()}
