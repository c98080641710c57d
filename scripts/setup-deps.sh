#!/usr/bin/env bash
# Installs the Debian packages the build needs, and only those that are missing.
#
#   scripts/setup-deps.sh [build] [test] [bench] [fuzz] [lint]   (default: build test)
#
# Does nothing when everything is present. Runs `apt-get update` only when something
# must be installed. When not root, prints the exact install command and exits 1.
set -euo pipefail

groups=("$@")
if [ ${#groups[@]} -eq 0 ]; then
    groups=(build test)
fi

packages=()
for group in "${groups[@]}"; do
    case "$group" in
        build) packages+=(cmake ninja-build g++ pkg-config rapidjson-dev libsqlite3-dev
                          libcurl4-openssl-dev libssl-dev uuid-dev) ;;
        test)  packages+=(googletest libgtest-dev libgmock-dev sqlite3) ;;
        bench) packages+=(libbenchmark-dev libboost-dev) ;;
        fuzz)  packages+=(clang libclang-rt-14-dev) ;;
        lint)  packages+=(clang-format clang-tidy python3) ;;
        *) echo "setup-deps: unknown group '$group' (use build, test, bench, fuzz, lint)" >&2
           exit 2 ;;
    esac
done

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${Status}' "$package" 2>/dev/null || true)
    if [ "$status" != "install ok installed" ]; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

install_line="apt-get install -y --no-install-recommends ${missing[*]}"
if [ "$(id -u)" -ne 0 ]; then
    echo "setup-deps: missing Debian packages: ${missing[*]}" >&2
    echo "setup-deps: not running as root; install them with:" >&2
    echo "  sudo apt-get update && sudo $install_line" >&2
    exit 1
fi

echo "setup-deps: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
$install_line
