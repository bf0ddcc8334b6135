"""Collects polygons and writes them as OBJ and MTL text."""


def number(value, digits):
    text = f"{value:.{digits}f}"
    if "." in text:
        text = text.rstrip("0").rstrip(".")
    return "0" if text in ("-0", "") else text


class Table:
    """The distinct value lines of one keyword, in order of first use."""

    def __init__(self, digits):
        self.digits = digits
        self.places = {}

    def place(self, row):
        """The place of the row, from 0; None for no row."""
        if row is None:
            return None
        text = " ".join(number(value, self.digits) for value in row)
        return self.places.setdefault(text, len(self.places))

    def lines(self, keyword):
        return [f"{keyword} {text}" for text in self.places]

    def __len__(self):
        return len(self.places)


class Part:
    """One "o" of the file, with value tables of its own."""

    def __init__(self, name, digits, texture_digits):
        self.name = name
        self.tables = (Table(digits), Table(texture_digits), Table(3))  # v, vt, vn
        self.faces = []  # (material, [(v, vt, vn) or with None for an absent component])


class Mesh:
    """Polygons in named parts. A corner is a tuple (point, texture coordinate, normal), the
    last two of which may be None."""

    def __init__(self, digits=4, texture_digits=4):
        self.digits = digits
        self.texture_digits = texture_digits
        self.parts = []

    def part(self, name):
        """What follows belongs to this part."""
        self.parts.append(Part(name, self.digits, self.texture_digits))

    def face(self, material, corners):
        """Corners counter-clockwise, seen from the outside."""
        part = self.parts[-1]
        part.faces.append((material, [tuple(map(Table.place, part.tables, c)) for c in corners]))

    def obj(self, title, library=None, relative=False):
        """The file's text. `relative`: every part's values just before its faces, and
        negative indices; otherwise all values come first."""
        head = [f"# {title}", "# Made by make_samples.py."]
        if library:
            head += ["", f"mtllib {library}"]
        if relative:
            return "\n".join(head + self._relative_lines()) + "\n"
        return "\n".join(head + self._absolute_lines()) + "\n"

    def _absolute_lines(self):
        lines = []
        for which, keyword in enumerate(("v", "vt", "vn")):
            for part in self.parts:
                lines += part.tables[which].lines(keyword)
        first = (1, 1, 1)
        for part in self.parts:
            lines += self._face_lines(part, first)
            first = tuple(f + len(t) for f, t in zip(first, part.tables))
        return lines

    def _relative_lines(self):
        lines = []
        for part in self.parts:
            for table, keyword in zip(part.tables, ("v", "vt", "vn")):
                lines += table.lines(keyword)
            lines += self._face_lines(part, tuple(-len(table) for table in part.tables))
        return lines

    @staticmethod
    def _face_lines(part, first):
        lines = ["", f"o {part.name}"]
        current = None
        for material, corners in part.faces:
            if material not in (None, current):
                current = material
                lines.append(f"usemtl {material}")
            words = ["/".join("" if p is None else str(f + p) for f, p in zip(first, corner)).rstrip("/")
                     for corner in corners]
            lines.append("f " + " ".join(words))
        return lines


def mtl(title, materials):
    """The text of a material library. `materials`: name to {keyword: value}, where a value
    is a number, a colour or the name of a picture."""
    lines = [f"# {title}", "# Made by make_samples.py."]
    for name, values in materials.items():
        lines += ["", f"newmtl {name}"]
        for keyword, value in values.items():
            if isinstance(value, tuple):
                value = " ".join(number(v, 3) for v in value)
            lines.append(f"{keyword} {value}")
    return "\n".join(lines) + "\n"
