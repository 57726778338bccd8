# Sourced by kex: Wine sessions of the build tree's own, for as long as one command runs.
#
# A session is a Wine prefix and a display. ./kex test starts several; each runs one test at a time, so no test shares
# the focus, the cursor, the keyboard, the clipboard, the registry or the user's folders with another one. Every other
# command starts the first session only.
# - Xvfb takes the first free display number, so two checkouts never meet.
# - A keeper process holds the Wine desktop open: without it each program would wait for the desktop to come and go.
# - Both end with this shell, however it ends: the kernel signals them.

prefix_recipe=2 # raise it when prepare_prefix changes: older prefixes are made anew

session_folder=$root/build/session
export WINEPREFIX=$root/build/wine WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'

# How a program starts. Without a random layout: Linux may put the heap of Wine's loader where Windows keeps its shared
# data (0x7ffe0000), and one start in some thousands then ends at once with status 1 and no message.
wine=(wine)
if setarch -R true 2>/dev/null; then
  wine=(setarch -R wine)
fi

desktop_folder() {
  echo "$WINEPREFIX/drive_c/users/$(id -un)/Desktop"
}

windows_path() {
  echo "Z:${1//\//\\}"
}

# wait_until SECONDS PROCESS CONDITION...: lets a condition become true, looking every 20 ms; not when PROCESS has ended.
wait_until() {
  local left=$(($1 * 50)) process=$2
  shift 2
  until "$@"; do
    left=$((left - 1))
    [ $left -gt 0 ] && kill -0 "$process" 2>/dev/null || return 1
    sleep 0.02
  done
}

# Starts a program that must not outlive this shell nor hold its pipes or its lock (file 9).
start_companion() {
  setsid setpriv --pdeathsig KILL "$@" </dev/null >/dev/null 2>&1 9>&- &
}

wine_quietly() {
  "${wine[@]}" "$@" </dev/null >/dev/null 2>&1 9>&-
}

# prefix_of SESSION
prefix_of() {
  if [ "$1" = 1 ]; then
    echo "$root/build/wine"
  else
    echo "$root/build/wine-$1"
  fi
}

is_prepared() {
  [ "$(cat "$1/.prepared" 2>/dev/null)" = "$prefix_recipe" ]
}

# The answers to Wine's questions, once: a virtual desktop, fonts that it finds, no crash dialog, and no link to the
# user's own folders.
prepare_prefix() {
  local link
  is_prepared "$WINEPREFIX" && return
  say "preparing Wine in build/wine (once)"
  rm -rf "$root"/build/wine "$root"/build/wine-*
  mkdir -p "$WINEPREFIX"
  wine_quietly wineboot --init || fail "Wine could not make its prefix in build/wine."
  wine_quietly regedit /S "$(windows_path "$root/scripts/wine-prefix.reg")"
  stop_wine
  cp /usr/share/wine/fonts/* "$WINEPREFIX/drive_c/windows/Fonts/"
  find "$WINEPREFIX/drive_c" -type l -print0 | while IFS= read -r -d '' link; do
    rm "$link" && mkdir "$link"
  done
  echo "$prefix_recipe" >"$WINEPREFIX/.prepared"
}

# copy_prefix COPY: another prefix like the first one. What Wine has installed is there once and linked, since it is only
# read; what programs write is copied.
copy_prefix() {
  local file
  is_prepared "$1" && return
  rm -rf "$1"
  mkdir -p "$1/drive_c"
  cp -a "$WINEPREFIX"/*.reg "$WINEPREFIX"/dosdevices "$1"
  for file in "$WINEPREFIX"/drive_c/*; do
    case $file in
      */windows) cp -al "$file" "$1/drive_c" ;;
      *) cp -a "$file" "$1/drive_c" ;;
    esac
  done
  cp -a "$WINEPREFIX"/.update-timestamp "$WINEPREFIX"/.prepared "$1"
}

# set_heap_checks PREFIX: with the preset mingw-hardened the heaps of all programs fill the room behind each block (the
# global flag for the tail of blocks), otherwise none. Not the flags for parameters and for freed blocks: with either one
# Wine holds back a thousand freed blocks of a heap, and tests count blocks.
set_heap_checks() {
  local flags=00000000
  [ "$preset" != mingw-hardened ] || flags=00000010
  sed -i "s/^\"GlobalFlag\"=dword:.*/\"GlobalFlag\"=dword:$flags/" "$1/system.reg"
  [ "$flags" = 00000000 ] || grep -q "^\"GlobalFlag\"=dword:$flags" "$1/system.reg" ||
    fail "the registry of this Wine has no GlobalFlag: heaps would not be checked."
}

# start_display SESSION
start_display() {
  local number=$session_folder/$1/display
  rm -f "$number"
  start_companion sh -c 'exec 3>"$1"; exec Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset' sh "$number"
  display_processes[$1]=$!
}

# wait_for_display SESSION [no-display-needed]
wait_for_display() {
  local number=$session_folder/$1/display
  if wait_until 20 "${display_processes[$1]}" test -s "$number"; then
    displays[$1]=:$(cat "$number")
  else
    [ -n "${2:-}" ] || fail "the display server Xvfb did not start."
    say "WARNING: the display server Xvfb did not start: there are no windows."
    displays[$1]=
  fi
}

# start_keeper SESSION
start_keeper() {
  local ready=$session_folder/$1/keeper-ready
  rm -f "$ready"
  start_companion "${wine[@]}" "$programs/keeper.exe" "$(windows_path "$ready")"
  keepers[$1]=$!
}

stop_wine() {
  timeout 20 wineserver -k >/dev/null 2>&1 9>&- || true
  timeout 20 wineserver -w >/dev/null 2>&1 9>&- || true
}

# In all prefixes of this checkout: a killed ./kex may have left something behind.
stop_wine_everywhere() {
  local prefix
  for prefix in "$root"/build/wine "$root"/build/wine-*; do
    [ ! -d "$prefix" ] || WINEPREFIX=$prefix stop_wine
  done
}

# start_sessions COUNT [own-display | no-display-needed]: from here to the end of the command Wine can run programs. They
# run in the first session, or in the one that scripts/wine-run is told. With own-display the first has the user's display;
# with no-display-needed a session goes on without one.
start_sessions() {
  local count=$1 session prefix resources=
  display_processes=() displays=() keepers=()
  lock_checkout
  rm -rf "$session_folder"
  for ((session = 1; session <= count; session++)); do mkdir -p "$session_folder/$session"; done
  sessions_started=1
  stop_wine_everywhere
  if [ "${2:-}" = own-display ]; then
    displays[1]=$DISPLAY
  else
    for ((session = 1; session <= count; session++)); do start_display $session; done
    for ((session = 1; session <= count; session++)); do wait_for_display $session "${2:-}"; done
  fi
  export DISPLAY=${displays[1]}
  prepare_prefix
  for ((session = 2; session <= count; session++)); do copy_prefix "$(prefix_of $session)"; done
  for ((session = 1; session <= count; session++)); do
    prefix=$(prefix_of $session)
    set_heap_checks "$prefix"
    WINEPREFIX=$prefix DISPLAY=${displays[session]} start_keeper $session
    printf 'export WINEPREFIX=%q DISPLAY=%q\n' "$prefix" "${displays[session]}" >"$session_folder/$session/environment"
    resources+="${resources:+, }{ \"id\": \"$session\", \"slots\": 1 }"
  done
  echo "{ \"version\": { \"major\": 1, \"minor\": 0 }, \"local\": [ { \"sessions\": [ $resources ] } ] }" \
    >"$session_folder/resources.json"
  for ((session = 1; session <= count; session++)); do
    wait_until 60 "${keepers[session]}" test -e "$session_folder/$session/keeper-ready" || fail "Wine did not start."
  done
  export KEX_SESSIONS=$session_folder KEX_WINE="${wine[*]}"
}

stop_sessions() {
  local process
  [ -n "${sessions_started:-}" ] || return 0
  stop_wine_everywhere
  for process in "${display_processes[@]}"; do
    { kill "$process" && wait "$process"; } 2>/dev/null || true
  done
}
