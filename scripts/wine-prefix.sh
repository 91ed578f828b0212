#!/bin/sh
# wine-prefix.sh start|stop DIR
# start: makes the Wine prefix DIR if it is not there, so that message boxes work without a display, and
#   keeps its server running: a server that a test started would keep that test's output open. If socat is
#   there, COM40 and COM41 are the ends of one line as long.
# stop: ends the prefix's server, every program in it, and the line. Other prefixes are not touched.
set -eu
action=$1
WINEPREFIX=$(mkdir -p "$2" && cd "$2" && pwd)
WINEDEBUG=-all
WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY WAYLAND_DISPLAY

# Without fixed addresses Debian's Wine fails to start now and then: see cmake/run_under_wine.sh.in.
fixed_addresses=
if setarch -R true 2>/dev/null; then fixed_addresses='setarch -R'; fi

stop_server() {
  wineserver -k || true
  wineserver -w
}

# The two ports are pseudo-terminals that one socat process joins.
line=$WINEPREFIX/serial-line
line_runs() {
  [ -e "$line/pid" ] && grep -qsF -- "$line" "/proc/$(cat "$line/pid")/cmdline"
}
start_line() {
  if line_runs || ! command -v socat; then return; fi
  mkdir -p "$line"
  socat "pty,raw,echo=0,link=$line/com40" "pty,raw,echo=0,link=$line/com41" &
  echo $! >"$line/pid"
}
stop_line() {
  if line_runs; then kill "$(cat "$line/pid")"; fi
  rm -f "$line/pid"
}

# A prefix that an older version of this script made is made up to date.
settings=2

case $action in
start)
  start_line
  if [ "$(cat "$WINEPREFIX/ready")" != $settings ]; then
    $fixed_addresses wineboot --init
    # The null driver makes real windows that are never drawn. These settings count from the next server on.
    $fixed_addresses wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
    for port in 40 41; do
      $fixed_addresses wine reg add 'HKLM\Software\Wine\Ports' /v COM$port /d "$line/com$port" /f
    done
    stop_server
    echo $settings >"$WINEPREFIX/ready"
  fi
  wineserver -p || true
  # The first window starts the desktop, which ends a second after the last program that uses it, and would hold the
  # output of the test that showed that window as long. A window that stays keeps one desktop for all.
  $fixed_addresses wine notepad &
  $fixed_addresses wine rundll32 user32.dll,GetDesktopWindow || true
  ;;
stop)
  stop_server
  stop_line
  ;;
esac >/dev/null 2>&1 </dev/null
