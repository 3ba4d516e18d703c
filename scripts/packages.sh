# SPDX-License-Identifier: MIT
# shellcheck shell=bash disable=SC2034 # the lists are for whoever sources this
# What Quenthisar needs from Debian 12, and how it gets there. Sourced by ./run and ./test.

# To build it.
build_packages=(
    cmake g++ ninja-build pkg-config
    qt6-base-dev qt6-svg-dev libglib2.0-dev nlohmann-json3-dev libutf8proc-dev
    libxcb1-dev libxcb-randr0-dev libxcb-xfixes0-dev libxcb-xinput-dev libxcb-xkb-dev
    libxcb-xtest0-dev libsystemd-dev
)
# To run it: the shell of its hooks, and a font for its windows.
run_packages=(zsh fonts-dejavu-core)
# To reach dongles over the air.
bluetooth_packages=(bluez)
# To play a takeover without a dongle or a second computer.
stage_packages=(dbus-daemon xserver-xephyr xvfb xkb-data)
# To play with devices like real ones.
xorg_packages=(x11-xkb-utils xserver-xorg-core xserver-xorg-dev xserver-xorg-video-dummy)
# To measure the core by itself, and to draw what was measured.
benchmark_packages=(libbenchmark-dev python3-minimal)
# To feed it with what nobody expects.
fuzz_packages=(clang libclang-rt-14-dev)
# To make a package of it, and to check that.
package_packages=(appstream desktop-file-utils dpkg-dev lintian)
# To test it.
test_packages=(
    "${xorg_packages[@]}" "${benchmark_packages[@]}" "${fuzz_packages[@]}"
    clang-format clang-tidy libgtest-dev
    x11-xserver-utils xinput
)

# missing_packages PACKAGE...: those that are not installed.
missing_packages() {
    local package
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}\n' "$package" 2>/dev/null | grep -qx installed ||
            printf '%s\n' "$package"
    done
}

# install_packages PACKAGE...: installs what is missing, and says what before it asks for root.
install_packages() {
    local missing as_root=()
    mapfile -t missing < <(missing_packages "$@")
    [ ${#missing[@]} -gt 0 ] || return 0
    echo "These packages are missing and will be installed: ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null; then
            as_root=(sudo)
        else
            echo "Install them as root, then start again: apt-get install ${missing[*]}" >&2
            return 1
        fi
    fi
    # A new machine has no package lists, and old lists name packages that are gone.
    "${as_root[@]}" apt-get update -qq &&
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# build PRESET [TARGET...]: configures and builds; prints only what goes wrong and how it ends.
build() {
    local preset=$1
    shift
    echo "Building ($preset) ..."
    cmake --preset "$preset" >/dev/null && cmake --build --preset "$preset" ${1:+--target "$@"} -- --quiet
}
