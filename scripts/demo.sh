#!/usr/bin/env bash
# Starts the tool on the simulated bench. Without a display it drives the same window through a tour and writes pictures.
# demo.sh [--tour [folder]]: asks for the tour in any case.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

ensure_packages "${build_packages[@]}"
build_preset release tactile-host-demo companions
demo="$root_dir/build/release/bin/tactile-host-demo"

say_what_else() {
  say "Also to try, beside the tool:"
  echo "build/release/bin/tactile-sim --sensor 17@0x61  is a sensor for programs of your own (docs/simulator.md)"
  echo "build/release/bin/tactile-log --link ch341      records without a window (docs/recordings.md)"
  [ -x "$root_dir/build/release/bin/tactile-plot" ] || return 0
  echo "build/release/bin/tactile-plot                    draws what the tool sends over TCP (docs/plotting.md)"
  echo "build/release/bin/tactile-plot recording.csv      draws a recording (docs/recordings.md)"
}

if [ "${1:-}" != --tour ] && [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
  say_what_else
  exec "$demo"
fi

pictures=${2:-$root_dir/build/tour}
mkdir -p "$pictures"
say "Touring the tool without a display"
for language in en zh_cn; do
  # The tool's own log would bury what the tour prints.
  QT_QPA_PLATFORM=offscreen "$demo" --tour "$pictures/$language" --language "$language" 2>"$pictures/$language.log"
done
say "Pictures and the tool's log are in $pictures"
say_what_else
