"""Shapes to build from. All are closed or say where they are open, and all give normals
that tell smooth from hard edges."""

from .vectors import HERE, add, area_vector, on_circle, scale, unit


def polygon(mesh, material, points, place=HERE, texture=None):
    """One flat face of any number of corners; `texture`: a pair for every corner."""
    placed = [place.point(p) for p in points]
    normal = unit(area_vector(placed))
    pairs = texture or [None] * len(placed)
    mesh.face(material, [(p, t, normal) for p, t in zip(placed, pairs)])


def lathe(mesh, material, runs, segments, place=HERE, texture=None, facets=False):
    """A profile turned about the y axis, as quads (triangles where it meets the axis).

    `runs`: lists of (radius, height), going up along the outside. A run is smooth in itself;
    where two runs meet, the edge is hard. `texture(turn, along)` gives the pair for a place
    around and along the whole profile, both 0 to 1. `facets`: hard edges also around.
    Open where the profile ends off the axis.
    """
    total = sum(_step(run, i) for run in runs for i in range(len(run) - 1))
    walked = 0.0
    for run in runs:
        normals = _profile_normals(run)
        for i in range(len(run) - 1):
            ahead = walked + _step(run, i)
            for s in range(segments):
                ring = []
                for turn, j in ((s, i), (s + 1, i), (s + 1, i + 1), (s, i + 1)):
                    radius, height = run[j]
                    if radius == 0 and turn == s + 1:
                        continue
                    x, z = on_circle(turn / segments, radius)
                    across, up = normals[j]
                    nx, nz = on_circle((s + 0.5 if facets or radius == 0 else turn) / segments, across)
                    middle = s + 0.5 if radius == 0 else turn
                    pair = texture(middle / segments, (walked if j == i else ahead) / total) if texture else None
                    ring.append((place.point((x, height, z)), pair, place.direction(unit((nx, up, nz)))))
                mesh.face(material, ring)
            walked = ahead


def _step(run, i):
    return ((run[i + 1][0] - run[i][0]) ** 2 + (run[i + 1][1] - run[i][1]) ** 2) ** 0.5


def _profile_normals(run):
    """(across, up) at every point: the mean of the normals of the steps beside it."""
    steps = [unit((b[1] - a[1], a[0] - b[0])) for a, b in zip(run, run[1:])]
    return [unit(add(before, after)) for before, after in zip(steps[:1] + steps, steps + steps[-1:])]


def rounded(points, pieces):
    """A finer profile through the same points: every step cut in `pieces`, on a Catmull-Rom
    curve."""
    ends = [points[0], *points, points[-1]]
    finer = []
    for a, b, c, d in zip(ends, ends[1:], ends[2:], ends[3:]):
        for piece in range(pieces):
            t = piece / pieces
            weights = (-t + 2 * t**2 - t**3, 2 - 5 * t**2 + 3 * t**3, t + 4 * t**2 - 3 * t**3, t**3 - t**2)
            finer.append(tuple(sum(w * p[k] for w, p in zip(weights, (a, b, c, d))) / 2 for k in (0, 1)))
    return [*finer, points[-1]]


def disc(mesh, material, radius, height, segments, place=HERE, up=True, texture=None):
    """One face of `segments` corners, looking up or down."""
    turns = [s / segments for s in range(segments)]
    if not up:
        turns.reverse()
    points = [(x, height, z) for x, z in (on_circle(t, radius) for t in turns)]
    pairs = [texture(x, z) for x, _, z in points] if texture else None
    polygon(mesh, material, points, place, pairs)


def cylinder(mesh, material, radius, low, high, segments, place=HERE, top_radius=None):
    """Closed, its ends faces of `segments` corners; `top_radius` makes it taper."""
    top = radius if top_radius is None else top_radius
    lathe(mesh, material, [[(radius, low), (top, high)]], segments, place)
    disc(mesh, material, radius, low, segments, place, up=False)
    disc(mesh, material, top, high, segments, place)


def sphere(mesh, material, radius, segments, rings, place=HERE, texture=None):
    # The poles lie exactly on the axis: a radius of "nearly 0" would make slivers.
    run = [(0.0, -radius)]
    for i in range(1, rings):
        out, up = on_circle(0.5 - 0.5 * i / rings, radius)
        run.append((out, up))
    run.append((0.0, radius))
    lathe(mesh, material, [run], segments, place, texture)


def ring(mesh, material, radius, thickness, segments, sides, place=HERE):
    """A torus about the y axis."""
    def corner(turn, side):
        out, up = on_circle(side / sides)
        x, z = on_circle(turn / segments)
        point = ((radius + thickness * out) * x, thickness * up, (radius + thickness * out) * z)
        return place.point(point), None, place.direction((out * x, up, out * z))

    for turn in range(segments):
        for side in range(sides):
            mesh.face(material, [corner(turn, side), corner(turn, side + 1),
                                 corner(turn + 1, side + 1), corner(turn + 1, side)])


# The corners of each side of a box, as signs; from each the picture's lower left, lower
# right, upper right and upper left corner when one looks at it from outside.
BOX_SIDES = {
    "front": ((-1, -1, 1), (1, -1, 1), (1, 1, 1), (-1, 1, 1)),
    "back": ((1, -1, -1), (-1, -1, -1), (-1, 1, -1), (1, 1, -1)),
    "left": ((-1, -1, -1), (-1, -1, 1), (-1, 1, 1), (-1, 1, -1)),
    "right": ((1, -1, 1), (1, -1, -1), (1, 1, -1), (1, 1, 1)),
    "top": ((-1, 1, 1), (1, 1, 1), (1, 1, -1), (-1, 1, -1)),
    "bottom": ((-1, -1, -1), (1, -1, -1), (1, -1, 1), (-1, -1, 1)),
}


def box(mesh, material, width, height, depth, place=HERE, sides=tuple(BOX_SIDES), texture=None):
    """About its middle. `texture`: the four pairs that every side gets; `sides`: leave some
    out where nobody can look."""
    half = (width / 2, height / 2, depth / 2)
    for side in sides:
        corners = [tuple(s * h for s, h in zip(signs, half)) for signs in BOX_SIDES[side]]
        polygon(mesh, material, corners, place, texture)


def extrude(mesh, material, outline, depth, place=HERE, back=True, edge=None):
    """An outline in the x-y plane, counter-clockwise, raised along z. Its ends are one face
    each, however many corners and dents it has. `edge`: another material for the walls."""
    front = [(x, y, depth) for x, y in outline]
    rear = [(x, y, 0.0) for x, y in outline]
    polygon(mesh, material, front, place)
    if back:
        polygon(mesh, material, rear[::-1], place)
    for i in range(len(outline)):
        j = (i + 1) % len(outline)
        polygon(mesh, edge or material, [rear[i], rear[j], front[j], front[i]], place)


def grid(mesh, material, columns, rows, corner, closed=False):
    """Quads over `corner(column, row)`, a corner tuple; `closed`: the last column meets the
    first again. Counter-clockwise when columns run right and rows run up."""
    for row in range(rows):
        for column in range(columns):
            after = (column + 1) % columns if closed else column + 1
            mesh.face(material, [corner(column, row), corner(after, row),
                                 corner(after, row + 1), corner(column, row + 1)])


def faceted(mesh, material, triangles, place=HERE):
    """Triangles of points, each with its own flat normal."""
    for triangle in triangles:
        polygon(mesh, material, triangle, place)


def round_triangles(subdivisions):
    """The faces of an octahedron, each cut in four `subdivisions` times, on the unit sphere."""
    x, y, z = (1.0, 0.0, 0.0), (0.0, 1.0, 0.0), (0.0, 0.0, 1.0)
    faces = []
    for sx in (1, -1):
        for sy in (1, -1):
            for sz in (1, -1):
                a, b, c = scale(x, sx), scale(y, sy), scale(z, sz)
                faces.append((a, b, c) if sx * sy * sz > 0 else (a, c, b))
    for _ in range(subdivisions):
        finer = []
        for a, b, c in faces:
            ab, bc, ca = (unit(add(p, q)) for p, q in ((a, b), (b, c), (c, a)))
            finer += [(a, ab, ca), (ab, b, bc), (ca, bc, c), (ab, bc, ca)]
        faces = finer
    return [list(face) for face in faces]
