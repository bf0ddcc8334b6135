#!/usr/bin/env bash
# Compares the names that a library exports with a kept list: what is gone breaks programs, what is
# new is a promise.
#
#     check_symbols.sh [--update] LIBRARY LIST
#
# Counted are the symbols of our namespace, and all others but those that the compiler makes of the
# standard library's and Qt's templates, which differ from one compiler to the next, and the
# linker's own. After a change that is meant, --update writes the list anew; its comments stay.
set -euo pipefail
export LC_ALL=C
# shellcheck source=tests/install/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"
update=
if [[ ${1-} == --update ]]; then
  update=yes
  shift
fi
library=$1 list=$2

exported() {
  nm -D --defined-only -C "$library" | sed -E 's/^[0-9a-f]* +//' |
    grep -vE '^[BD] (__bss_start|_end|_edata)$' |
    grep -E '^([^WVu] |[WVu] ((non-virtual thunk to|virtual thunk to|typeinfo|typeinfo name|vtable|VTT|guard variable) (for )?)?Halvard::)' |
    cut -c3- | sort -u
}

names=$(exported)
[[ -n $names ]] || fail "$library exports nothing"
if [[ -n $update ]]; then
  { grep '^#' "$list"; printf '%s\n' "$names"; } >"$list.new"
  mv "$list.new" "$list"
elif ! difference=$(diff <(grep -v '^#' "$list") - <<<"$names"); then
  fail "what $(basename "$library") exports is not what $(basename "$list") lists (< list, > library):
$difference
If that is meant, update the list: bash tests/install/check_symbols.sh --update $library $list"
fi
