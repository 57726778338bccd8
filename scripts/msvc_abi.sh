# Sourced by kex: makes, once, what cmake/msvc_abi.cmake names. Everything lies in build/msvc-abi-tools.
#
#   root/      packages that are unpacked, not installed: Wine's headers and import libraries, the headers of libc++
#   libcxx/    the sources of libc++
#   include/   the few headers of Wine of which a line must read otherwise
#   bin/       clang-cl
#   lib/       import libraries under the names that Windows programs link, and our run-time libraries
#   runtime/   the build of cmake/msvc_abi: libc++.lib and msvcrt.lib

msvc_abi_recipe=1 # raise it when fetch_msvc_abi_tools changes: older tools are made anew
msvc_abi_tools=$root/build/msvc-abi-tools

# packages_to METHOD: those of the list that are taken so.
packages_to() {
  sed -n "s/^$1 //p" "$root/packaging/msvc-abi-packages.txt"
}

# Runs a step of the making and says where to look if it fails.
msvc_abi_step() {
  "$@" >>"$msvc_abi_tools/log" 2>&1 </dev/null || fail "the tools for msvc-abi could not be made: $1 failed (see build/msvc-abi-tools/log)."
}

# Source packages come from the machine's own Debian mirror. The list that names it is ours: the machine's stay as they are.
fetch_sources() {
  local apt=$msvc_abi_tools/apt options
  mkdir -p "$apt/lists/partial"
  # shellcheck disable=SC2016 # apt's own variables
  apt-get indextargets --format 'deb-src $(REPO_URI) $(RELEASE) $(COMPONENT)' 'Created-By: Packages' 'Origin: Debian' |
    sort -u >"$apt/sources.list"
  options=(-o "Dir::Etc::SourceList=$apt/sources.list" -o Dir::Etc::SourceParts=- -o "Dir::State::Lists=$apt/lists"
    -o Dir::Cache::PkgCache= -o Dir::Cache::SrcPkgCache= -o APT::Sandbox::User=root)
  apt-get "${options[@]}" update || return 1
  # shellcheck disable=SC2046
  (cd "$apt" && apt-get "${options[@]}" source --download-only $(packages_to source)) || return 1
  tar -xJf "$apt"/llvm-toolchain-19_*.orig.tar.xz -C "$msvc_abi_tools" --strip-components=1 --wildcards '*/libcxx/src/*' || return 1
  rm -r "$apt"
}

fetch_packages() {
  local packages=$msvc_abi_tools/packages package
  mkdir -p "$packages"
  # shellcheck disable=SC2046
  (cd "$packages" && apt-get -o APT::Sandbox::User=root download $(packages_to unpack)) || return 1
  for package in "$packages"/*.deb; do dpkg-deb --extract "$package" "$msvc_abi_tools/root" || return 1; done
  rm -r "$packages"
}

# patched HEADER EXPRESSION: a copy of one of Wine's headers, changed by sed; fails if nothing changed.
patched() {
  local from=$msvc_abi_tools/root/usr/include/wine/wine/$1 to
  to=$msvc_abi_tools/include/$(basename "$1")
  sed "$2" "$from" >"$to"
  ! cmp -s "$from" "$to"
}

# Three things that Wine's headers assume of this compiler do not hold.
patch_headers() {
  mkdir -p "$msvc_abi_tools/include"
  patched windows/winnt.h 's/^#if defined(_MSC_VER) && !defined(__clang__)$/#if defined(_MSC_VER)/' &&
    patched windows/windef.h 's/^# define inline __inline$//' &&
    patched msvcrt/wchar.h 's/^typedef int mbstate_t;/typedef struct _Mbstatet { unsigned long _Wchar; unsigned short _Byte, _State; } _Mbstatet;\ntypedef _Mbstatet mbstate_t;/' &&
    mv "$msvc_abi_tools/include/wchar.h" "$msvc_abi_tools/include/wine_wchar.h"
}

# The linker looks for NAME.lib. Those of the run-time library have other names on Windows.
link_libraries() {
  local library name folder=$msvc_abi_tools/lib wine=$msvc_abi_tools/root/usr/lib/x86_64-linux-gnu/wine/x86_64-windows
  mkdir -p "$folder"
  for library in "$wine"/lib*.a; do
    name=$(basename "$library" .a)
    name=${name#lib}
    case $name in
      msvcrt*) continue ;; # the start of programs is ours
      ucrtbase) name=ucrt ;;
      vcruntime140) name=vcruntime ;;
    esac
    ln -sfn "$library" "$folder/$name.lib"
  done
  # Wine's has no identifiers of the imaging classes.
  ln -sfn /usr/x86_64-w64-mingw32/lib/libwindowscodecs.a "$folder/windowscodecs.lib"
  # Wine's import library of it has no C++ names.
  /usr/lib/llvm-19/bin/llvm-lib /machine:x64 "/def:$root/cmake/msvc_abi/runtime/exception_pointers.def" \
    "/out:$folder/exception_pointers.lib"
}

link_compiler() {
  mkdir -p "$msvc_abi_tools/bin"
  ln -sfn /usr/lib/llvm-19/bin/clang "$msvc_abi_tools/bin/clang-cl"
}

fetch_msvc_abi_tools() {
  [ "$(cat "$msvc_abi_tools/.made" 2>/dev/null)" != "$msvc_abi_recipe" ] || return 0
  say "making the tools for msvc-abi in build/msvc-abi-tools (once)"
  rm -rf "$msvc_abi_tools"
  mkdir -p "$msvc_abi_tools"
  msvc_abi_step fetch_packages
  msvc_abi_step fetch_sources
  msvc_abi_step patch_headers
  msvc_abi_step link_libraries
  msvc_abi_step link_compiler
  echo "$msvc_abi_recipe" >"$msvc_abi_tools/.made"
}

# Sets the machine up for --toolchain msvc-abi, beside what set_up_machine does.
set_up_msvc_abi() {
  local runtime=$msvc_abi_tools/runtime
  lock_checkout
  fetch_msvc_abi_tools
  [ -f "$runtime/build.ninja" ] ||
    run_beside cmake -G Ninja -S "$root/cmake/msvc_abi" -B "$runtime" -DCMAKE_BUILD_TYPE=Release \
      "-DCMAKE_TOOLCHAIN_FILE=$root/cmake/msvc_abi.cmake" >&2
  run_beside ninja -C "$runtime" --quiet >&2
}
