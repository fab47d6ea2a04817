#!/usr/bin/env bash
# Plays the demo's group-note tour without a display in English and Simplified Chinese, light
# and dark, into docs/pictures/tour/<language>-<theme>/NN-step.png (the README's "A note, step
# by step"). Further arguments go to the demo, e.g. --user ben.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
cmake --build build-release -j"$(nproc)" --target group-notes-demo
for language in en zh-Hans; do
    for theme in light dark; do
        out="docs/pictures/tour/$language-$theme"
        rm -rf "$out"
        start=$(date +%s%N)
        QT_QPA_PLATFORM=offscreen build-release/apps/demo/group-notes-demo \
            --language "$language" --theme "$theme" --tour "$out" "$@"
        echo "$out: $(ls "$out" | wc -l) pictures in $((($(date +%s%N) - start) / 1000000)) ms"
    done
done
