# Sourced by the scripts that run something under Wine, with the build folder in $build: a Wine prefix of the
# build folder's own, and what makes pseudo-terminals COM ports there.

wine=/usr/lib/wine/wine64
wine_server=/usr/lib/wine/wineserver64
export WINEPREFIX=$build/wine WINESERVER=$wine_server WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
serial_port_shim=$build/serial_port_shim.so

# wait_for_server PID: a program that finds no server starts one of its own, which knows nothing of our ports.
wait_for_server() {
  local left=100
  # It works in the folder of its socket.
  until [ -S "/proc/$1/cwd/socket" ]; do
    left=$((left - 1))
    if [ $left -eq 0 ] || ! kill -0 "$1" 2>/dev/null; then
      echo "The Wine server did not start; see $build/wineserver.log" >&2
      return 1
    fi
    sleep 0.1
  done
}

# start_wine: starts the server, then makes the prefix where there is none yet.
start_wine() {
  mkdir -p "$WINEPREFIX"
  g++ -std=c++20 -O1 -Wall -Wextra -fPIC -shared -o "$serial_port_shim" "$root/scripts/wine/serial_port_shim.cpp"
  # In the foreground: a server that is its own session's leader would take the tests' ports for its terminal.
  LD_PRELOAD=$serial_port_shim "$wine_server" -f -p 2>"$build/wineserver.log" &
  wait_for_server $!
  "$wine" wineboot --init
  # There are none of Windows' own fonts here; left to itself Wine takes one with odd measures for them.
  "$wine" regedit /S "$root/scripts/wine/fonts.reg"
}

stop_wine() {
  "$wine_server" -k || true
}

# run_wine PROGRAM [ARGUMENTS...]
run_wine() {
  LD_PRELOAD=$serial_port_shim "$wine" "$@"
}
