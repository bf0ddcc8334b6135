"""Reads sample files back and looks for what the generator must never write."""

from .vectors import area_vector, dot


def problems(name, text):
    """One line for everything wrong in the text of an OBJ file."""
    values = {"v": [], "vt": [], "vn": []}
    found = []
    for number, line in enumerate(text.splitlines(), 1):
        words = line.split()
        if not words or words[0].startswith("#"):
            continue
        if words[0] in values:
            values[words[0]].append(tuple(map(float, words[1:])))
        elif words[0] == "f":
            found += [f"{name}:{number}: {what}" for what in _face_problems(words[1:], values)]
    return found


def _face_problems(corners, values):
    if len(corners) < 3:
        return [f"a face of {len(corners)} corners"]
    picked = {keyword: [] for keyword in values}
    for corner in corners:
        for keyword, word in zip(("v", "vt", "vn"), corner.split("/")):
            if not word:
                continue
            index, count = int(word), len(values[keyword])
            if not (1 <= index <= count or -count <= index <= -1):
                return [f"{keyword} index {index}, but there are {count}"]
            picked[keyword].append(values[keyword][index - 1 if index > 0 else index])
    if len(set(picked["v"])) < len(picked["v"]):
        return ["a face that meets a position twice"]
    area = area_vector(picked["v"])
    if dot(area, area) == 0:
        return ["a face without area"]
    if any(dot(area, normal) <= 0 for normal in picked["vn"]):
        return ["a face wound against its normals"]
    if len(corners) == 4 and _is_concave(picked["v"], area):
        return ["a concave quad: it may be split along the wrong diagonal"]
    return []


def _is_concave(ring, area):
    """Whether one corner turns the other way; bent quads of a curved surface do not."""
    return any(dot(area_vector([ring[i - 1], ring[i], ring[(i + 1) % 4]]), area) < 0 for i in range(4))
