#!/usr/bin/env bash
# Installs the missing Debian 12 packages of the named groups: build, run, test, check, coverage, fuzz,
# mutants, package.
set -euo pipefail

packages=()
for group in "$@"; do
    case $group in
        build) packages+=(g++ cmake ninja-build pkg-config nlohmann-json3-dev libavformat-dev
                          libavcodec-dev libavutil-dev libswscale-dev libswresample-dev
                          libplist-dev libxcb1-dev qt6-base-dev) ;;
        run)   packages+=(ffmpeg xvfb openbox xdotool imagemagick fonts-dejavu-core) ;;
        test)  packages+=(python3 ffmpeg libgtest-dev clang-format xvfb openbox xdotool imagemagick
                          fonts-dejavu-core libplist-utils x11-utils) ;;
        check) packages+=(python3 clang-format clang-tidy) ;;
        package) packages+=(lintian appstream desktop-file-utils dpkg-dev man-db debootstrap) ;;
        coverage) packages+=(gcovr) ;;
        mutants) packages+=(python3-clang) ;;
        fuzz)  packages+=(clang libclang-rt-14-dev libplist-utils ffmpeg) ;;
        *)     echo "setup: unknown group '$group'" >&2; exit 2 ;;
    esac
done

if ! command -v dpkg-query >/dev/null; then
    echo "setup: not a Debian system; make sure these are there: ${packages[*]}" >&2
    exit 0
fi

# dpkg-query fails when it does not know a package, but still lists the others.
installed=$(dpkg-query -W -f='${Package} ${db:Status-Status}\n' \
    "${packages[@]}" 2>/dev/null) || true
missing=()
for package in "${packages[@]}"; do
    grep -qxF "$package installed" <<<"$installed" || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

as_root=(env DEBIAN_FRONTEND=noninteractive)
if [[ $EUID -ne 0 ]]; then
    if ! command -v sudo >/dev/null; then
        echo "setup: to install ${missing[*]}, run this as root or install sudo" >&2
        exit 1
    fi
    as_root=(sudo "${as_root[@]}")
fi

echo "setup: installing ${missing[*]}" >&2
# Only errors and warnings are shown.
"${as_root[@]}" apt-get update -qq >/dev/null
"${as_root[@]}" apt-get install -qq -y --no-install-recommends -o Dpkg::Use-Pty=0 \
    "${missing[@]}" >/dev/null
