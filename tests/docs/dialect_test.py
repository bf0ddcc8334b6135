#!/usr/bin/env python3
"""Loads every row of the tables of docs/formats.md, and compares with what the row says.

    dialect_test.py ROOT ORV

A row's first column names its case below: the model, perhaps its library "a.mtl", and what "orv dump"
shows of it. The last column is compared with what "orv check" finds.
"""
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

HEADER = "| what you write | what it does | what you may have expected | told as |"

TRIANGLE = "v 0 0 0\nv 1 0 0\nv 0 1 0\n"
OTHERS = "v 1 0 0\nv 0 1 0\n"  # behind the first position of a triangle
FACE = "f 1 2 3\n"
SQUARE = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\n"
# An arrow that points to the right: concave at the second corner, where a fan would go astray.
ARROW = "v 0 0 0\nv 1 1 0\nv 0 2 0\nv 3 1 0\nv 3 0 0\n"
RED = "newmtl red\nKd 1 0 0\n"


def model(obj, mtl=None, path="a.mtl", **expected):
    """A case. Of the names of `expected`, Loaded has the meanings."""
    return obj, mtl, path, expected


def first_position(line, x, y, z):
    return model(line + "\n" + OTHERS + FACE, position0=[x, y, z], triangles=1)


def material(lines, **expected):
    """A triangle of the material "red", whose section has these lines."""
    return model("mtllib a.mtl\n" + TRIANGLE + "usemtl red\n" + FACE,
                 "newmtl red\n" + lines + "\n", triangles=1, **expected)


CASES = {
    "`v 1 2 3 0.5`": first_position("v 1 2 3 0.5", 1, 2, 3),
    "`v 1 2 3 1 0 0`": first_position("v 1 2 3 1 0 0", 1, 2, 3),
    "`v 1 2`": first_position("v 1 2", 1, 2, 0),
    "`v 0,5 0 0`": first_position("v 0,5 0 0", 0, 0, 0),
    "`v 1e 0x10 1f`": first_position("v 1e 0x10 1f", 0, 0, 0),
    "`v nan inf 0`": model("v nan inf 0\n" + OTHERS + FACE, position0=["nan", "inf", 0],
                           normal0=["nan"] * 3, triangles=1),
    "`v 1 0 #0`": first_position("v 1 0 #0", 1, 0, 0),
    "`vt 0.5 0.25 0.1`": model(TRIANGLE + "vt 0.5 0.25 0.1\nf 1/1 2/1 3/1\n",
                               texcoords=[[0.5, 0.25]] * 3),
    "`vn 0 0 2`": model(TRIANGLE + "vn 0 0 2\nf 1//1 2//1 3//1\n", normals=[[0, 0, 2]] * 3),
    "`V 9 9 9`": model("V 9 9 9\n" + TRIANGLE + FACE, position0=[0, 0, 0], triangles=1),

    "`f 1 2 3 4`": model(SQUARE + "f 1 2 3 4\n", indices=[0, 1, 3, 1, 2, 3]),
    "`f 1 2 3 4 5`": model(ARROW + "f 1 2 3 4 5\n", triangles=3, area=3.5),
    "`f 1/1/1 2/1/1 3/1/1`": model(TRIANGLE + "vt 0.5 0.25\nvn 0 0 1\nf 1/1/1 2/1/1 3/1/1\n",
                                   normals=[[0, 0, 1]] * 3, texcoords=[[0.5, 0.25]] * 3),
    "`f 1//1 2//1 3//1`": model(TRIANGLE + "vn 0 0 1\nf 1//1 2//1 3//1\n",
                                normals=[[0, 0, 1]] * 3, texcoords=None),
    "`f 1//1 2//1 3`": model(TRIANGLE + "vn 0 0 1\nf 1//1 2//1 3\n",
                             normals=[[0, 0, 1], [0, 0, 1], [0, 0, 0]]),
    "`f -4 -3 -2`": model(TRIANGLE + "v 9 9 9\nf -4 -3 -2\n",
                          positions=[[0, 0, 0], [1, 0, 0], [0, 1, 0]]),
    "`f 1 2 9`": model("v 1 1 1\n" + OTHERS + "f 1 2 9\n", triangles=1,
                       positions=[[1, 1, 1], [1, 0, 0], [0, 0, 0]]),
    "`f 0 2 3`": model("v 1 1 1\n" + OTHERS + "f 0 2 3\n", triangles=1,
                       positions=[[0, 0, 0], [1, 0, 0], [0, 1, 0]]),
    "`f 1 2 3` before its last `v`": model("v 0 0 0\n" + FACE + OTHERS, triangles=1,
                                           positions=[[0, 0, 0], [1, 0, 0], [0, 1, 0]]),
    "`f 1 2 3` before the first `v`": model(FACE + TRIANGLE, triangles=0),
    "`f 1/1 2/1 3/1` after faces without `vt` before the first `vt`": model(
        TRIANGLE + FACE + "v 1 1 0\nvt 0.5 0.25\nf 2/1 4/1 3/1\n", triangles=2,
        texcoords=[[0.5, 0.25]] * 3 + [[0, 0]] * 3),
    "`f 1/1/1/7 2 3`": model(TRIANGLE + "vt 0.5 0.25\nvn 0 0 1\nf 1/1/1/7 2/1/1 3/1/1\n",
                             triangles=1, normals=[[0, 0, 1]] * 3),
    "`f 1 2 3 #4`": model(SQUARE + "f 1 2 3 #4\n", triangles=1),
    "`f 1 2 x`": model(TRIANGLE + "f 1 2 x\n" + FACE, triangles=1),
    "`f 1 2 \\` and `3`": model(TRIANGLE + "f 1 2 \\\n3\n", triangles=0),
    "`f 1 2`": model(TRIANGLE + "f 1 2\n", triangles=0,
                     stderr="orv: warning: Cannot triangulate a polygon with fewer than 3 vertices"),
    "`f 1 2 1 2 1`": model(TRIANGLE + "f 1 2 1 2 1\n", triangles=0,
                           stderr="orv: warning: Unable to triangulate polygon."),
    "`f 1 1 2`": model(TRIANGLE + "f 1 1 2\n", triangles=1, area=0),
    "no `vn` in the file": model(TRIANGLE + FACE, normals=[[0, 0, -1]] * 3),
    "one `vn` in the file": model(TRIANGLE + "vn 0 0 1\nf 1//1 2//1 3//1\nf 1 2 3\n",
                                  normals=[[0, 0, 1]] * 3 + [[0, 0, 0]] * 3),
    "`o house`, `g roof`, `s 1`": model(
        TRIANGLE + "o house\ng roof\ns 1\n" + FACE + "o barn\ng wall\n" + FACE,
        commands=[("<default>", 6)], objects=[""]),
    "`l 1 2`, `p 1`": model(TRIANGLE + FACE + "l 1 2\np 1\n", triangles=1),

    "no `usemtl`": model(TRIANGLE + FACE, commands=[("<default>", 3)]),
    "`usemtl gone`, which no library defines": model(
        TRIANGLE + "usemtl gone\n" + FACE, triangles=0),
    "`usemtl red` before the `mtllib` that defines it": model(
        TRIANGLE + "usemtl red\n" + FACE + "mtllib a.mtl\nusemtl red\n" + FACE, RED,
        commands=[("red", 3)]),
    "`usemtl red paint`": model("mtllib a.mtl\n" + TRIANGLE + "usemtl red paint\n" + FACE,
                                "newmtl red paint\n", commands=[("red", 3)]),
    "`usemtl`": model("mtllib a.mtl\n" + TRIANGLE + "usemtl\n" + FACE, RED, triangles=0),
    "`mtllib a.mtl b.mtl`": model("mtllib a.mtl b.mtl\n" + TRIANGLE + "usemtl red\n" + FACE, RED,
                                  commands=[("red", 3)]),
    "`mtllib gone.mtl`": model("mtllib gone.mtl\n" + TRIANGLE + FACE,
                               stderr="orv: Failed to load MTL file 'gone.mtl': no such file."),
    "`mtllib my paint.mtl`": model("mtllib my paint.mtl\n" + TRIANGLE + FACE, RED, "my paint.mtl",
                                   stderr="orv: Failed to load MTL file 'my': no such file."),
    "`mtllib sub/a.mtl`": model("mtllib sub/a.mtl\n" + TRIANGLE + "usemtl red\n" + FACE,
                                "newmtl red\nmap_Kd wood.png\n", "sub/a.mtl",
                                textures={"map_Kd": "sub/wood.png"}),

    "`Kd 2 -1 0.5`": material("Kd 2 -1 0.5", values={"Kd": [2, -1, 0.5], "d": [1]}),
    "`Kd 0.5`": material("Kd 0.5", values={"d": [1]}),
    "`Kd spectral file.rfl`": material("Kd spectral file.rfl", values={"d": [1]}),
    "`Ns 10x`": material("Ns 10x", values={"Ns": [10], "d": [1]}),
    "`kd 1 0 0`": material("kd 1 0 0", values={"d": [1]}),
    "`d 0`": material("d 0", values={"d": [0]}),
    "`Tr 0.3`": material("Tr 0.3", values={"d": [1]}),
    "`d -halo 0.5`": material("d -halo 0.5", values={"d": [1]}),
    "`map_Kd wood.png`": material("map_Kd wood.png", textures={"map_Kd": "wood.png"}),
    "`map_Kd my wood.png`": material("map_Kd my wood.png", textures={"map_Kd": "my"}),
    "`map_Kd -s 2 2 1 wood.png`": material("map_Kd -s 2 2 1 wood.png",
                                           textures={"map_Kd": "-s"}),
    "`map_Kd wood#1.png`": material("map_Kd wood#1.png", textures={"map_Kd": "wood"}),
    "`map_Kd C:\\tex\\wood.png`": material("map_Kd C:\\tex\\wood.png",
                                           textures={"map_Kd": "C:\\tex\\wood.png"}),
    "`newmtl red` a second time": material("Kd 1 0 0\nnewmtl red\nKd 0 1 0",
                                           values={"Kd": [1, 0, 0], "d": [1]}),
    "`Kd 1 0 0` before the first `newmtl`": model(
        "mtllib a.mtl\n" + TRIANGLE + "usemtl red\n" + FACE, "Kd 1 0 0\nnewmtl red\n",
        values={"d": [1]}),
    "`Ke`, `illum`, `Ni`, `map_Bump`, `norm`, `Pr`": material(
        "Ke 1 1 1\nillum 2\nNi 1\nmap_Bump wood.png\nnorm wood.png\nPr 0.5",
        values={"d": [1]}, textures={}),
}

# What the smallest files have beside what a row is about.
BESIDE = {"positions-unused", "corners-coincide", "texture-missing", "name-cut-at-blank",
          "corner-without-texcoord", "material-undefined"}


class Loaded:
    """What "orv dump" shows of a model. Values of attributes stand corner by corner."""

    def __init__(self, document, folder):
        self.indices = document["indices"]
        self.triangles = len(self.indices) // 3
        self.positions = self._corners(document, "va_Vertex")
        self.normals = self._corners(document, "va_Normal")
        self.texcoords = self._corners(document, "va_TexCoord")
        if self.triangles:
            self.position0, self.normal0 = self.positions[0], self.normals[0]
        self.commands, self.objects = [], []
        for bundle in document["bundles"]:
            self.commands += [(each["material"], each["count"]) for each in bundle["commands"]]
            self.objects += [each["object"] for each in bundle["commands"]]
            record = bundle["materials"][0]
            self.values = record["values"]
            self.textures = {member: os.path.relpath(path, folder)
                             for member, path in record["textures"].items()}

    def _corners(self, document, name):
        if name not in document["attributes"]:
            return None
        attribute = document["attributes"][name]
        size, values = attribute["components"], attribute["values"]
        return [values[index * size:(index + 1) * size] for index in self.indices]

    @property
    def area(self):
        """Of triangles in the plane z = 0; signed, so that triangles which overlap are noticed."""
        total = 0
        for i in range(0, len(self.positions), 3):
            (ax, ay, _), (bx, by, _), (cx, cy, _) = self.positions[i:i + 3]
            total += abs((bx - ax) * (cy - ay) - (cx - ax) * (by - ay)) / 2
        return total


def orv(command, folder, *arguments):
    environment = dict(os.environ, LC_ALL="C.UTF-8")
    return subprocess.run([command, *arguments], cwd=folder, env=environment, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)


def differences(command, case, told):
    """Sentences on how a case differs from what its row says."""
    obj, mtl, path, expected = case
    with tempfile.TemporaryDirectory() as folder:
        folder = os.path.realpath(folder)
        pathlib.Path(folder, "m.obj").write_text(obj)
        if mtl is not None:
            os.makedirs(os.path.join(folder, os.path.dirname(path)), exist_ok=True)
            pathlib.Path(folder, path).write_text(mtl)
        result = orv(command, folder, "dump", "m.obj")
        stderr = result.stderr.strip().replace(folder + "/", "")
        found = []
        if stderr != expected.get("stderr", ""):
            found.append(f"stderr is {stderr!r}")
        if result.returncode == 0:
            loaded = Loaded(json.loads(result.stdout), folder)
            found += [f"{name} is {getattr(loaded, name)!r}, not {value!r}"
                      for name, value in expected.items()
                      if name != "stderr" and getattr(loaded, name) != value]
        elif "Failed to load" not in expected.get("stderr", ""):
            found.append(f"exit status {result.returncode}")
        report = json.loads(orv(command, folder, "check", "--json", "m.obj").stdout)
        codes = {finding["code"] for finding in report["models"][0]["findings"]}
        if not told <= codes or not codes - told <= BESIDE:
            found.append(f"orv check tells {sorted(codes)}, not {sorted(told)}")
        return found


def rows(page):
    """First and last column of all rows under HEADER."""
    found = {}
    inside = False
    for line in page.read_text().split("\n"):
        inside = line == HEADER or (inside and line.startswith("|"))
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if inside and line != HEADER and not line.startswith("|---"):
            if len(cells) != 4 or cells[0] in found:
                sys.exit(f"not four columns, or a row twice: {line}")
            found[cells[0]] = set(re.findall(r"`([^`]+)`", cells[3]))
    return found


def main():
    table = rows(pathlib.Path(sys.argv[1]) / "docs/formats.md")
    problems = [f"no case for the row: {row}" for row in table if row not in CASES]
    problems += [f"no row for the case: {row}" for row in CASES if row not in table]
    for row, told in table.items():
        if row in CASES:
            problems += [f"{row}: {text}" for text in differences(sys.argv[2], CASES[row], told)]
    if problems:
        sys.exit("\n".join(problems))
    print(f"{len(table)} rows")


if __name__ == "__main__":
    main()
