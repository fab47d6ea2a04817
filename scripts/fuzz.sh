#!/usr/bin/env bash
# Fuzzes the note's readers and the server's frame reading: builds the fuzz targets (tests/fuzz) with clang, libFuzzer, ASan and
# UBSan into build-fuzz, then runs each target, one after another, for a bounded time on a scratch
# copy of its seed corpus, so the repository's corpus never grows by itself.
#
#   ZIQ_FUZZ_SECONDS  seconds per target (default 60)
#   ZIQ_FUZZ_TARGETS  targets to run (default: all)
#
# A crash or a broken invariant leaves its input in build-fuzz/fuzz-run/<target>/; once the
# reader is fixed, copy that file into tests/fuzz/corpus/<target>/ so every build replays it.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=${ZIQ_FUZZ_SECONDS:-60}
read -r -a targets <<<"${ZIQ_FUZZ_TARGETS:-notebody extensionmerge configvalue dateparse frame_decoder}"
build=build-fuzz
cxx=$(command -v clang++-14 || command -v clang++)

# The project's libraries are instrumented for coverage and both sanitizers; Qt and ICU are
# linked as they come. The targets themselves link libFuzzer (tests/fuzz/CMakeLists.txt).
instrument="-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=undefined -fno-omit-frame-pointer"
cmake -S . -B "$build" -DCMAKE_CXX_COMPILER="$cxx" -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_FLAGS="$instrument" -DZIQ_FUZZ=ON -DZIQ_WERROR=ON -DZIQ_BUILD_BENCH=OFF >/dev/null
cmake --build "$build" -j"$(nproc)" --target "${targets[@]/#/fuzz_}"

# Longest input worth trying per target: a note body, an extension list, a settings value, a date,
# a client frame.
declare -A max_len=([notebody]=4096 [extensionmerge]=2048 [configvalue]=512 [dateparse]=256 [frame_decoder]=4096)

export QT_QPA_PLATFORM=offscreen LANG=C.UTF-8 TZ=Asia/Shanghai
# The kit warns of every malformed body it reads; the fuzzers feed it little else.
export QT_LOGGING_RULES="ziq.*=false"
export ASAN_OPTIONS=abort_on_error=1:detect_leaks=1
export UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1
failed=()
summary=()
for target in "${targets[@]}"; do
    run="$build/fuzz-run/$target"
    rm -rf "$run"
    mkdir -p "$run/corpus"
    cp tests/fuzz/corpus/"$target"/* "$run/corpus/"
    # JSON is parsed by Qt, which carries no coverage; a dictionary of the members lets inputs
    # get past the parser.
    options=()
    [ -f "tests/fuzz/$target.dict" ] && options+=(-dict="tests/fuzz/$target.dict")
    echo "== fuzz_$target for ${seconds}s"
    if "$build/tests/fuzz/fuzz_$target" "$run/corpus" "${options[@]}" -max_total_time="$seconds" \
        -max_len="${max_len[$target]:-4096}" -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
        -artifact_prefix="$run/" >"$run/log" 2>&1; then
        status=ok
    else
        status=FAILED
        failed+=("$target")
        tail -n 60 "$run/log"
    fi
    # The last status line holds the coverage (cov), features (ft), corpus size and speed.
    line=$(grep -E '^#[0-9]+[[:space:]]+(DONE|pulse|NEW|REDUCE|INITED)' "$run/log" | tail -n 1 || true)
    summary+=("$(printf '%-15s %-6s %s' "$target" "$status" "$line")")
done

echo "== summary (corpus copies in $build/fuzz-run)"
printf '%s\n' "${summary[@]}"
if [ ${#failed[@]} -gt 0 ]; then
    echo "crashing inputs: $(ls "$build"/fuzz-run/*/crash-* "$build"/fuzz-run/*/leak-* "$build"/fuzz-run/*/timeout-* \
        "$build"/fuzz-run/*/oom-* 2>/dev/null | tr '\n' ' ')"
    exit 1
fi
