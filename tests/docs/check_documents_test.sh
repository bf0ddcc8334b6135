#!/usr/bin/env bash
# Tests check_documents.sh on a small repository in which every problem stands once.
set -euo pipefail

check=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)/check_documents.sh
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# expect WHAT EXIT_STATUS OUTPUT: what checking the repository gives.
expect() {
  local status=0 output
  output=$(bash "$check" "$work" 2>&1) || status=$?
  if [[ $status != "$2" || $output != "$3" ]]; then
    printf '%s: exit status %s, output:\n%s\nexpected %s and:\n%s\n' \
      "$1" "$status" "$output" "$2" "$3" >&2
    exit 1
  fi
}

expect "an empty folder" 1 "$work: no documents"

mkdir -p "$work"/{docs/records,src/Model/Lanes,tests/Model/Lanes,build,.hidden}
touch "$work/src/Model/Lanes/Lanes.h" "$work/tests/Model/Lanes/LanesTest.cpp"
cat >"$work/docs/architecture.md" <<'DOCUMENT'
# Rooms of `src/Model`, and more
| 1 | `Lanes/` | floats | `Lanes.h` |
## See [the list](../README.md): it's short
[up](../README.md) [to itself](#rooms-of-srcmodel-and-more) [far](https://example.org/none)
[a link in a heading](#see-the-list-its-short) `[no link](none.md)` and `src/Model/Lanes/Lanes.h`
`src/Model/ROOM/X.cpp`, `tests/XTest.cpp` and `src/Model/*.h` stand for many.

## Where do I find ...
| what | source | test |
| a float | `Lanes/Lanes.h` (`add`) | `Lanes/LanesTest.cpp` |

    [in code](none.md)

```sh
[in a block](none.md)
```
DOCUMENT
printf '# Readme\n[the rooms](docs/architecture.md#rooms-of-srcmodel-and-more)\n' >"$work/README.md"
printf 'Was in `src/Model/Gone.cpp`.\n' >"$work/docs/records/old.md"
printf '[gone](none.md)\n' | tee "$work/build/x.md" >"$work/.hidden/x.md"
expect "a sound repository" 0 "3 documents, nothing missing"

mkdir "$work/src/Model/Attic"
rm "$work/tests/Model/Lanes/LanesTest.cpp"
sed -i 's/^| 1 .*/| 1 | `Lanes\/` | floats | `Rows.h` and `Lanes.h` |/' "$work/docs/architecture.md"
cat >"$work/docs/broken.md" <<'DOCUMENT'
# Broken
[a](gone.md) and ![b](images/gone.png), [fine](architecture.md)
[c](architecture.md#nowhere) and [d](#nowhere-either)
Look into `src/Model/Gone.cpp` or `scripts/gone.sh --now`.
DOCUMENT
printf '[e](gone.md)\n' >>"$work/docs/records/old.md"
expect "a broken one" 1 "docs/architecture.md: no row for the room src/Model/Attic
docs/architecture.md:10: no such file: tests/Model/Lanes/LanesTest.cpp
docs/architecture.md:2: no such file: src/Model/Lanes/Rows.h
docs/broken.md:2: no such file: gone.md
docs/broken.md:2: no such file: images/gone.png
docs/broken.md:3: no such heading: #nowhere-either
docs/broken.md:3: no such heading: architecture.md#nowhere
docs/broken.md:4: no such path: scripts/gone.sh
docs/broken.md:4: no such path: src/Model/Gone.cpp
docs/records/old.md:2: no such file: gone.md"
echo "all as expected"
