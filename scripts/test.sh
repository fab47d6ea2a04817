#!/usr/bin/env bash
# Builds everything and runs every test. With --sanitize, builds with AddressSanitizer and
# UndefinedBehaviorSanitizer into its own folder.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build
flags=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DZIQ_WERROR=ON)
if [ "${1:-}" = "--sanitize" ]; then
    build=build-sanitize
    flags=(-DCMAKE_BUILD_TYPE=Debug -DZIQ_WERROR=ON -DZIQ_SANITIZE=ON -DZIQ_BUILD_BENCH=OFF)
    export ASAN_OPTIONS=detect_leaks=0:abort_on_error=1
    export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
fi

scripts/install-deps.sh
cmake -S . -B "$build" "${flags[@]}" >/dev/null
cmake --build "$build" -j"$(nproc)"
export QT_QPA_PLATFORM=offscreen
ctest --test-dir "$build" --output-on-failure -j"$(nproc)"
