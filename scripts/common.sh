# Sourced by kex before the other scripts: where things are, and what all of them need.
# shellcheck disable=SC2034 # used by those that source this file

preset=mingw-release
build=$root/build/$preset
programs=$build/bin

# One clear sentence, then exit status 2.
fail() {
  echo "kex: $*" >&2
  exit 2
}

say() {
  echo "kex: $*" >&2
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
