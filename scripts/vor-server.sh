#!/usr/bin/env bash
# Installs what is missing (Debian packages), builds vor-server (Release) and starts it. Every
# argument goes to the server: try --help. The token secret comes from VOR_SECRET.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh >&2
cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DZIQ_BUILD_BENCH=OFF >/dev/null
cmake --build build-release -j"$(nproc)" --target vor-server >&2
exec build-release/apps/server/vor-server "$@"
