#!/usr/bin/env bash
# The second CI stage: the whole suite under AddressSanitizer and UndefinedBehaviorSanitizer
# (the module built with them and loaded by the test host), the two-thread test under
# ThreadSanitizer, and the fuzz targets for a bounded time each. Each sanitizer has its own tree.
#   CANTORELA_FUZZ_SECONDS   time per fuzz target (default 90; those that add little beside
#                            another, and the three score readers, get two thirds of it)
#   CANTORELA_STRESS_SECONDS length of the two-thread test (default 5)
#   CANTORELA_HARDENING      stages to run, any of "asan tsan fuzz" (default all)
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
jobs="${CANTORELA_JOBS:-$(nproc)}"
fuzz_seconds="${CANTORELA_FUZZ_SECONDS:-90}"
export CANTORELA_STRESS_SECONDS="${CANTORELA_STRESS_SECONDS:-5}"
stages="${CANTORELA_HARDENING:-asan tsan fuzz}"

bash "$root/scripts/install-deps.sh"
# libFuzzer and clang's sanitizer runtimes; gcc's are part of g++.
extra=()
for package in clang-14 libclang-rt-14-dev; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed" || extra+=("$package")
done
if [ ${#extra[@]} -gt 0 ]; then
  sudo_cmd=""
  [ "$(id -u)" -ne 0 ] && sudo_cmd="sudo"
  $sudo_cmd apt-get update
  DEBIAN_FRONTEND=noninteractive $sudo_cmd apt-get install -y --no-install-recommends "${extra[@]}"
fi

# -O1 keeps the instrumented builds and runs quick; the tests need no benchmarks.
common=(-DCMAKE_BUILD_TYPE=RelWithDebInfo -DCANTORELA_BUILD_BENCH=OFF
        "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG" "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG")
# GCC misreads the instrumented std::function inside <regex> as uninitialised; clang does not.
gcc_only=(-DCMAKE_CXX_FLAGS=-Wno-maybe-uninitialized)
# Stop at the first report; leaks are checked at every test program's exit.
export ASAN_OPTIONS="halt_on_error=1:detect_leaks=1:check_initialization_order=1:detect_stack_use_after_return=1"
export UBSAN_OPTIONS="halt_on_error=1:print_stacktrace=1"
export LSAN_OPTIONS="suppressions=$root/tests/hardening/lsan.supp:print_suppressions=0"
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1"

stage () { echo; echo "=== $1"; stage_start=$SECONDS; }
done_stage () { echo "=== $1 took $((SECONDS - stage_start)) s"; }

if [[ " $stages " == *" asan "* ]]; then
  stage "AddressSanitizer + UndefinedBehaviorSanitizer: build"
  cmake -S "$root" -B "$root/build-asan" "${common[@]}" "${gcc_only[@]}" -DCANTORELA_SANITIZE=address,undefined
  cmake --build "$root/build-asan" -j "$jobs"
  done_stage "asan build"
  stage "AddressSanitizer + UndefinedBehaviorSanitizer: every test"
  xvfb-run -a -s "-screen 0 1280x1024x24" \
    ctest --test-dir "$root/build-asan" --output-on-failure -j "$jobs" --timeout 1500
  done_stage "asan tests"
fi

if [[ " $stages " == *" tsan "* ]]; then
  stage "ThreadSanitizer: build"
  cmake -S "$root" -B "$root/build-tsan" "${common[@]}" "${gcc_only[@]}" -DCANTORELA_SANITIZE=thread
  cmake --build "$root/build-tsan" -j "$jobs" --target hardening_concurrency_tests sync_tests
  done_stage "tsan build"
  stage "ThreadSanitizer: two host threads on one agent, and the passes beside a held mutex"
  "$root/build-tsan/tests/hardening/hardening_concurrency_tests"
  "$root/build-tsan/tests/sync/sync_tests"
  done_stage "tsan tests"
fi

if [[ " $stages " == *" fuzz "* ]]; then
  stage "libFuzzer: build"
  # fuzzer-no-link instruments every library for coverage, so the fuzzer is guided inside them too.
  CC=clang-14 CXX=clang++-14 cmake -S "$root" -B "$root/build-fuzz" "${common[@]}" -DCMAKE_CXX_FLAGS= \
    "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -gline-tables-only -DNDEBUG" \
    "-DCMAKE_C_FLAGS_RELWITHDEBINFO=-O1 -gline-tables-only -DNDEBUG" \
    -DCANTORELA_SANITIZE=address,undefined,fuzzer-no-link -DCANTORELA_PHONEME_FUZZ=ON -DCANTORELA_HOST_TEXT_FUZZ=ON \
    -DCANTORELA_SCORE_FUZZ=ON
  cmake --build "$root/build-fuzz" -j "$jobs" --target lyric_fuzz host_text_fuzz lyric_line_fuzz song_fuzz musicxml_fuzz mxl_fuzz
  done_stage "fuzz build"
  # target, longest input, share of the time in percent, seed folders: the score readers start
  # from our songs, the seed scores and every input that once broke a reader. lyric_line_fuzz
  # adds little beside lyric_fuzz (the bracket form around the same converter); the three
  # readers share their parts.
  score_seeds="$root/songs $root/tests/score/seeds $root/tests/score/regressions"
  for line in "phoneme/lyric_fuzz 4096 100" "hardening/host_text_fuzz 4096 100" "phoneme/lyric_line_fuzz 4096 67" \
              "score/song_fuzz 16384 67 $score_seeds" "score/musicxml_fuzz 16384 67 $score_seeds" \
              "score/mxl_fuzz 16384 67 $score_seeds"; do
    read -r target max_len share seeds <<< "$line"
    name="$(basename "$target")"
    seconds="$(( fuzz_seconds * share / 100 ))"
    corpus="$root/build-fuzz/corpus/$name"
    mkdir -p "$corpus"
    stage "libFuzzer: $name for $seconds s"
    # Crash inputs land in build-fuzz/ as crash-*, to be replayed with: build-fuzz/tests/$target FILE
    # (a score reader's go to tests/score/regressions/, which the ordinary suite reads again).
    # shellcheck disable=SC2086 # the seed folders are words
    (cd "$root/build-fuzz" && "$root/build-fuzz/tests/$target" "$corpus" $seeds \
      -max_total_time="$seconds" -max_len="$max_len" -timeout=60 -rss_limit_mb=4096 \
      -print_final_stats=1)
    done_stage "$name"
  done
fi
