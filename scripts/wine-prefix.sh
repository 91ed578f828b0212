#!/bin/sh
# wine-prefix.sh start|stop DIR
# start: makes the Wine prefix DIR if it is not there, so that message boxes work without a display, and
#   keeps its server running: a server that a test started would keep that test's output open.
# stop: ends the prefix's server and every program in it. Other prefixes are not touched.
set -eu
action=$1
WINEPREFIX=$(mkdir -p "$2" && cd "$2" && pwd)
WINEDEBUG=-all
WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES
unset DISPLAY WAYLAND_DISPLAY

stop_server() {
  wineserver -k || true
  wineserver -w
}

case $action in
start)
  if [ ! -e "$WINEPREFIX/ready" ]; then
    wineboot --init
    # The null driver makes real windows that are never drawn. It counts from the next server on.
    wine reg add 'HKCU\Software\Wine\Drivers' /v Graphics /d null /f
    stop_server
    touch "$WINEPREFIX/ready"
  fi
  wineserver -p || true
  wine cmd /c exit
  ;;
stop)
  stop_server
  ;;
esac >/dev/null 2>&1 </dev/null
