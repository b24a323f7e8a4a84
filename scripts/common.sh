# What the scripts of the project share; each of them sources it. Says what happens, installs what a Debian 12 machine
# lacks, builds, tests.

# say TEXT: with the seconds since the outermost script began.
export TARNWICK_BEGAN=${TARNWICK_BEGAN:-$EPOCHSECONDS}
say() { printf 'tarnwick, %4d s: %s\n' $((EPOCHSECONDS - TARNWICK_BEGAN)) "$*"; }

# apt_get ARGUMENT...: as root, without questions. It waits while another one is at work, as on a machine that has just
# started.
apt_get() {
  local as_root=()
  [ "$(id -u)" = 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get -qq -o DPkg::Lock::Timeout=300 "$@"
}

# Installs those of the named packages that are missing.
ensure_packages() {
  local missing=() package messages end=$((SECONDS + 300))
  for package in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
  [ ${#missing[@]} -gt 0 ] || return 0
  say "installing ${missing[*]}"
  # apt-get gives up at once when another holds the lists.
  until messages=$(apt_get update 2>&1); do
    [[ $messages = *"Could not get lock"* && $SECONDS -lt $end ]] || { say "$messages"; return 1; }
    sleep 5
  done
  messages=$(apt_get install -y --no-install-recommends "${missing[@]}" 2>&1) || { say "$messages"; return 1; }
}

# The geometry kernel, where it can be had; else the build leaves tarnwick-mesh out.
ensure_kernel() {
  ensure_packages "${kernel_packages[@]}" || say "there is no geometry kernel: exact shape is left out"
}

build_packages=(g++ cmake ninja-build pkg-config zlib1g-dev libdeflate-dev libminizip-dev libcli11-dev libxxhash-dev
  libpugixml-dev)
# For tarnwick-mesh alone.
kernel_packages=(libocct-data-exchange-dev libocct-ocaf-dev)
# What only the viewer and its tests need.
viewer_packages=(qt6-base-dev libgl-dev libglu1-mesa-dev libgl1-mesa-dri libegl-dev libpng-dev libcpprest-dev libssl-dev curl)
viewer_test_packages=(xvfb openbox xdotool wmctrl x11-utils libx11-dev locales xclip libwebsocketpp-dev openssl)
fuzz_packages=(clang-14 libclang-rt-14-dev)
test_packages=(nlohmann-json3-dev libgtest-dev libgmock-dev libbenchmark-dev libfast-float-dev)

# What builds for Windows, and runs that.
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64 dpkg-dev)
# What only the package for Windows needs.
windows_package_packages=(qt6-base-dev python3-minimal zip)
package_packages=(dpkg-dev file)
# What only the check of the package needs.
package_check_packages=(lintian desktop-file-utils appstream libxml2-utils groff shared-mime-info libglib2.0-bin dbus-x11
  bash-completion tumbler bubblewrap python3-minimal)

all_packages=("${build_packages[@]}" "${kernel_packages[@]}" "${viewer_packages[@]}" "${viewer_test_packages[@]}" "${fuzz_packages[@]}"
  "${test_packages[@]}" "${windows_packages[@]}" "${package_packages[@]}" "${package_check_packages[@]}")

# build PRESET [TARGET...]: configures if need be, and builds.
build() {
  local preset=$1
  shift
  say "building ($preset)"
  local log
  log=$(mktemp)
  cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; rm -f "$log"; return 1; }
  rm -f "$log"
  cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet
}

# run_tests PRESET: those that open windows first, one at a time; then all others at once.
run_tests() {
  ctest --preset "$1" -L display
  ctest --preset "$1" -LE display -j "$(nproc)"
}
