"""Vectors as plain tuples, and the placing of shapes."""

import math


def add(a, b):
    return tuple(x + y for x, y in zip(a, b))


def subtract(a, b):
    return tuple(x - y for x, y in zip(a, b))


def scale(a, factor):
    return tuple(x * factor for x in a)


def dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def cross(a, b):
    return (a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0])


def length(a):
    return math.sqrt(dot(a, a))


def unit(a):
    size = length(a)
    return scale(a, 1 / size) if size > 0 else a


def mix(a, b, t):
    """From a (t = 0) to b (t = 1); numbers or tuples."""
    if isinstance(a, tuple):
        return tuple(x + (y - x) * t for x, y in zip(a, b))
    return a + (b - a) * t


def smoothstep(low, high, x):
    """0 up to `low`, 1 from `high` on, smooth between; `low` may be the greater one."""
    t = min(1.0, max(0.0, (x - low) / (high - low)))
    return t * t * (3 - 2 * t)


def on_circle(turn, radius=1.0):
    """(x, z) after `turn` turns, counter-clockwise seen from above, from +Z on."""
    angle = 2 * math.pi * turn
    return radius * math.sin(angle), radius * math.cos(angle)


def area_vector(points):
    """Of a polygon: along its normal, as long as its area."""
    total = (0.0, 0.0, 0.0)
    for a, b in zip(points, points[1:] + points[:1]):
        total = add(total, cross(a, b))
    return scale(total, 0.5)


class Placement:
    """Where a shape stands: turned, scaled evenly, then moved. The axes stay right-handed."""

    def __init__(self, origin=(0, 0, 0), axes=((1, 0, 0), (0, 1, 0), (0, 0, 1)), size=1.0):
        self.origin = origin
        self.axes = axes
        self.size = size

    def direction(self, d):
        x, y, z = self.axes
        return tuple(x[i] * d[0] + y[i] * d[1] + z[i] * d[2] for i in range(3))

    def point(self, p):
        return add(self.origin, scale(self.direction(p), self.size))

    def moved(self, x, y, z):
        """By a way that is given in this placement's own axes."""
        return Placement(self.point((x, y, z)), self.axes, self.size)

    def scaled(self, factor):
        return Placement(self.origin, self.axes, self.size * factor)

    def turned(self, axis, degrees):
        """About its own axis 0 (x), 1 (y) or 2 (z), by the right-hand rule."""
        a = math.radians(degrees)
        first, second = (axis + 1) % 3, (axis + 2) % 3
        axes = list(self.axes)
        axes[first] = add(scale(self.axes[first], math.cos(a)), scale(self.axes[second], math.sin(a)))
        axes[second] = add(scale(self.axes[second], math.cos(a)), scale(self.axes[first], -math.sin(a)))
        return Placement(self.origin, tuple(axes), self.size)


HERE = Placement()
