#!/usr/bin/env python3
"""Builds the C++ of the documents against the installed libraries, and runs what the documents run.

    snippets_test.py ROOT PREFIX ORV_FOLDER WORK_FOLDER

PREFIX is where the libraries are installed, ORV_FOLDER where the command is. Code for fast_obj is built
where the environment's ORV_FAST_OBJ_DIR is the folder of its header.

* A box "cpp" with a main() is a program. It is built as it stands, as a user would.
* Any other box "cpp" is the middle of a function: fragments.h has what may be used in it without
  being declared. Its #include lines come first. One function for each, all in one source.
* A box "console" holds commands, which begin with "$ ", and below each what it prints, stdout and
  stderr together. "..." stands for any part of a line; alone on a line, for any lines. All boxes of a page run one after another
  in one folder, in which "samples" is that of the repository, "orv" is the command, and "./program" is
  the program that stands last before the box; where that is not built, the box is passed over.

A further word behind "cpp" names another library that the code is for.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys

from pages import boxes, pages

# What code for other libraries needs in its CMakeLists.txt: how they are found, and what is linked.
OTHER_LIBRARIES = {
    "assimp": ("find_package(assimp REQUIRED)", "assimp::assimp"),
    "tinyobjloader": ("find_package(tinyobjloader REQUIRED)", "tinyobjloader::tinyobjloader"),
}

# Code for libraries that Debian does not have, and why it is not built.
NOT_COMPILED = {"rapidobj": "no Debian package"}

FAST_OBJ_DIR = os.environ.get("ORV_FAST_OBJ_DIR")
if FAST_OBJ_DIR:
    OTHER_LIBRARIES["fast_obj"] = (
        "add_library(fast_obj INTERFACE)\n"
        f'target_include_directories(fast_obj SYSTEM INTERFACE "{FAST_OBJ_DIR}")', "fast_obj")
else:
    NOT_COMPILED["fast_obj"] = "no Debian package, and ORV_FAST_OBJ_DIR is not set"

PROJECT = """cmake_minimum_required(VERSION 3.25)
project(snippets LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 17)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
find_package(OrvModel 1.0 CONFIG REQUIRED)
add_compile_options(-Wall -Wextra -Werror)
"""

# In place of a program's path.
NOT_BUILT = "not built"

problems = []


def run(command, **options):
    """Ends the test where the command fails."""
    result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                            check=False, **options)
    if result.returncode:
        sys.exit(f"{' '.join(map(str, command))}\nended with {result.returncode}:\n{result.stdout}")


def library_of(box):
    """The other library that a box is for; empty for ours."""
    if len(box.tags) > 1:
        sys.exit(f"{box}: more than one word behind 'cpp'")
    library = box.tags[0] if box.tags else ""
    if library and library not in NOT_COMPILED and library not in OTHER_LIBRARIES:
        sys.exit(f"{box}: nobody knows the library '{library}'")
    return library


def is_program(box):
    return re.search(r"^int main\(", box.text, re.MULTILINE) is not None


def source_of(box):
    """Compilers name the page and its line."""
    return f'#line {box.line} "{box.page}"\n{box.text}'


def fragments_source(fragments):
    """All fragments as functions of one source."""
    includes = sorted({line for box in fragments for line in box.text.split("\n")
                       if line.startswith("#include")})
    source = '#include "fragments.h"\n' + "".join(line + "\n" for line in includes)
    for number, box in enumerate(fragments):
        body = "\n".join("" if line.startswith("#include") else line
                         for line in box.text.split("\n"))
        source += (f"\nvoid fragment{number}(FRAGMENT_PARAMETERS)\n{{{{\n"
                   f'#line {box.line} "{box.page}"\n{body}}}}}\n')
    return source + "\nint main() {}\n"


def write_project(root, work, programs, fragments):
    """One target for each program, and one for all fragments."""
    project = PROJECT
    shutil.copy(root / "tests/docs/fragments.h", work)
    (work / "fragments.cpp").write_text(fragments_source(fragments))
    project += "add_executable(fragments fragments.cpp)\n"
    project += "target_compile_options(fragments PRIVATE -Wno-unused)\n"
    project += "target_link_libraries(fragments PRIVATE Orv::Model Orv::Check)\n"
    for name, box in programs.items():
        (work / f"{name}.cpp").write_text(source_of(box))
        library = library_of(box)
        find, link = OTHER_LIBRARIES.get(library, ("", "Orv::Model Orv::Check"))
        project += f"{find}\nadd_executable({name} {name}.cpp)\n"
        project += f"target_link_libraries({name} PRIVATE {link})\n"
    (work / "CMakeLists.txt").write_text(project)


def matches(expected, printed):
    """Whether lines are the expected ones: "..." stands for any lines, or for a part of a line."""
    pattern = "".join(r"(?:.*\n)*" if line == "..." else
                      ".*".join(map(re.escape, line.split("..."))) + r"\n" for line in expected)
    return re.fullmatch(pattern, printed) is not None


def run_console(box, folder, environment, program):
    """Runs the commands of a box, and notes what they print otherwise than it says."""
    commands = []
    for number, line in enumerate(box.text.split("\n")[:-1], box.line):
        if line.startswith("$ "):
            commands.append((number, line[2:], []))
        elif line.startswith("> ") and commands and not commands[-1][2]:
            number, command, _ = commands[-1]
            commands[-1] = (number, command + "\n" + line[2:], [])
        elif commands:
            commands[-1][2].append(line)
        else:
            sys.exit(f"{box}: begins with no command")
    for number, command, expected in commands:
        if program:
            command = command.replace("./program", str(program))
        result = subprocess.run(["bash", "-c", command], cwd=folder, env=environment, check=False,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if not matches(expected, result.stdout):
            problems.append(f"{box.page}:{number}: $ {command}\nprinted:\n{result.stdout}"
                            f"expected:\n" + "".join(line + "\n" for line in expected))


def run_consoles(root, work, orv_folder, page, program_of):
    """All "console" boxes of a page, in a folder of their own."""
    folder = work / "consoles" / str(page).replace("/", "_")
    folder.mkdir(parents=True)
    os.symlink(root / "samples", folder / "samples")
    environment = dict(os.environ, PATH=f"{orv_folder}:{os.environ['PATH']}", LC_ALL="C.UTF-8")
    environment.pop("QT_LOGGING_RULES", None)
    program = None
    count = 0
    for box in boxes(root, page):
        if box.kind != "console":
            program = program_of.get(str(box), program)
        elif program != NOT_BUILT or "./program" not in box.text:
            count += 1
            run_console(box, folder, environment, program)
    return count


def main():
    root, prefix, orv_folder, work = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)

    # What a page shows of examples/ has tests of its own.
    examples = [path.read_text() for path in root.glob("examples/*/*.cpp")]
    programs, fragments, not_compiled = {}, [], []
    for page in pages(root):
        for box in boxes(root, page):
            if box.kind != "cpp" or any(box.text in example for example in examples):
                continue
            if library_of(box) in NOT_COMPILED:
                not_compiled.append(box)
            elif is_program(box):
                programs[f"program{len(programs)}"] = box
            elif library_of(box):
                sys.exit(f"{box}: of another library only whole programs are built")
            else:
                fragments.append(box)
    if not programs or not fragments:
        sys.exit("no programs, or no fragments: the pages are read wrongly")

    write_project(root, work, programs, fragments)
    run(["cmake", "-G", "Ninja", "-S", work, "-B", work / "build",
         f"-DCMAKE_PREFIX_PATH={prefix}"])
    run(["cmake", "--build", work / "build"])

    program_of = {str(box): work / "build" / name for name, box in programs.items()}
    program_of.update({str(box): NOT_BUILT for box in not_compiled})
    consoles = sum(run_consoles(root, work, orv_folder, page, program_of) for page in pages(root))
    if problems:
        sys.exit("\n".join(problems))
    for box in not_compiled:
        print(f"{box}: not compiled: {box.tags[0]}: {NOT_COMPILED[box.tags[0]]}")
    print(f"{len(programs)} programs, {len(fragments)} fragments, {consoles} boxes of commands")


if __name__ == "__main__":
    main()
