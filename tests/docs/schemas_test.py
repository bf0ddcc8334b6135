#!/usr/bin/env python3
"""Holds what orv prints as JSON against the schemas of the documents.

    schemas_test.py ROOT ORV

Every sample goes through each command, and so do models that are made to have what samples lack. The
schemas are used twice: as they stand, where members may be added; and closed, so that a member which
a schema does not name is noticed here.
"""
import copy
import json
import pathlib
import subprocess
import sys
import tempfile

import jsonschema

# Command to schema.
FORMATS = {
    ("info", "--json"): "info.schema.json",
    ("dump",): "dump.schema.json",
    ("check", "--json"): "check.schema.json",
}

# What samples lack: nothing to draw, numbers that are none in JSON, every reason not to draw, and no
# library at all.
MODELS = {
    "empty": "",
    "points": "v 0 0 0\n",
    "no positions": "f 1 2 3\n",
    "odd numbers": "v nan inf -inf\nv 1e-45 3.4e38 0.1\nv 0 1 0\nf 1 2 3\n",
    "not drawn": "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2\nusemtl none\nf 1 2 3\n"
                 "mtllib paint.mtl\nusemtl red\nf 1 2 3\n"
                 "v 2 2 0\nv 3 0 0\nf 1 2 1 2 1\n",
    "odd names": "mtllib paint.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl \"\\\u00e9\nf 1 2 3\n",
}
LIBRARY = "newmtl red\nKd 1 0 nan\nmap_Kd none.png\nnewmtl \"\\\u00e9\nd 0.5\n"

# Members that a caller may count on. A schema that allowed their absence would pass everything.
BROKEN = {
    "info.schema.json": lambda document: document["file"].pop("faces"),
    "dump.schema.json": lambda document: document["indices"].append(-1),
    "check.schema.json": lambda document: document.update(format=2),
}


def closed(schema):
    """A copy in which objects with named members have no others."""
    if isinstance(schema, list):
        return [closed(part) for part in schema]
    if not isinstance(schema, dict):
        return schema
    result = {key: closed(value) for key, value in schema.items()}
    if isinstance(schema.get("properties"), dict) and "type" in schema:
        result.setdefault("additionalProperties", False)
    return result


def output_of(orv, command, model):
    result = subprocess.run([orv, command[0], *command[1:], str(model)], check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.returncode not in (0, 1):
        sys.exit(f"orv {' '.join(command)} {model}: {result.returncode}\n{result.stderr.decode()}")
    # "NaN" and "Infinity" are what Python reads, and JSON does not have.
    return json.loads(result.stdout, parse_constant=lambda word: sys.exit(f"{model}: {word}"))


def main():
    root, orv = pathlib.Path(sys.argv[1]), sys.argv[2]
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "paint.mtl").write_text(LIBRARY, encoding="utf-8")
        models = sorted((root / "samples").rglob("*.obj"))
        for name, text in MODELS.items():
            models.append(pathlib.Path(folder) / f"{name}.obj")
            models[-1].write_text(text, encoding="utf-8")

        problems = []
        for command, name in FORMATS.items():
            schema = json.loads((root / "docs/schemas" / name).read_text())
            jsonschema.Draft202012Validator.check_schema(schema)
            validators = [jsonschema.Draft202012Validator(schema),
                          jsonschema.Draft202012Validator(closed(schema))]
            for model in models:
                document = output_of(orv, command, model)
                for validator in validators:
                    problems += [f"{name}: {model.name}: {error.json_path}: {error.message}"
                                 for error in validator.iter_errors(document)]
            broken = copy.deepcopy(document)
            BROKEN[name](broken)
            if validators[0].is_valid(broken):
                problems.append(f"{name}: allows what no command prints")
    if problems:
        sys.exit("\n".join(problems[:40]))
    print(f"{len(models)} models, {len(FORMATS)} formats")


if __name__ == "__main__":
    main()
