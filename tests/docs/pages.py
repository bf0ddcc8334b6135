"""The boxes of the documents: what stands between ``` and ```, and where."""
import pathlib
import re


class Box:
    """One fenced block."""

    def __init__(self, page, line, kind, tags, text):
        self.page = page  # relative to the repository
        self.line = line  # of the first line of the text, from 1
        self.kind = kind  # the first word behind the fence: "cpp", "console"
        self.tags = tags  # the other words
        self.text = text

    def __str__(self):
        return f"{self.page}:{self.line}"


def pages(root):
    """All documents but records, which tell of earlier days, and the changelog."""
    root = pathlib.Path(root)
    found = []
    for path in sorted(root.rglob("*.md")):
        page = path.relative_to(root)
        parts = page.parts
        if parts[0] == "build" or parts[:2] == ("docs", "records") or page.name == "CHANGELOG.md":
            continue
        if any(part.startswith(".") or part.startswith("build-") for part in parts):
            continue
        found.append(page)
    return found


def boxes(root, page):
    """The fenced boxes of a page, in order. Raises ValueError where one is not closed."""
    found = []
    opened = None
    for number, line in enumerate((pathlib.Path(root) / page).read_text().split("\n"), 1):
        fence = re.match(r"( *)```+(.*)", line)
        if not fence:
            if opened:
                lines.append(line[indent:])  # a box in a list is indented
        elif opened:
            found.append(Box(page, *opened, "".join(row + "\n" for row in lines)))
            opened = None
        else:
            words = fence[2].split()
            opened = (number + 1, words[0] if words else "", words[1:])
            lines, indent = [], len(fence[1])
    if opened:
        raise ValueError(f"{page}:{opened[0] - 1}: the box is not closed")
    return found
