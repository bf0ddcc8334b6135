#!/usr/bin/env python3
"""Compiles the GLSL of the documents by the OpenGL driver.

    shaders_test.py ROOT COMPILE_SHADER

A box "glsl" has a second word, which says what it is:

* vertex, fragment: a shader of that kind. Without a main() it is the middle of one, and may use what
  FRAME declares. Lines before "// ..." alone on a line come before the frame.
* declarations: what stands outside functions. The boxes below it on its page may use them.

Warnings are errors, too.
"""
import pathlib
import re
import subprocess
import sys

from pages import boxes, pages

VERSION = "#version 430\n"

# What the middle of a main() may use without declaring it.
FRAME = {
    "vertex": "in vec3 position;\nin vec3 normal;\n",
    "fragment": "in vec3 position;\nin vec3 normal;\nout vec4 colour;\n",
}
ELLIPSIS = re.compile(r"^// \.\.\.\n", re.MULTILINE)


def numbered(line, text):
    """Compilers count the lines of the page."""
    return f"#line {line}\n{text}"


def begun(line, text):
    """The same with a version, which nothing may stand before."""
    if not text.startswith("#version"):
        return VERSION + numbered(line, text)
    version, rest = text.split("\n", 1)
    return version + "\n" + numbered(line + 1, rest)


def shader_of(box, kind, declarations):
    """A whole shader; `declarations` are those of the boxes above."""
    if re.search(r"\bvoid\s+main\s*\(", box.text):
        return begun(box.line, box.text)
    head, body, line = "", box.text, box.line
    ellipsis = ELLIPSIS.search(box.text)
    if ellipsis:
        head, body = box.text[:ellipsis.start()], box.text[ellipsis.end():]
        line += head.count("\n") + 1
    return (begun(box.line, head) + declarations + FRAME[kind] + "void main()\n{\n"
            + numbered(line, body) + "}\n")


def problems_of(compiler, box, kind, source):
    result = subprocess.run([compiler, kind], input=source, text=True, check=False,
                            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    if result.returncode not in (0, 1):
        sys.exit(f"{box}: {result.stderr}")
    if result.returncode == 0 and "warning" not in result.stdout:
        return []
    # Mesa begins with "0:LINE(COLUMN): ".
    told = re.sub(r"^0:(\d+)\(\d+\)", rf"{box.page}:\1", result.stdout, flags=re.MULTILINE)
    return [f"{box}: no {kind} shader:\n{told}"]


def main():
    root, compiler = pathlib.Path(sys.argv[1]), sys.argv[2]
    problems, count = [], 0
    for page in pages(root):
        declarations = ""
        for box in boxes(root, page):
            if box.kind != "glsl":
                continue
            count += 1
            kind = " ".join(box.tags)
            if kind == "declarations":
                declarations += numbered(box.line, box.text)
                for stage in FRAME:
                    source = VERSION + declarations + "void main()\n{\n}\n"
                    problems += problems_of(compiler, box, stage, source)
            elif kind in FRAME:
                source = shader_of(box, kind, declarations)
                problems += problems_of(compiler, box, kind, source)
            else:
                problems.append(f"{box}: 'glsl' needs one more word: declarations, vertex or fragment")
    if not count:
        problems.append("no boxes: the pages are read wrongly")
    if problems:
        sys.exit("\n".join(problems))
    print(f"{count} boxes")


if __name__ == "__main__":
    main()
