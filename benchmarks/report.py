#!/usr/bin/env python3
"""Tables (Markdown) and a chart (SVG) of what compare.py measured.

report.py OUT    makes OUT/table.md and OUT/chart.svg from OUT/results.json again
"""
import json
import pathlib
import sys

NAMES = {
    "prepare": "this library",
    "prepare2": "this library, two threads",
    "bytes": "this library, with the upload",
    "lines": "this library, line by line",
    "rules": "the rules word for word",
    "fast_obj": "fast_obj + meshoptimizer",
    "fast_obj_v": "fast_obj + meshoptimizer, positions only",
    "tinyobj": "tinyobjloader + meshoptimizer",
    "assimp": "Assimp",
}
# Of those that the chart shows: two threads take the CPU time of one, and an upload is another
# subject.
COLOURS = {"prepare": "#1b7837", "lines": "#999999", "rules": "#555555",
           "fast_obj": "#67a9cf", "fast_obj_v": "#8c6bb1", "tinyobj": "#2166ac", "assimp": "#b2182b"}


def line(result):
    own = result["contestants"]["prepare"]
    parts = [f"{result['model']} {result['size']} MB: {own['cpuMinimum']:.1f} ms"]
    parts += [f"{name} x{other['cpuMinimum'] / own['cpuMinimum']:.1f}"
              for name, other in result["contestants"].items() if name != "prepare"]
    return ", ".join(parts + result["remarks"])


def table(results):
    rows = ["| file | contestant | wall median | wall minimum | CPU median | CPU minimum | ratio |"
            " peak memory | memory / file |",
            "|---|---|--:|--:|--:|--:|--:|--:|--:|"]
    for result in results["files"]:
        own = result["contestants"]["prepare"]
        for name, r in result["contestants"].items():
            rows.append(
                f"| {result['model']}, {result['bytes'] / 1e6:.0f} MB | {NAMES[name]} "
                f"| {r['wallMedian']:,.1f} | {r['wallMinimum']:,.1f} "
                f"| {r['cpuMedian']:,.1f} | {r['cpuMinimum']:,.1f} "
                f"| {r['cpuMinimum'] / own['cpuMinimum']:.1f} | {r['peakMB']:,.0f} "
                f"| {r['peakMB'] * 1e6 / result['bytes']:.2f} |")
    return rows


def stage_table(results):
    rows = ["| file | MB/s | ns per byte | read | weld | triangulate | normals | driver (CPU) |",
            "|---|--:|--:|--:|--:|--:|--:|--:|"]
    for result in results["files"]:
        own = result["contestants"]["prepare"]
        stages = own["stages"]
        driver = result["contestants"]["bytes"]["driverCPU"]
        rows.append(
            f"| {result['model']}, {result['bytes'] / 1e6:.0f} MB "
            f"| {result['bytes'] / 1e3 / own['cpuMinimum']:,.0f} "
            f"| {1e6 * own['cpuMinimum'] / result['bytes']:.2f} "
            f"| {stages['read']:.1f} | {stages['weld']:.1f} | {stages['triangulate']:.1f} "
            f"| {stages['normals']:.1f} | {driver:.1f} |")
    return rows


def growth_table(results):
    rows = ["| model | MB | least CPU, ms | ns per byte |", "|---|--:|--:|--:|"]
    for r in results.get("growth", []):
        rows.append(f"| {r['model']} | {r['bytes'] / 1e6:.0f} | {r['leastCPU']:.1f} "
                    f"| {1e6 * r['leastCPU'] / r['bytes']:.2f} |")
    return rows


def chart(results):
    """Nanoseconds of CPU per byte of each model's largest file, on a logarithmic scale."""
    import math
    bar, gap, left, width = 14, 14, 170, 760
    largest = {}
    for result in results["files"]:
        if result["size"] >= largest.get(result["model"], result)["size"]:
            largest[result["model"]] = result
    groups = list(largest.values())
    values = [1e6 * r["cpuMinimum"] / g["bytes"] for g in groups
              for name, r in g["contestants"].items() if name in COLOURS]
    low, high = 10 ** math.floor(math.log10(min(values))), max(values) * 1.6

    def x(value):
        return left + (width - left - 60) * math.log(value / low) / math.log(high / low)

    parts, y = [], 52
    for group in groups:
        top = y
        for name in [name for name in group["contestants"] if name in COLOURS]:
            r = group["contestants"][name]
            value = 1e6 * r["cpuMinimum"] / group["bytes"]
            parts.append(f'<rect x="{left}" y="{y}" width="{x(value) - left:.1f}" '
                         f'height="{bar - 2}" fill="{COLOURS[name]}"/>')
            parts.append(f'<text x="{x(value) + 4:.1f}" y="{y + 10}">{value:.1f}</text>')
            y += bar
        parts.append(f'<text x="{left - 8}" y="{(top + y) / 2 + 3}" text-anchor="end">'
                     f'{group["model"]}, {group["bytes"] / 1e6:.0f} MB</text>')
        y += gap
    lines = []
    tick = low
    while tick < high:
        lines.append(f'<line x1="{x(tick):.1f}" x2="{x(tick):.1f}" y1="46" y2="{y}" '
                     'stroke="#ccc"/>')
        lines.append(f'<text x="{x(tick):.1f}" y="{y + 12}" text-anchor="middle">{tick:g}</text>')
        tick *= 10
    legend, at = [], 8
    for name in COLOURS:
        if any(name in g["contestants"] for g in groups):
            legend.append(f'<rect x="{at}" y="26" width="10" height="10" fill="{COLOURS[name]}"/>')
            legend.append(f'<text x="{at + 14}" y="35">{NAMES[name]}</text>')
            at += 30 + 5.6 * len(NAMES[name])
    return "\n".join(
        [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {y + 20}" '
         'font-family="sans-serif" font-size="11">',
         f'<rect width="{width}" height="{y + 20}" fill="white"/>',
         '<text x="8" y="16" font-size="13">File to arrays ready for upload: '
         'CPU nanoseconds per byte (logarithmic; less is better)</text>']
        + legend + lines + parts + ["</svg>", ""])


def write(results, out):
    text = table(results) + [""] + stage_table(results) + [""]
    if results.get("growth"):
        text += growth_table(results) + [""]
    if results["small"]:
        text += ["| small file | kB | load without the driver, ms | with it, ms |",
                 "|---|--:|--:|--:|"]
        text += [f"| {s['file']} | {s['bytes'] / 1e3:.0f} | {s['own']:.2f} | {s['all']:.2f} |"
                 for s in results["small"]]
        text.append("")
    for result in results["files"]:
        text += [f"* {result['model']}, {result['size']} MB: {remark}"
                 for remark in result["remarks"]]
    text += ["", "Machine: {cpu}, {cores} cores. Load average while measuring: "
             .format(**results["machine"]) + " to ".join(f"{load:.1f}" for load in results["load"])]
    (out / "table.md").write_text("\n".join(text) + "\n", encoding="utf-8")
    (out / "chart.svg").write_text(chart(results), encoding="utf-8")


if __name__ == "__main__":
    folder = pathlib.Path(sys.argv[1])
    write(json.loads((folder / "results.json").read_text(encoding="utf-8")), folder)
