#!/usr/bin/env bash
# Packs the portable folder tactile-host-VERSION-linux-x86_64.tar.gz into build/package.
# package.sh [--check]: also unpacks it in a clean root of the distribution, installs only what its README names, and runs
# the programs and the tour from there. That needs root and the distribution's archive.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

out="$root_dir/build/package"
rm -rf "$out" && mkdir -p "$out"

ensure_packages "${build_packages[@]}"
build_preset release tactile-host tactile-host-demo companions
say "Packing"
(cd "$root_dir/build/release" && cpack -G TGZ -B "$out" --config CPackConfig.cmake >"$out/cpack.log") || {
  cat "$out/cpack.log" >&2
  exit 1
}
archive=$(ls "$out"/tactile-host-*.tar.gz)
name=$(basename "$archive" .tar.gz)
say "$archive"
[ "${1:-}" = --check ] || exit 0

if [ "$(id -u)" -ne 0 ]; then
  echo "The check makes a root of its own, for which it has to be root." >&2
  exit 1
fi
ensure_packages debootstrap

clean=$(mktemp -d)
# Never through a mount into the machine itself.
trap 'umount "$clean/dev/pts" "$clean/proc" 2>/dev/null || true; rm -rf --one-file-system "$clean"' EXIT
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' | head -n 1)
release=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
say "Making a clean root"
debootstrap --variant=minbase "$release" "$clean" "$mirror" >"$out/debootstrap.log"
mount -t proc proc "$clean/proc"
mount -t devpts -o newinstance,ptmxmode=0666 devpts "$clean/dev/pts"
ln -sf pts/ptmx "$clean/dev/ptmx"
inside() {
  env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LANG=C.UTF-8 QT_QPA_PLATFORM=offscreen chroot "$clean" "$@"
}

mkdir -p "$clean/opt"
tar -xzf "$archive" -C "$clean/opt"
folder=/opt/$name
packages=$(sed -n '/apt-get install/,/^$/p' "$clean$folder/README.txt" | tr -d '\\' | sed 's/.*no-install-recommends//' | tr -s ' \n' ' ')
say "Installing what its README names:$packages"
# shellcheck disable=SC2086
inside sh -c "apt-get install -y -qq --no-install-recommends $packages" >"$out/apt.log" 2>&1 || {
  tail -n 20 "$out/apt.log" >&2
  exit 1
}

say "Running it there"
for program in tactile-host-demo tactile-log tactile-plot tactile-sim; do
  inside "$folder/bin/$program" --version
done
unresolved=$(inside sh -c "ldd $folder/bin/*" | grep 'not found' || true)
[ -z "$unresolved" ] || {
  echo "$unresolved" >&2
  exit 1
}
# The tool itself starts, says who it is, and runs until it is ended.
inside timeout 5 "$folder/bin/tactile-host" 2>"$out/host.log" || [ $? -eq 124 ]
grep -q "^tactile-host [0-9]" "$out/host.log"
inside "$folder/bin/tactile-host-demo" --tour /tmp/tour --language en 2>"$out/tour.log"

say "Installing and removing its rules and menu entry"
inside "$folder/setup.sh" install
inside sh -c 'ls /etc/udev/rules.d/6?-tactile* /root/.local/share/applications/tactile-host.desktop' >/dev/null
inside "$folder/setup.sh" remove
left=$(inside find /etc/udev/rules.d /root/.local -name '*tactile-*.*')
[ -z "$left" ] || {
  echo "left behind: $left" >&2
  exit 1
}
say "The package works in a clean root"
