#!/usr/bin/env bash
# Looks whether the documents of a repository point at what is there. No network.
#
#     check_documents.sh ROOT
#
# In every *.md below ROOT, but for build folders:
#
#   * a relative link, [text](target) or ![text](target), leads to a file or folder, and its
#     "#part" to a heading of that document;
#   * `src/...` and other paths below ROOT that stand in backquotes exist. Records
#     (docs/records) and the changelog tell of earlier days and may name what has gone;
#   * docs/architecture.md has a row for each room of src/Model, and the files that its tables name
#     are in that room, in src/Model or in tests/Model.
#
# Prints one line for each problem, sorted; the exit status is 1 if there is one.
set -euo pipefail

root=$(cd "$1" && pwd)
cd "$root"
problems=()

# text_of FILE: its lines without blocks of code, fenced or indented, each with its number.
text_of() {
  awk '/^ *```/ { fenced = !fenced; next }
       !fenced && !/^(    |\t)/ { print NR ":" $0 }' "$1"
}

# anchors_of FILE: what a "#part" may be, made of headings as the usual viewers make it.
anchors_of() {
  text_of "$1" | sed -En 's/^[0-9]+:#{1,6} +(.*)$/\1/p' | sed -E 's/\[([^]]*)\]\([^)]*\)/\1/g' |
    tr '[:upper:]' '[:lower:]' | sed -E 's/[^[:alnum:] _-]//g; s/ /-/g'
}

# check_link FILE LINE TARGET
check_link() {
  local file=$1 line=$2 target=$3 path part
  case $target in
    http://* | https://* | mailto:*) return ;;
  esac
  path=${target%%#*}
  if [[ -n $path ]]; then
    path=$(dirname "$file")/$path
  else
    path=$file
  fi
  if [[ ! -e $path ]]; then
    problems+=("$file:$line: no such file: $target")
  elif [[ $target == *#* ]]; then
    part=${target#*#}
    anchors_of "$path" | grep -Fxq -- "$part" ||
      problems+=("$file:$line: no such heading: $target")
  fi
}

check_links() {
  local file=$1 line target
  # Code in backquotes is no link.
  while IFS=: read -r line target; do
    check_link "$file" "$line" "$target"
  done < <(text_of "$file" | sed -E 's/`[^`]*`/CODE/g' |
    awk '{ line = $0; number = line; sub(/:.*/, "", number)
           while (match(line, /\]\([^) ]+\)/)) {
             print number ":" substr(line, RSTART + 2, RLENGTH - 3)
             line = substr(line, RSTART + RLENGTH) } }')
}

# Names with placeholders (X, ROOM, *) stand for many.
check_paths() {
  local file=$1 line path
  while IFS=: read -r line path; do
    [[ -e $path ]] || problems+=("$file:$line: no such path: $path")
  done < <(text_of "$file" |
    awk '{ line = $0; number = line; sub(/:.*/, "", number)
           while (match(line, /`[^`]*`/)) {
             code = substr(line, RSTART + 1, RLENGTH - 2)
             line = substr(line, RSTART + RLENGTH)
             sub(/ .*/, "", code)
             if (code ~ /^(apps|benchmarks|cmake|docs|examples|fuzz|include|platform|samples|scripts|src|tests)\/[A-Za-z0-9_.\/-]*$/ &&
                 code !~ /(^|\/)(X|ROOM|TARGET)([A-Z.\/][A-Za-z.]*)?(\/|$)/)
               print number ":" code } }')
}

# Rows of two tables: "| floor | `ROOM/` | ... | `X.cpp`, ... |" with files of that room, and
# "| what | `ROOM/X.cpp` ... | `ROOM/XTest.cpp` ... |" with sources and their tests.
check_rooms() {
  local document=docs/architecture.md room line folder file
  [[ -d src/Model && -f $document ]] || return 0
  for room in src/Model/*/; do
    room=$(basename "$room")
    grep -Eq "^\| [0-9] \| \`$room/\` \|" "$document" ||
      problems+=("$document: no row for the room src/Model/$room")
  done
  while IFS=: read -r line folder file; do
    [[ -e $folder/$file ]] || problems+=("$document:$line: no such file: $folder/$file")
  done < <(awk -F '|' '
    function files(folder, cell) {
      while (match(cell, /`[A-Za-z0-9_\/]+\.(cpp|h)`/)) {
        print NR ":" folder ":" substr(cell, RSTART + 1, RLENGTH - 2)
        cell = substr(cell, RSTART + RLENGTH)
      }
    }
    /^\| [0-9] \|/ { room = $3; gsub(/[` ]/, "", room); sub(/\/$/, "", room)
                    files(room == "src/Model" ? room : "src/Model/" room, $5); next }
    /^## Where do I find/ { finding = 1; next }
    /^## / { finding = 0 }
    finding && /^\|/ { files("src/Model", $3); files("tests/Model", $4) }' "$document")
}

documents=0
while IFS= read -r file; do
  file=${file#./}
  documents=$((documents + 1))
  check_links "$file"
  case $file in
    docs/records/* | CHANGELOG.md) ;;
    *) check_paths "$file" ;;
  esac
done < <(find . \( -name build -o -name .git -o -name '.*' -type d ! -name . \) -prune -o \
  -name '*.md' -print | LC_ALL=C sort)
check_rooms

if ((documents == 0)); then
  problems+=("$root: no documents")
fi
if ((${#problems[@]} > 0)); then
  printf '%s\n' "${problems[@]}" | LC_ALL=C sort
  exit 1
fi
printf '%d documents, nothing missing\n' "$documents"
