#!/usr/bin/env bash
# Builds and starts the demo.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
cmake --build build -j"$(nproc)" --target group-notes-demo
exec build/apps/demo/group-notes-demo "$@"
