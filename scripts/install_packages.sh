#!/usr/bin/env bash
# install_packages.sh build|run|test|package|windows ...: installs the Debian 12 packages that building, running, testing or packaging
# needs, or building and testing for Windows; what is there is skipped, so a second call costs nothing. Uses sudo when not root.
set -euo pipefail

build="g++ cmake ninja-build ccache mold pkg-config qt6-base-dev qt6-base-dev-tools qt6-multimedia-dev qt6-svg-dev
    libgl1-mesa-dev libx11-dev libxcb1-dev libxcb-ewmh-dev libxcb-icccm4-dev libjpeg62-turbo-dev libdeflate-dev libzstd-dev
    python3 fp-utils"
run="xvfb openbox imagemagick x11-utils wmctrl xdotool fonts-dejavu-core qt6-image-formats-plugins qt6-qpa-plugins xdg-utils"
test="libgtest-dev libgmock-dev libgsf-1-dev libsqlite3-dev mdbtools mdbtools-dev zlib1g-dev xclip rhash libjpeg-turbo-progs
    libchm-bin git clang clang-format clang-tidy libclang-rt-14-dev groff-base zsh fish wine wine64 gcc-mingw-w64-x86-64 pulseaudio pulseaudio-utils sox dbus-x11 procps
    desktop-file-utils appstream mandoc shared-mime-info libglib2.0-bin strace
    dbus-daemon at-spi2-core python3-pyatspi qt6-l10n-tools x11-session-utils x11-xserver-utils"
package="debhelper dpkg-dev lintian blhc debootstrap faketime locales git patchelf xz-utils qt6-wayland"
windows="g++-mingw-w64-x86-64-posix googletest nasm cmake ninja-build ccache pkg-config dpkg-dev qt6-base-dev qt6-base-dev-tools nsis wine wine64 mdbtools rhash python3"

wanted=()
for set in "$@"; do
    case $set in
        build) wanted+=($build) ;;
        run) wanted+=($run) ;;
        test) wanted+=($test) ;;
        package) wanted+=($package) ;;
        windows) wanted+=($windows) ;;
        *) echo "usage: $0 build|run|test|package|windows ..." >&2; exit 2 ;;
    esac
done

missing=()
for package in "${wanted[@]}"; do
    dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
done
[ ${#missing[@]} -eq 0 ] && exit 0

as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)
echo "installing: ${missing[*]}"
"${as_root[@]}" apt-get update -qq
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
