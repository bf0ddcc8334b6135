#!/usr/bin/env python3
"""CPU time of the earcut algorithm (Debian's python3-mapbox-earcut, which wraps the
C++ header library) for the rings that bench_rings writes:

    ORV_RINGS_DIR=DIR bench_rings --benchmark_filter=lookedUp
    earcut_rings.py DIR

The rings are handed over as arrays, so that Python takes no part in what is measured.
Earcut cuts differently: its triangles are not compared, only counted.
"""
import pathlib
import sys
import time

import mapbox_earcut
import numpy


def measured(points, rounds):
    ends = numpy.array([len(points)], dtype=numpy.uint32)
    times = []
    for _ in range(rounds):
        start = time.process_time()
        triangles = mapbox_earcut.triangulate_float32(points, ends)
        times.append(time.process_time() - start)
    return min(times), len(triangles) // 3


def main():
    for path in sorted(pathlib.Path(sys.argv[1]).iterdir()):
        points = numpy.fromfile(path, dtype=numpy.float32).reshape(-1, 2)
        seconds, triangles = measured(points, 3 if len(points) <= 10000 else 1)
        missing = len(points) - 2 - triangles
        print(f"{path.name:20} {1e3 * seconds:10.2f} ms, {missing} triangles missing")


if __name__ == "__main__":
    main()
