#!/bin/sh
# setup.sh install|remove: access to the bridges for whoever is logged in (asks for sudo), and an entry in the user's menu.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
rules=/etc/udev/rules.d
menu=${XDG_DATA_HOME:-$HOME/.local/share}
root() { if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi; }

case "${1:-}" in
  install)
    mkdir -p "$menu/applications" "$menu/icons"
    cp -r "$here/share/icons/hicolor" "$menu/icons/"
    sed "s|^Exec=.*|Exec=\"$here/bin/tactile-host\"|" "$here/share/applications/tactile-host.desktop" \
      >"$menu/applications/tactile-host.desktop"
    root mkdir -p "$rules"
    root cp "$here"/lib/udev/rules.d/6?-tactile-bridges*.rules "$rules/"
    ;;
  remove)
    rm -f "$menu/applications/tactile-host.desktop" "$menu"/icons/hicolor/*/apps/tactile-host.*
    root rm -f "$rules"/60-tactile-bridges.rules "$rules"/61-tactile-bridges-uaccess.rules
    ;;
  *)
    sed -n '2s/^# //p' "$0"
    exit 2
    ;;
esac
if command -v udevadm >/dev/null 2>&1; then root udevadm control --reload || true; fi
