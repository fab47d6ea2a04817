#!/usr/bin/env bash
# Plays the demo's group-note tour without a display in English and Simplified Chinese, light
# and dark, into docs/pictures/tour/<language>-<theme>/NN-step.png (the README's "A note, step
# by step"). Further arguments go to the demo, e.g. --user ben.
set -euo pipefail
cd "$(dirname "$0")/.."

# BUILD_DIR names a build tree already configured (say, the one tests run from) to use instead.
build="${BUILD_DIR:-build-release}"
if [ -z "${BUILD_DIR:-}" ]; then
    scripts/install-deps.sh
    cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
fi
cmake --build "$build" -j"$(nproc)" --target group-notes-demo
for language in en zh-Hans; do
    for theme in light dark; do
        out="docs/pictures/tour/$language-$theme"
        rm -rf "$out"
        start=$(date +%s%N)
        QT_QPA_PLATFORM=offscreen "$build"/apps/demo/group-notes-demo \
            --language "$language" --theme "$theme" --tour "$out" "$@"
        echo "$out: $(ls "$out" | wc -l) pictures in $((($(date +%s%N) - start) / 1000000)) ms"
    done
done
