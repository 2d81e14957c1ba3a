#!/usr/bin/env bash
# Makes the pictures of the manuals: the tour of the demonstration in both languages, of which it keeps some.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Name in the manuals, and what the name of the tour's picture ends with. Its number follows the order in which sensors
# were found, and one that answers late comes later.
declare -A chosen=(
  [watch]='ch341-4_0x63_*-0'
  [values]='ch341-0_0x61_*-1'
  [settings]='ch341-0_0x61_*-2'
  [plot]='plotter'
  [update]='update-uart'
  [address]='address-0x6e'
  [debug]='multiplexer'
)

tour="$root_dir/build/pictures"
rm -rf "$tour"
"$root_dir/scripts/demo.sh" --tour "$tour"
for language in en zh_cn; do
  folder="$root_dir/docs/pictures/$language"
  mkdir -p "$folder"
  for name in "${!chosen[@]}"; do
    # shellcheck disable=SC2086
    cp "$tour/$language"/[0-9]*-${chosen[$name]}.png "$folder/$name.png"
  done
done
say "Pictures are in docs/pictures"
