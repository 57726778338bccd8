# Sourced by kex: a Wine prefix of the build tree's own, with a display of its own, for as long as one command runs.
#
# Three things make it quick and keep it apart from everything else on the machine:
# - Xvfb takes the first free display number, so two checkouts never meet;
# - a keeper process holds the Wine desktop open: without it each program would wait for the desktop to come and go;
# - both die with this shell, however it ends, since the kernel signals them at its death.

prefix_recipe=1 # raise it when prepare_prefix changes: older prefixes are made anew

session_folder=$root/build/session
export WINEPREFIX=$root/build/wine WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
export WINEDLLOVERRIDES='mscoree,mshtml=;winemenubuilder.exe=d'

# How a program starts. Without a random layout: Linux may put the heap of Wine's loader where Windows keeps its shared
# data (0x7ffe0000), and one start in some thousands then ends at once with status 1 and not a word.
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

start_display() {
  local number=$session_folder/display
  rm -f "$number"
  start_companion sh -c 'exec 3>"$1"; exec Xvfb -displayfd 3 -screen 0 1024x768x24 -nolisten tcp -noreset' sh "$number"
  display_process=$!
  wait_until 20 $! test -s "$number" || fail "the display server Xvfb did not start."
  DISPLAY=:$(cat "$number")
  export DISPLAY
}

wine_quietly() {
  "${wine[@]}" "$@" </dev/null >/dev/null 2>&1 9>&-
}

# The answers to Wine's questions, once: a virtual desktop, fonts that it finds, no crash dialog, folders that are not
# the user's.
prepare_prefix() {
  local stamp=$WINEPREFIX/.prepared folder
  [ "$(cat "$stamp" 2>/dev/null)" = "$prefix_recipe" ] && return
  say "preparing Wine in build/wine (once)"
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  wine_quietly wineboot --init || fail "Wine could not make its prefix in build/wine."
  wine_quietly regedit /S "$(windows_path "$root/scripts/wine-prefix.reg")"
  stop_wine
  cp /usr/share/wine/fonts/* "$WINEPREFIX/drive_c/windows/Fonts/"
  for folder in "$WINEPREFIX/drive_c/users/$(id -un)"/*; do
    [ ! -L "$folder" ] || { rm "$folder" && mkdir "$folder"; }
  done
  echo "$prefix_recipe" >"$stamp"
}

start_keeper() {
  local ready=$session_folder/keeper-ready
  rm -f "$ready"
  start_companion "${wine[@]}" "$programs/keeper.exe" "$(windows_path "$ready")"
  wait_until 60 $! test -e "$ready" || fail "Wine did not start."
}

stop_wine() {
  timeout 20 wineserver -k >/dev/null 2>&1 9>&- || true
  timeout 20 wineserver -w >/dev/null 2>&1 9>&- || true
}

# From here to the end of the command Wine can run programs, on a display of its own or, with own-display, the user's.
start_session() {
  lock_checkout
  mkdir -p "$session_folder"
  session_started=1
  stop_wine
  [ "${1:-}" = own-display ] || start_display
  prepare_prefix
  [ -e "$programs/keeper.exe" ] || build_targets keeper
  start_keeper
  export KEX_WINE="${wine[*]}"
}

stop_session() {
  [ -n "${session_started:-}" ] || return 0
  stop_wine
  [ -z "${display_process:-}" ] || { kill "$display_process" && wait "$display_process"; } 2>/dev/null || true
}
