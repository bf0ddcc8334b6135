#!/usr/bin/env python3
"""Makes the sample models of this directory.

    make_samples.py             write them all
    make_samples.py --check     compare with what is there, and look for broken faces
    make_samples.py NAME...     write these only, e.g. `lighthouse`

Needs nothing beyond Python's standard library. The models are committed: run this only
after a change to the generator, and commit both.
"""

import argparse
import pathlib
import sys

sys.dont_write_bytecode = True

from generator import broken_export, check, lighthouse, small_samples  # noqa: E402
from generator.picture import png_content  # noqa: E402

HERE = pathlib.Path(__file__).resolve().parent
SAMPLES = {make.__name__: make for make in (*small_samples.ALL, lighthouse.lighthouse, broken_export.broken_export)}


def same(name, made, there):
    if name.endswith(".png"):
        return png_content(made) == png_content(there)
    return made == there


def differences(made):
    """One line for every made file that is missing, differs, or has a broken face."""
    found = []
    for name, data in made.items():
        path = HERE / name
        if not path.exists():
            found.append(f"{name}: missing")
        elif not same(name, data, path.read_bytes()):
            found.append(f"{name}: differs from what make_samples.py writes")
        if name.endswith(".obj") and not name.startswith("broken/"):
            found += check.problems(name, data.decode())
    return found


def strays(made):
    """Files of the kinds we make that nothing makes any more."""
    return [f"{path}: nothing makes it" for kind in ("*.obj", "*.mtl", "*.png")
            for path in (found.relative_to(HERE).as_posix() for found in sorted(HERE.rglob(kind)))
            if path not in made]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("names", nargs="*", metavar="NAME", help="samples to make (default: all)")
    parser.add_argument("--check", action="store_true", help="write nothing; exit with 1 on any difference")
    arguments = parser.parse_args()
    unknown = [name for name in arguments.names if name not in SAMPLES]
    if unknown:
        parser.error(f"no such sample: {', '.join(unknown)}; there are {', '.join(SAMPLES)}")

    made = {}
    for name in arguments.names or SAMPLES:
        made.update(SAMPLES[name]())
    if arguments.check:
        found = differences(made) + ([] if arguments.names else strays(made))
        for line in found:
            print(line)
        if not found:
            print(f"{len(made)} files are as their generator writes them")
        return 1 if found else 0
    for name, data in made.items():
        (HERE / name).parent.mkdir(parents=True, exist_ok=True)
        (HERE / name).write_bytes(data)
        print(f"{name}: {len(data)} bytes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
