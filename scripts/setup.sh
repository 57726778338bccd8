# Sourced by kex: brings a Debian machine to where kexlib builds and runs.

# A Node from elsewhere brings an npm of its own, beside which Debian's cannot be installed.
has_node() {
  command -v npm >/dev/null && node --eval 'process.exit(parseInt(process.versions.node) >= 18 ? 0 : 1)' 2>/dev/null
}

# The lists in packaging/ of what is installed. A command that needs more adds a list.
package_lists=(debian-packages.txt)

missing_packages() {
  local wanted installed
  wanted=$(cd "$root/packaging" && grep -h -v -e '^#' -e '^$' "${package_lists[@]}")
  [ "$preset" != msvc-abi ] || wanted+=$'\n'$(packages_to install)
  wanted=$(sort <<<"$wanted")
  if has_node; then wanted=$(grep -v -x -e nodejs -e npm <<<"$wanted"); fi
  # shellcheck disable=SC2086
  installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
    sed -n 's/^installed //p' | sort) || true
  comm -23 <(echo "$wanted") <(echo "$installed") | paste -sd ' '
}

# Installs what is missing from the lists of packages, and nothing that is there; makes the tools of msvc-abi.
set_up_machine() {
  install_missing_packages
  [ "$preset" != msvc-abi ] || set_up_msvc_abi
}

install_missing_packages() {
  local missing log=$root/build/setup.log
  command -v dpkg-query >/dev/null || fail "this is no Debian machine: install what packaging/debian-packages.txt names by hand."
  missing=$(missing_packages)
  [ -n "$missing" ] || return 0
  [ "$(id -u)" = 0 ] || fail "only root can install what is missing; run: apt-get install --no-install-recommends $missing"
  say "installing $missing"
  make_build_folder
  export DEBIAN_FRONTEND=noninteractive
  # shellcheck disable=SC2086
  if ! {
    apt-get update &&
      apt-get -o DPkg::Lock::Timeout=600 install -y --no-install-recommends $missing
  } >"$log" 2>&1 </dev/null; then
    local unknown
    unknown=$(sed -n 's/^E: Unable to locate package //p' "$log" | paste -sd ' ')
    [ -z "$unknown" ] || fail "apt knows no package named $unknown (see build/setup.log)."
    fail "apt-get could not fetch or install the packages: is there a network? (see build/setup.log)"
  fi
}
