#!/usr/bin/env python3
"""Runs the contestants of benchmarks/compare.sh side by side and writes what they took.

compare.py PROGRAMS OUT [--sizes 3,30,200] [--rounds N] [--lines-up-to MB]
           [--rules-up-to MB] [--assimp-up-to MB] [--growth MB,MB...]
           [--fast-obj] [--small FILE.obj...] MODEL.obj...

PROGRAMS is the folder with the built programs. MODEL.obj:v/vt is the model without its
normals. With --fast-obj, load_fast_obj takes part where it was built; files of positions only are also
loaded in the shorter way that is open to them. OUT receives results.json, table.md and chart.svg; the repeated models are made in OUT/models and stay there.

A round runs every contestant once, so that what else the machine does falls on all
of them alike. Files above 100 MB have half as many rounds, and only one for those who
take many seconds. Nobody is measured before a first reading has brought the file into
the page cache.
"""
import argparse
import json
import os
import pathlib
import platform
import shutil
import statistics
import subprocess
import sys

import report

CONTESTANTS = {
    "prepare": ["load_orv", "{file}", "prepare", "1"],
    "prepare2": ["load_orv", "{file}", "prepare", "2"],
    "bytes": ["load_orv", "{file}", "bytes"],
    "lines": ["load_orv", "{file}", "lines"],
    "rules": ["load_rules", "{file}"],
    "fast_obj": ["load_fast_obj", "{file}"],
    "fast_obj_v": ["load_fast_obj", "{file}", "positions"],
    "tinyobj": ["load_tinyobj", "{file}"],
    "assimp": ["load_assimp", "{file}"],
}


SLOW = {"lines", "rules", "assimp"}


def run(programs, contestant, file, *more):
    command = [part.format(file=file) for part in CONTESTANTS[contestant]]
    command[0] = str(programs / command[0])
    done = subprocess.run(command + list(more), stdout=subprocess.PIPE, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(command)}: exit status {done.returncode}")
    return json.loads(done.stdout)


class Model:
    """A model as given on the command line: FILE.obj or FILE.obj:v/vt."""

    def __init__(self, text):
        file, _, form = text.partition(":")
        self.file = pathlib.Path(file)
        self.options = [form] if form else []
        self.name = self.file.stem + (f" {form}" if form else "")


def repeated(programs, folder, model, megabytes):
    """The model repeated up to a size; made only if it is not there yet."""
    out = folder / f"{model.name.replace(' ', '-').replace('/', '-')}-{megabytes}.obj"
    if not out.exists():
        subprocess.run([programs / "repeat_model", model.file, out, str(megabytes * 1e6),
                        *model.options], check=True)
        for library in model.file.parent.glob("*.mtl"):
            shutil.copy(library, folder)
    return out


def measure(programs, file, names, rounds):
    text = file.read_bytes()
    if b"\nvt " in text or b"\nvn " in text:
        names = [name for name in names if name != "fast_obj_v"]
    del text
    runs = {name: [] for name in names}
    loads = []
    for number in range(rounds):
        for name in names:
            if number > 0 and name in SLOW and file.stat().st_size > 100e6:
                continue
            loads.append(os.getloadavg()[0])
            runs[name].append(run(programs, name, file))
    return runs, loads


def summary(runs):
    """What is the library's own: without the driver's share."""
    wall = [r["wall"] - r["driverWall"] for r in runs]
    cpu = [r["cpu"] - r["driverCPU"] for r in runs]
    best = min(runs, key=lambda r: r["cpu"] - r["driverCPU"])
    return {
        "wallMedian": statistics.median(wall),
        "wallMinimum": min(wall),
        "cpuMedian": statistics.median(cpu),
        "cpuMinimum": min(cpu),
        "driverCPU": best["driverCPU"],
        "peakMB": min(r["peakBeforeDriver"] for r in runs) * 1024 / 1e6,
        "peakWithDriverMB": min(r["peak"] for r in runs) * 1024 / 1e6,
        "vertices": runs[0]["vertices"],
        "triangles": runs[0]["triangles"],
        # Wall time: of each stage the least disturbed run.
        "stages": {stage: min(r["stages"][stage] for r in runs)
                   for stage in runs[0].get("stages", {})},
        "rounds": len(runs),
    }


def check(result):
    """The library's paths and the rules agree entirely; others on the triangles, and on the vertices where they weld
    by bytes too and read numbers as exactly."""
    own = result["contestants"]["prepare"]
    for name, other in result["contestants"].items():
        if other["triangles"] != own["triangles"]:
            result["remarks"].append(
                f"{name}: {other['triangles']} triangles, not {own['triangles']}")
        if other["vertices"] != own["vertices"]:
            result["remarks"].append(f"{name}: {other['vertices']} vertices, not {own['vertices']}")
    for name in ("prepare2", "bytes", "lines", "rules"):
        other = result["contestants"].get(name, own)
        if (other["vertices"], other["triangles"]) != (own["vertices"], own["triangles"]):
            sys.exit(f"{result['model']}: '{name}' has another result")


def machine():
    cpu = platform.processor()
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            cpu = next(line.split(":")[1].strip() for line in file if line.startswith("model name"))
    except (OSError, StopIteration):
        pass
    return {"cpu": cpu, "cores": os.cpu_count(), "system": platform.release()}


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("out", type=pathlib.Path)
    parser.add_argument("models", nargs="+", type=Model)
    parser.add_argument("--sizes", default="3,30,200")
    parser.add_argument("--rounds", type=int, default=5)
    parser.add_argument("--lines-up-to", type=float, default=30)
    parser.add_argument("--rules-up-to", type=float, default=200)
    parser.add_argument("--assimp-up-to", type=float, default=30)
    parser.add_argument("--growth", default="3,30,300")
    parser.add_argument("--fast-obj", action="store_true")
    parser.add_argument("--small", nargs="*", type=pathlib.Path, default=[])
    options = parser.parse_args()

    options.programs = options.programs.resolve()
    folder = options.out / "models"
    folder.mkdir(parents=True, exist_ok=True)
    limits = {"lines": options.lines_up_to, "rules": options.rules_up_to,
              "assimp": options.assimp_up_to}
    # What an earlier build left is no contestant.
    available = [name for name, command in CONTESTANTS.items()
                 if (options.programs / command[0]).exists()
                 and (command[0] != "load_fast_obj" or options.fast_obj)]
    results = {"machine": machine(), "files": [], "growth": [], "small": [], "loads": []}

    def write():
        results["load"] = [min(results["loads"]), max(results["loads"])] if results["loads"] else []
        (options.out / "results.json").write_text(json.dumps(results, indent=1), encoding="utf-8")

    for size in [int(s) for s in options.sizes.split(",") if s]:
        for model in options.models:
            file = repeated(options.programs, folder, model, size)
            names = [name for name in available if size <= limits.get(name, size)]
            rounds = options.rounds if size < 100 else max(2, options.rounds // 2)
            runs, loads = measure(options.programs, file, names, rounds)
            result = {"model": model.name, "size": size, "bytes": file.stat().st_size,
                      "contestants": {name: summary(runs[name]) for name in runs}, "remarks": []}
            check(result)
            results["files"].append(result)
            results["loads"] += loads
            write()
            print(report.line(result), flush=True)
    for model in options.models:
        for size in [int(s) for s in options.growth.split(",") if s]:
            file = repeated(options.programs, folder, model, size)
            file.read_bytes()
            # Many loads in one process: what its first load pays for is not the file's.
            load = run(options.programs, "prepare", file, str(max(8, 120 // size)))
            results["growth"].append({"model": model.name, "bytes": file.stat().st_size,
                                      "leastCPU": load["leastCPU"]})
        write()
    for file in options.small:
        load = run(options.programs, "bytes", file, "301")
        results["small"].append({"file": file.name, "bytes": file.stat().st_size,
                                 "own": load["wall"] - load["driverWall"],
                                 "all": load["wall"]})
        write()
    report.write(results, options.out)


if __name__ == "__main__":
    main()
