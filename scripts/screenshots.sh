#!/usr/bin/env bash
# Renders the demo's screens without a display into docs/pictures (the pictures the README
# shows). Arguments go to the demo, e.g. --theme dark or --language zh-Hans.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
cmake --build build-release -j"$(nproc)" --target group-notes-demo
QT_QPA_PLATFORM=offscreen build-release/apps/demo/group-notes-demo --screenshot docs/pictures "$@"
ls -l docs/pictures/demo-*.png
