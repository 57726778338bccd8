# Sourced by kex: runs the fuzzers of tests/fuzz and viewer/tests/fuzz.
#
# A core is fuzzed by what can call it: libFuzzer if it knows no platform, a program under Wine with a generator of its own
# if it does, Node if it is the viewer's.

declare -A fuzzer_of # native, windows or viewer, by the name of a core

find_cores() {
  local path name
  for path in "$root"/tests/fuzz/*/*_fuzz.cpp "$root"/viewer/tests/fuzz/*_fuzz.ts; do
    [ -e "$path" ] || continue
    name=$(basename "$path")
    case $path in
      */platform_free/*) fuzzer_of[${name%_fuzz.cpp}]=native ;;
      */windows/*) fuzzer_of[${name%_fuzz.cpp}]=windows ;;
      *.ts) fuzzer_of[viewer_${name%_fuzz.ts}]=viewer ;;
    esac
  done
}

core_names() {
  printf '%s\n' "${!fuzzer_of[@]}" | sort
}

is_a_core() {
  find_cores
  [ -n "$1" ] && [ -n "${fuzzer_of[$1]:-}" ] || fail "there is no core '$1'; there are $(core_names | paste -sd ' ')."
}

# prepare_fuzzing [CORE]: builds what runs that core, or all of them.
prepare_fuzzing() {
  local kinds uses=(build) targets=()
  find_cores
  kinds=" ${fuzzer_of[*]} "
  [ -z "$1" ] || kinds=" ${fuzzer_of[$1]} "
  [[ $kinds != *" native "* ]] || uses+=(fuzz)
  [[ $kinds != *" windows "* ]] || uses+=(run)
  set_up_machine "${uses[@]}"
  lock_checkout
  mkdir -p "$root/build/fuzz"
  cd "$root"
  if [[ $kinds == *" native "* ]]; then
    [ -f "$root/build/native-fuzz/build.ninja" ] || run_beside cmake --preset native-fuzz -S "$root" >&2
    run_beside ninja -C "$root/build/native-fuzz" core_fuzz >&2
  fi
  [[ $kinds != *" windows "* ]] || targets+=(seeded_fuzz keeper)
  [[ $kinds != *" viewer "* ]] || targets+=(viewer/packages.stamp)
  [ ${#targets[@]} = 0 ] || build_targets "${targets[@]}"
  [[ $kinds != *" windows "* ]] || start_sessions 1
}

# Beside the sanitizers' own reports, which go to the error output of what it runs.
core_fuzz() {
  KEX_FUZZ_CORE=$1 ASAN_SYMBOLIZER_PATH=/usr/lib/llvm-19/bin/llvm-symbolizer \
    run_beside build/native-fuzz/tests/native/core_fuzz -timeout=10 "${@:2}"
}

seeded_fuzz() {
  run_beside scripts/wine-run "$programs/seeded_fuzz.exe" "$@"
}

viewer_fuzz() {
  run_beside npm run fuzz --silent --prefix viewer -- "$@"
}

# search CORE SECONDS FINDING: an input that makes a difference is written to the file FINDING. Nothing is said but how
# many inputs were run, or what was found.
search() {
  local core=$1 seconds=$2 finding=$3 kept=tests/fuzz/corpus/$1 interesting=build/fuzz/corpus/$1
  case ${fuzzer_of[$core]} in
    native)
      mkdir -p "$interesting" # libFuzzer adds to its first folder
      core_fuzz "$core" "-max_total_time=$seconds" "-exact_artifact_path=$finding" -print_final_stats=1 -verbosity=0 \
        "$interesting" "$kept" >"$finding.log" 2>&1 || return
      sed -n 's/^stat::number_of_executed_units: \(.*\)/\1 inputs/p' "$finding.log"
      ;;
    windows) seeded_fuzz "$core" "$seconds" "$RANDOM$RANDOM" "$kept" "$finding" 2>"$finding.log" ;;
    viewer) viewer_fuzz "$core" "$seconds" "$RANDOM$RANDOM" "$root/$finding" 2>"$finding.log" ;;
  esac
}

# fuzz SECONDS [CORE]: the time is spread evenly; each core gets at least a second.
fuzz() {
  local total=$1 cores core each finding status=0
  mapfile -t cores < <(core_names)
  [ -z "$2" ] || cores=("$2")
  each=$((total / ${#cores[@]}))
  [ $each -gt 0 ] || each=1
  for core in "${cores[@]}"; do
    finding=build/fuzz/$core.finding
    rm -f "$finding"
    if search "$core" "$each" "$finding" >"$finding.inputs"; then
      echo "$core: $(cat "$finding.inputs") in $each s"
    else
      status=1
      grep -v -e '^INFO' -e '^stat::' "$finding.log" | tail -30
      [ -f "$finding" ] || fail "$core cannot be fuzzed (see above)."
      echo "$core: FOUND; the input is kept. To repeat it: ./kex fuzz --repeat $core $finding"
    fi
    rm -f "$finding.log" "$finding.inputs"
  done
  return $status
}

repeat_input() {
  case ${fuzzer_of[$1]} in
    native) core_fuzz "$1" "$2" ;;
    windows) seeded_fuzz "$1" "$2" ;;
    viewer) viewer_fuzz "$1" "$2" ;;
  esac || return 1
  echo "$1: no difference"
}
