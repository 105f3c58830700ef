# SPDX-FileCopyrightText: 2026 The Tovek developers
# SPDX-License-Identifier: MIT
# The one list of Debian 12 packages, read by ./run, ./test and .ci/run.

# To build and run the program.
build_packages=(
    ccache cmake g++ ninja-build pkg-config
    qt6-base-dev qt6-base-dev-tools qt6-base-private-dev
    libcanberra-dev libdeflate-dev libisal-dev libsodium-dev libtesseract-dev libxkbcommon-dev libxkbcommon-x11-dev zlib1g-dev
    libxcb1-dev libxcb-icccm4-dev libxcb-image0-dev libxcb-keysyms1-dev libxcb-randr0-dev
    libxcb-render0-dev libxcb-shape0-dev libxcb-shm0-dev libxcb-xfixes0-dev libxcb-xinput-dev
    libxcb-xkb-dev libxcb-xtest0-dev
    libwayland-dev libwayland-bin qt6-wayland
    fonts-dejavu-core tesseract-ocr-eng libcanberra-pulse
)
# For the virtual desktops of the tests and of the tour.
desktop_packages=(
    dbus dbus-bin dbus-x11 fonts-cantarell fonts-noto-core i3lock libglib2.0-bin desktop-file-utils openbox openssl picom pulseaudio
    grim sway swaybg wl-clipboard wtype xwayland
    pulseaudio-utils thunar trayer x11-xkb-utils x11-xserver-utils xauth xclip xscreensaver xvfb
)
# For bench/run, which installs nothing: a notification server is not for everybody's desktop.
bench_packages=(dunst)
# For continuous integration alone.
ci_packages=(clang clang-format clang-tidy git)

# install_missing PACKAGE...: asks for the administrator's password only when something is missing.
install_missing()
{
    local missing=() package
    for package in "$@"; do
        [ "$(dpkg-query -W -f='${db:Status-Abbrev}' "$package" 2>/dev/null)" = "ii " ] \
            || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    if ! command -v apt-get >/dev/null; then
        echo "Not a Debian system: please install what corresponds to: ${missing[*]}" >&2
        return 0
    fi
    echo "Installing: ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}
