#!/usr/bin/env bash
# Runs one fuzz target of the "fuzz" preset build with the project's limits, its growing
# corpus (build/fuzz/corpus/TARGET) and its seeds and found inputs:
#   fuzz/run.sh TARGET [libFuzzer options...]      e.g. fuzz/run.sh engine -max_total_time=45
# TARGET is decode, parsers, engine or blockfile. Crashes go to build/fuzz/artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
target=${1:?usage: $0 TARGET [libFuzzer options...]}
shift
bin=build/fuzz/fuzz/fuzz_$target
[ -x "$bin" ] || { echo "no $bin: cmake --preset fuzz && cmake --build --preset fuzz" >&2; exit 2; }
corpus=build/fuzz/corpus/$target
mkdir -p "$corpus" build/fuzz/artifacts
inputs=()
case "$target" in
    decode) inputs+=(fuzz/corpus) ;;
    blockfile) inputs+=(fuzz/seeds/blockfile examples) ;;
    *) inputs+=("fuzz/seeds/$target") ;;
esac
[ -d "fuzz/regressions/$target" ] && inputs+=("fuzz/regressions/$target")
exec "$bin" -rss_limit_mb=2048 -malloc_limit_mb=512 -timeout=25 -print_final_stats=1 \
    -artifact_prefix="build/fuzz/artifacts/$target-" "$@" "$corpus" "${inputs[@]}"
