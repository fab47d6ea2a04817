#!/usr/bin/env bash
# Installs what building and testing need on a fresh Debian machine, from Debian's packages.
# Does nothing when everything is there already. With --fuzz, also what the fuzz build needs:
# clang with its libFuzzer and sanitizer runtimes, and llvm-symbolizer for readable stacks.
set -euo pipefail

packages=(cmake g++ make ccache qt6-base-dev qt6-svg-dev qt6-websockets-dev libgl-dev libicu-dev libbenchmark-dev
          fonts-inter fonts-noto-cjk fonts-noto-color-emoji fonts-dejavu-core)
if [ "${1:-}" = "--fuzz" ]; then
    packages+=(clang libclang-rt-14-dev llvm)
fi
missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
