# Shared by the scripts beside it: what must be installed, and where things are built. Sourced, never run.

root_dir=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc 2>/dev/null || echo 2)

build_packages=(
  g++ cmake ninja-build ccache pkg-config
  qtbase5-dev libqt5serialport5-dev qttools5-dev qttools5-dev-tools
  libusb-1.0-0-dev
  libqwt-qt5-dev
  fonts-wqy-microhei fonts-dejavu-core
)
test_packages=(umockdev libumockdev-dev python3 binutils desktop-file-utils appstream)
check_packages=(git clang-format clang-tidy clazy)
coverage_packages=(clang llvm python3)
windows_packages=(g++-mingw-w64-x86-64-posix python3)
font_packages=(fonts-urw-base35)

say() { printf '== %s\n' "$*"; }

missing_packages() {
  local package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || printf '%s ' "$package"
  done
}

# ensure_packages <package>...: installs what is missing. As root at once, with sudo after asking, else it prints the
# command that would and ends the script. On systems without dpkg it trusts the user.
ensure_packages() {
  command -v dpkg-query >/dev/null 2>&1 || return 0
  local missing
  read -r -a missing <<<"$(missing_packages "$@")"
  [ ${#missing[@]} -eq 0 ] && return 0

  if [ "$(id -u)" -eq 0 ]; then
    say "Installing ${missing[*]}"
    apt-get update -qq
    DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
  elif command -v sudo >/dev/null 2>&1 && [ -t 0 ]; then
    local answer
    read -r -p "Install ${missing[*]} with sudo? [y/N] " answer
    case "$answer" in
      [yY]*) sudo apt-get update -qq && sudo apt-get install -y --no-install-recommends "${missing[@]}" ;;
      *) exit 1 ;;
    esac
  else
    echo "Some packages are missing. Install them with:" >&2
    echo "  apt-get install ${missing[*]}" >&2
    exit 1
  fi
}

# build_preset <preset> [target...]: configures and builds one preset.
build_preset() {
  local preset=$1
  shift
  say "Building preset $preset"
  mkdir -p "$root_dir/build"
  local log="$root_dir/build/configure-$preset.log"
  (cd "$root_dir" && cmake --preset "$preset" >"$log") || {
    cat "$log" >&2
    return 1
  }
  (cd "$root_dir" && cmake --build --preset "$preset" -j "$jobs" ${1:+--target "$@"})
}

# configure_for_reading: a compilation database in build/analyse for programs that read the sources alone, with all that
# moc, uic and lrelease make.
configure_for_reading() {
  (cd "$root_dir" && cmake --preset analyse >/dev/null)
  ninja -C "$root_dir/build/analyse" -t targets all | sed -n 's/^\([^ ]*_autogen\): .*/\1/p' | sort -u |
    xargs ninja -C "$root_dir/build/analyse" >/dev/null
}
