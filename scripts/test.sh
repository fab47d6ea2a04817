#!/usr/bin/env bash
# Builds everything and runs every test. With --sanitize, builds with AddressSanitizer and
# UndefinedBehaviorSanitizer into its own folder. With --fuzz, fuzzes the note's readers for a
# bounded time instead (scripts/fuzz.sh; ZIQ_FUZZ_SECONDS per target).
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = "--fuzz" ]; then
    scripts/install-deps.sh --fuzz
    exec scripts/fuzz.sh
fi

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
