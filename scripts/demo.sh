#!/usr/bin/env bash
# Installs what is missing (Debian packages), builds the demo (Release) and starts it. Every
# argument goes to the demo: try --help.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
cmake --build build-release -j"$(nproc)" --target group-notes-demo
exec build-release/apps/demo/group-notes-demo "$@"
