#!/usr/bin/env bash
# Works the whole tool on a bench full of faults, without a display, over each link in turn, and prints the books.
# soak.sh [--for 1h] [--link uart|ch341|ch347]... [--together] [--seed N] [--preset release|asan]
# The time is shared by the links; with --together they run side by side, each for the whole of it.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

duration=1h links=() together= seed=1 preset=release
while [ $# -gt 0 ]; do
  case "$1" in
    --for) duration=$2 && shift ;;
    --link) links+=("$2") && shift ;;
    --seed) seed=$2 && shift ;;
    --preset) preset=$2 && shift ;;
    --together) together=1 ;;
    *) sed -n '2,4s/^# //p' "${BASH_SOURCE[0]}" && exit 2 ;;
  esac
  shift
done
[ ${#links[@]} -gt 0 ] || links=(ch341 ch347 uart)
case "$duration" in
  *h) seconds=$((${duration%h} * 3600)) ;;
  *m) seconds=$((${duration%m} * 60)) ;;
  *) seconds=${duration%s} ;;
esac
[ -n "$together" ] || seconds=$((seconds / ${#links[@]}))

ensure_packages "${build_packages[@]}" "${test_packages[@]}"
build_preset "$preset" tactile-host-soak

# Recordings land beside the program and must not meet those of another run.
soak() {
  local folder="$root_dir/build/soak/$preset-$1"
  mkdir -p "$folder"
  cp "$root_dir/build/$preset/bin/tactile-host-soak" "$folder/"
  LSAN_OPTIONS=suppressions=$root_dir/tests/support/lsan.supp:print_suppressions=0 \
    QT_QPA_PLATFORM=offscreen "$folder/tactile-host-soak" --link "$1" --for "${seconds}s" --seed "$seed"
}

say "Soaking over ${links[*]}, $seconds s each, seed $seed"
failed=0
runs=()
for link in "${links[@]}"; do
  if [ -n "$together" ]; then
    soak "$link" &
    runs+=($!)
  else
    soak "$link" || failed=1
  fi
done
for run in "${runs[@]}"; do
  wait "$run" || failed=1
done
exit $failed
