# Sourced by kex before the other scripts: where things are, and what all of them need.
# shellcheck disable=SC2034 # used by those that source this file

# use_preset NAME: the CMake preset that commands build and run, and its folders.
use_preset() {
  preset=$1
  build=$root/build/$preset
  programs=$build/bin
}
use_preset mingw-release

# One clear sentence, then exit status 2.
fail() {
  echo "kex: $*" >&2
  exit 2
}

say() {
  echo "kex: $*" >&2
}

# use_toolchain NAME: what --toolchain names.
use_toolchain() {
  case $1 in
    mingw) use_preset mingw-release ;;
    msvc-abi) use_preset msvc-abi ;;
    hardened) use_preset mingw-hardened ;;
    *) fail "there is no toolchain '$1'; there are mingw, msvc-abi and hardened." ;;
  esac
}

make_build_folder() {
  { mkdir -p "$root/build" && : >>"$root/build/lock"; } 2>/dev/null || fail "the folder build cannot be written to."
}

# One command at a time in one checkout, from its first change of the build tree to its end.
lock_checkout() {
  [ -z "${locked:-}" ] || return 0
  make_build_folder
  exec 9>>"$root/build/lock"
  if ! flock --nonblock 9; then
    say "waiting for another ./kex of this checkout to end"
    flock 9
  fi
  locked=1
}
