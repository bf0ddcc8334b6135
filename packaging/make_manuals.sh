#!/usr/bin/env bash
# Writes the manual pages and the completion for bash from what the programs print with --help.
#
#     make_manuals.sh VERSION DATE OUT_DIR PROGRAM
#
# Of orv: orv.1.gz, a page orv-SUBCOMMAND.1.gz for each subcommand, and orv.bash; of orv-view:
# orv-view.1.gz. DATE stands in the pages.
set -euo pipefail
export LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen
version=$1 date=$2 out_dir=$3 program=$4

# page NAME SUMMARY: a manual page of the help text on stdin.
page() {
  awk -v name="$1" -v summary="$2" -v version="$version" -v date="$date" '
    function plain(text) {
      gsub(/\\/, "\\e", text)
      gsub(/-/, "\\-", text)
      if (text ~ /^[.\x27]/) text = "\\&" text
      return text
    }
    BEGIN {
      printf ".TH %s 1 \"%s\" \"OrvModel %s\" \"User commands\"\n", toupper(name), date, version
      printf ".SH NAME\n%s \\- %s\n", name, plain(summary)
    }
    NR == 1 { # "Usage: PROGRAM ARGUMENTS"
      sub(/^Usage: /, "")
      sub(/^\/[^ ]*\//, "")
      sub(/^\.\//, "")
      printf ".SH SYNOPSIS\n.B %s\n.SH DESCRIPTION\n", plain($0)
      next
    }
    /^[A-Z][A-Za-z ]*:$/ { sub(/:$/, ""); printf ".SH %s\n", toupper($0); next }
    /^Exit status: / { sub(/^Exit status: /, ""); printf ".SH EXIT STATUS\n%s\n", plain($0); next }
    /^  ? ?[^ ]/ { # a name, and two blanks or more before what it means
      sub(/^ +/, "")
      at = match($0, /  +/)
      item = at ? substr($0, 1, at - 1) : $0
      printf ".TP\n.B %s\n", plain(item)
      if (at) print plain(substr($0, at + RLENGTH))
      next
    }
    /^$/ { if (NR > 2) print ".PP"; next }
    { sub(/^ +/, ""); print plain($0) }
  ' | sed -e '/^\.PP$/{N;/\n\.SH/s/^\.PP\n//}' | gzip -9n >"$out_dir/$1.1.gz"
}

mkdir -p "$out_dir"
if [[ $(basename "$program") == orv-view ]]; then
  "$program" --help | page orv-view 'show Wavefront OBJ models, and what is wrong with them'
  exit
fi

"$program" --help | page orv 'load, draw, check and mend Wavefront OBJ models'
subcommands=() cases=
while read -r name summary; do
  subcommands+=("$name")
  "$program" "$name" --help | page "orv-$name" "$summary"
  options=$("$program" "$name" --help | grep -oE '^  .*' | grep -oE '(^| )--?[a-z][a-z-]*' | tr -d ' ' | sort -u | tr '\n' ' ')
  cases+="    $name) words='${options% }' ;;"$'\n'
done < <("$program" --help | sed -n '/^Subcommands:/,/^$/s/^  //p')
((${#subcommands[@]} > 0)) || { echo "make_manuals.sh: 'orv --help' lists no subcommands" >&2; exit 1; }

cat >"$out_dir/orv.bash" <<END
# Completion of orv for bash, made of what orv prints with --help.
_orv() {
  local word=\${COMP_WORDS[COMP_CWORD]} words=
  case \$COMP_CWORD:\${COMP_WORDS[1]} in
    1:*) words='${subcommands[*]} --help --version' ;;
  esac
  [[ \$COMP_CWORD -eq 1 ]] || case \${COMP_WORDS[1]} in
$cases  esac
  # Everything else is the name of a file.
  if [[ \$COMP_CWORD -eq 1 || \$word == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "\$words" -- "\$word")
  fi
}
complete -o default -F _orv orv
END
