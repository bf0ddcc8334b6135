#!/usr/bin/env bash
# Breaks the library on purpose, one line at a time, and looks whether a test notices.
#
#     scripts/mutants.sh [--again] [--quick] [PATTERN...]
#     scripts/mutants.sh --check | --list [PATTERN...]
#
# The mutants are those of tests/mutants, of which README.md there tells how they are
# written; with PATTERNs, only those whose file or description contains one of them. Each
# is built in a copy of what is committed, never in the working tree, and runs first the
# tests named for it, then all others. Prints a table, and what survived; the exit status
# is non-zero when a mutant survives that is not declared equivalent, or one cannot be
# applied or built.
#
# A mutant that was killed is not run again while its file and its description stay as
# they are; --again runs it nevertheless. --quick runs no tests but those named. --check
# only looks whether every mutant can be applied to the working tree and its tests are there,
# --list prints them.
#
# The copy and its build are in build/mutants, or in ORV_MUTANTS_DIR. What is copied is
# HEAD, or ORV_MUTANTS_COMMIT. A first build takes minutes, a mutant some seconds, one that
# survives a minute. ORV_MUTANTS_JOBS is the number of compilers at once.
set -euo pipefail
# shellcheck source=scripts/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

list_dir=$repository/tests/mutants
dir=${ORV_MUTANTS_DIR:-$repository/build/mutants}
commit=${ORV_MUTANTS_COMMIT:-HEAD}
jobs=${ORV_MUTANTS_JOBS:-$(job_count)}
tree=$dir/tree
build_dir=$dir/build
results=$dir/results.tsv
test_timeout_s=90
# Enough of them to meet nearly everything, in a few seconds.
export ORV_RANDOM_MODELS_COUNT=400

again=0 quick=0 mode=run patterns=()
answer_help "$@"
for argument; do
  case $argument in
    --again) again=1 ;;
    --quick) quick=1 ;;
    --check) mode=check ;;
    --list) mode=list ;;
    -*) wrong_usage "unknown option '$argument'" ;;
    *) patterns+=("$argument") ;;
  esac
done

# ---- The list ---------------------------------------------------------------------

# Mutant i: the file it changes, what breaks, the texts and what replaces them (a line
# each), the line behind which to look, the tests that should notice, why nobody can.
files=() words=() olds=() news=() anchors=() tests=() reasons=()

is_wanted() {
  local pattern
  ((${#patterns[@]} > 0)) || return 0
  for pattern in "${patterns[@]}"; do
    [[ "$1: $2" != *"$pattern"* ]] || return 0
  done
  return 1
}

# read_list FILE: blocks of lines, each told by its first character.
read_list() {
  local list=$1 number=0 line
  local file="" file_tests="" description="" old="" new="" texts=0 anchor="" own_tests="" reason=""
  take_block() {
    if [[ -n $description ]]; then
      [[ -n $file && -n $old && $texts == 0 && $old != "$new" ]] ||
        die "$list:$number: '$description' lacks its file, a '-' or a '+' line"
      [[ -n ${own_tests:-$file_tests} ]] || die "$list:$number: no tests for '$description'"
      if is_wanted "$file" "$description"; then
        files+=("$file") words+=("$description") olds+=("${old%$'\n'}") news+=("${new%$'\n'}")
        anchors+=("$anchor") tests+=("${own_tests:-$file_tests}") reasons+=("$reason")
      fi
    fi
    description="" old="" new="" texts=0 anchor="" own_tests="" reason=""
  }
  while IFS= read -r line || [[ -n $line ]]; do
    number=$((number + 1))
    case $line in
      "") take_block ;;
      "#"*) ;;
      "file: "*)
        take_block
        file=${line#file: } file_tests=""
        ;;
      "tests: "*) file_tests=${line#tests: } ;;
      "- "*) old+=${line#- }$'\n' texts=$((texts + 1)) ;;
      "+") new+=$'\n' texts=$((texts - 1)) ;;
      "+ "*) new+=${line#+ }$'\n' texts=$((texts - 1)) ;;
      "@ "*) anchor=${line#@ } ;;
      "? "*) own_tests=${line#\? } ;;
      "= "*) reason+="${reason:+ }${line#= }" ;;
      [[:alnum:]\"\']*)
        [[ -z $description ]] || die "$list:$number: a second description: '$line'"
        description=$line
        ;;
      *) die "$list:$number: '$line' is nothing that a list of mutants holds" ;;
    esac
  done <"$list"
  take_block
}

# tell MUTANT TEXT...: progress, or what is wrong with a mutant.
tell() { say "${files[$1]}: ${words[$1]} ${*:2}"; }

# break_lines MUTANT ROOT: sets `lines` to the file's lines, with the mutant's changes. Says
# what is wrong, and fails, when a text does not stand in exactly one line.
break_lines() {
  local mutant=$1 path=$2/${files[$1]} anchor=${anchors[$1]}
  local i text found first=0 target old new
  if [[ ! -f $path ]]; then
    tell "$mutant" "there is no such file"
    return 1
  fi
  mapfile -t lines <"$path"
  if [[ -n $anchor ]]; then
    found=0
    for i in "${!lines[@]}"; do
      [[ ${lines[i]} != *"$anchor"* ]] || found=$((found + 1)) first=$((i + 1))
    done
    if ((found != 1)); then
      tell "$mutant" "$found lines hold '$anchor'"
      return 1
    fi
  fi
  mapfile -t old <<<"${olds[mutant]}"
  mapfile -t new <<<"${news[mutant]}"
  for text in "${!old[@]}"; do
    found=0
    for ((i = first; i < ${#lines[@]}; ++i)); do
      if [[ ${lines[i]} == *"${old[text]}"* ]]; then
        found=$((found + 1)) target=$i
        [[ -z $anchor ]] || break # the first one behind the anchor is meant
      fi
    done
    if ((found != 1)); then
      tell "$mutant" "$found lines hold '${old[text]}'"
      return 1
    fi
    lines[target]=${lines[target]/"${old[text]}"/"${new[text]-}"}
  done
}

# has_its_tests MUTANT: says which of its tests are not there, and fails, if any.
declare -A known_tests=()
has_its_tests() {
  local name
  if ((${#known_tests[@]} == 0)); then
    while IFS= read -r name; do
      name=${name##*/}
      known_tests[${name%.cpp}]=1
    done < <(find "$repository/tests" -name '*Test.cpp')
  fi
  for name in ${tests[$1]}; do
    if [[ -z ${known_tests[${name#Portable}]-} ]]; then
      tell "$1" "there is no test $name"
      return 1
    fi
  done
}

# ---- The copy ---------------------------------------------------------------------

# With an index of its own, so that neither the working tree nor its index is touched,
# and that files which have not changed keep their time.
update_tree() {
  mkdir -p "$tree"
  (
    cd "$repository"
    export GIT_INDEX_FILE=$dir/index
    git --work-tree="$tree" read-tree --reset -u "$commit"
    git --work-tree="$tree" checkout-index --all --force --index
  )
}

# Every test program of the library itself, the long ones last.
all_tests() {
  local name targets
  cmake "$build_dir" >"$dir/configure.log" # the tree may have got other tests
  targets=$(cmake --build "$build_dir" --target help)
  for name in $(cd "$tree/tests/Model" && find . -name '*Test.cpp' | sed 's|.*/||; s|\.cpp$||' | sort); do
    printf '%s\n' "$name"
    # What knows nothing of vector instructions has but one form.
    if grep -q "^Portable$name: " <<<"$targets"; then
      printf 'Portable%s\n' "$name"
    fi
  done
  printf 'RandomModelsTest\n'
}

program_of() {
  local folder
  for folder in Model reference; do
    if [[ -x $build_dir/tests/$folder/$1 ]]; then
      printf '%s\n' "$build_dir/tests/$folder/$1"
      return
    fi
  done
  return 1
}

compile() {
  nice cmake --build "$build_dir" --parallel "$jobs" --target "$@" >"$dir/build.log" 2>&1
}

# is_killed TEST...: runs the programs until one fails, and sets `killer` to it.
is_killed() {
  local test status log=$dir/test.log
  for test; do
    status=0
    # A broken build may ask for all memory there is.
    (ulimit -v 12000000 -c 0 &&
      exec nice timeout "$test_timeout_s" "$(program_of "$test")" --gtest_fail_fast) \
      >"$log" 2>&1 || status=$?
    ((status != 0)) || continue
    killer=$test
    if ((status == 124)); then
      killer+=" (time limit)"
    else
      killer+=$(sed -n 's/^\[  FAILED  \] \([A-Za-z0-9_]*[./][^ ,]*\).*/: \1/p' "$log" | head -n 1)
      [[ $killer == *:* ]] || killer+=" (status $status)"
    fi
    return 0
  done
  return 1
}

# The tests must pass as long as nothing is broken.
prepare() {
  local head
  head=$(git -C "$repository" rev-parse "$commit^{tree}")
  update_tree
  if [[ ! -f $build_dir/build.ninja ]]; then
    say "configuring in $build_dir"
    repository=$tree configure release "$build_dir" -DORV_BUILD_TESTS=ON -DORV_BUILD_APPS=OFF \
      -DCMAKE_CXX_FLAGS_RELWITHDEBINFO="-O1 -DNDEBUG" -DCMAKE_LINK_DEPENDS_NO_SHARED=ON \
      >"$dir/configure.log" 2>&1 || die "cannot configure: see $dir/configure.log"
  fi
  if ((quick)); then
    mapfile -t all_tests < <(printf '%s\n' "${tests[@]}" | tr ' ' '\n' | sort -u)
  else
    mapfile -t all_tests < <(all_tests)
  fi
  say "building in $build_dir"
  compile "${all_tests[@]}" || die "what is committed does not compile: see $dir/build.log"
  head+=" ${all_tests[*]}"
  if ! grep -qxF "$head" "$dir/passed"; then
    say "running the tests before anything is broken"
    ! is_killed "${all_tests[@]}" || die "$killer fails already: see $dir/test.log"
    printf '%s\n' "$head" >>"$dir/passed"
  fi
}

# ---- One mutant -------------------------------------------------------------------

# key_of MUTANT: what its result depends on, tests aside, which only grow.
key_of() {
  {
    cat "$tree/${files[$1]}" || true # a file that is gone fits nowhere
    printf '%s\n' "${olds[$1]}" "${news[$1]}" "${anchors[$1]}"
  } | git hash-object --stdin
}

# run_mutant MUTANT: sets `outcome` to killed, survived, uncompiled or unmatched, and
# `killer`.
run_mutant() {
  local mutant=$1 path=$tree/${files[$1]} named rest=() test
  local lines
  read -r -a named <<<"${tests[$mutant]}"
  killer=""
  if ! break_lines "$mutant" "$tree"; then
    outcome=unmatched
    return
  fi
  cp "$path" "$dir/original"
  printf '%s\n' "${lines[@]}" >"$path"
  if ! compile OrvModel "${named[@]}"; then
    outcome=uncompiled
  elif is_killed "${named[@]}"; then
    outcome=killed
  elif ((quick)); then
    outcome=survived
  else
    for test in "${all_tests[@]}"; do
      [[ " ${named[*]} " == *" $test "* ]] || rest+=("$test")
    done
    outcome=survived
    if ! compile "${rest[@]}"; then
      outcome=uncompiled
    elif is_killed "${rest[@]}"; then
      outcome=killed
    fi
  fi
  cat "$dir/original" >"$path"
}

known_killer() { awk -F'\t' -v key="$1" '$1 == key { found = $2 } END { print found }' "$results"; }

# ---- All of them ------------------------------------------------------------------

shopt -s nullglob
for list in "$list_dir"/*.mutants; do
  read_list "$list"
done
((${#files[@]} > 0)) || die "no mutant in $list_dir matches"

case $mode in
  list)
    for i in "${!files[@]}"; do
      printf '%s: %s\n' "${files[i]}" "${words[i]}"
    done
    exit 0
    ;;
  check)
    bad=0
    for i in "${!files[@]}"; do
      break_lines "$i" "$repository" && has_its_tests "$i" || bad=$((bad + 1))
    done
    ((bad == 0)) || die "$bad of ${#files[@]} mutants do not fit"
    say "${#files[@]} mutants fit"
    exit 0
    ;;
esac

bash "$repository/scripts/setup.sh" build test
mkdir -p "$dir"
touch "$results" "$dir/passed"
prepare

outcomes=() killers=()
for i in "${!files[@]}"; do
  key=$(key_of "$i")
  killer=$(known_killer "$key")
  if [[ -n $killer && $again == 0 ]]; then
    outcome=killed
  else
    SECONDS=0
    run_mutant "$i"
    [[ $outcome != killed ]] || printf '%s\t%s\n' "$key" "$killer" >>"$results"
    tell "$i" "$outcome in $SECONDS s ($((i + 1)) of ${#files[@]})${killer:+ [$killer]}"
  fi
  outcomes+=("$outcome") killers+=("$killer")
done

# ---- What came of it --------------------------------------------------------------

bad=0

# show TEXT MUTANT WHY: a mutant that needs somebody's attention.
show() {
  printf '%s: %s: %s (%s)\n' "$1" "${files[$2]}" "${words[$2]}" "$3"
  printf '    - %s\n' "${olds[$2]//$'\n'/$'\n    - '}"
  printf '    + %s\n' "${news[$2]//$'\n'/$'\n    + '}"
}

declare -A total killed equivalent
for i in "${!files[@]}"; do
  file=${files[i]}
  total[$file]=$((${total[$file]-0} + 1))
  case ${outcomes[i]}:${reasons[i]:+equivalent} in
    killed:) killed[$file]=$((${killed[$file]-0} + 1)) ;;
    survived:equivalent) equivalent[$file]=$((${equivalent[$file]-0} + 1)) ;;
    killed:equivalent) show "DECLARED EQUIVALENT" "$i" "yet ${killers[i]} notices" ;;&
    survived:) show "SURVIVED" "$i" "no test notices" ;;&
    uncompiled:*) show "DOES NOT COMPILE" "$i" "mend the list" ;;&
    unmatched:*) show "DOES NOT FIT" "$i" "mend the list" ;;&
    *) bad=$((bad + 1)) ;;
  esac
done

printf '| file | mutants | killed | equivalent |\n|---|---|---|---|\n'
all=0 all_killed=0 all_equivalent=0
for file in $(printf '%s\n' "${!total[@]}" | sort); do
  # shellcheck disable=SC2016 # the quotes are the table's
  printf '| `%s` | %d | %d | %d |\n' "${file#src/Model/}" "${total[$file]}" \
    "${killed[$file]-0}" "${equivalent[$file]-0}"
  all=$((all + ${total[$file]}))
  all_killed=$((all_killed + ${killed[$file]-0}))
  all_equivalent=$((all_equivalent + ${equivalent[$file]-0}))
done
printf '| all | %d | %d | %d |\n' "$all" "$all_killed" "$all_equivalent"
((bad == 0)) || die "$bad mutants that the tests or the list have to be mended for"
