#!/usr/bin/env bash
# Renders the demo's screens without a display into docs/pictures (the pictures the README
# shows). Arguments go to the demo, e.g. --theme dark or --language zh-Hans; pictures in another
# language or theme than English and light get "-<language>-<theme>" in their names.
set -euo pipefail
cd "$(dirname "$0")/.."

language=""
theme=light
args=("$@")
for ((i = 0; i < ${#args[@]}; ++i)); do
    case "${args[i]}" in
    --language) language="${args[i + 1]:-}" ;;
    --language=*) language="${args[i]#*=}" ;;
    --theme) theme="${args[i + 1]:-}" ;;
    --theme=*) theme="${args[i]#*=}" ;;
    esac
done
suffix=""
if [[ "${language:-en}" != en || "$theme" != light ]]; then
    suffix="-${language:-en}-$theme"
fi

# BUILD_DIR names a build tree already configured (say, the one tests run from) to use instead.
build="${BUILD_DIR:-build-release}"
if [ -z "${BUILD_DIR:-}" ]; then
    scripts/install-deps.sh
    cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$build" -j"$(nproc)" --target group-notes-demo
out="$(mktemp -d)"
trap 'rm -rf "$out"' EXIT
QT_QPA_PLATFORM=offscreen "$build"/apps/demo/group-notes-demo --screenshot "$out" "$@"
for picture in "$out"/*.png; do
    name="$(basename "$picture" .png)"
    cp "$picture" "docs/pictures/$name$suffix.png"
    ls -l "docs/pictures/$name$suffix.png"
done
