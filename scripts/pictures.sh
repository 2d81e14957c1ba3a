#!/usr/bin/env bash
# Makes the pictures of the manuals: the tour of the demonstration in both languages, of which it keeps some.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

# Number of the tour's picture, and its name in the manuals.
chosen=(30:watch 19:values 20:settings 36:plot 46:update 49:address 52:debug)

tour="$root_dir/build/pictures"
rm -rf "$tour"
"$root_dir/scripts/demo.sh" --tour "$tour"
for language in en zh_cn; do
  folder="$root_dir/docs/pictures/$language"
  mkdir -p "$folder"
  for choice in "${chosen[@]}"; do
    cp "$tour/$language/${choice%:*}"-*.png "$folder/${choice#*:}.png"
  done
done
say "Pictures are in docs/pictures"
