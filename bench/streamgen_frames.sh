#!/usr/bin/env bash
# Speed of `streamgen frames` on the IPv4/UDP example, as a ratio to a plain copy of the
# same bytes to a file in the same run.
#   bench/streamgen_frames.sh BUILD_DIR [FRAMES] [THREADS...]
# Writes into $BENCH_DIR (default BUILD_DIR/bench-streamgen/; /dev/shm/... measures the
# tool rather than the disk) and removes the files afterwards. Checksums are recomputed, as
# by default; the last line is a run with --checksums keep for reference.
set -euo pipefail
build=${1:?usage: $0 BUILD_DIR [FRAMES] [THREADS...]}
frames=${2:-10000000}
shift $(( $# >= 2 ? 2 : $# ))
threads=("$@")
[ ${#threads[@]} -gt 0 ] || threads=(1 2)
root=$(cd "$(dirname "$0")/.." && pwd)
sg="$build/tools/streamgen"
dir=${BENCH_DIR:-$build/bench-streamgen}
mkdir -p "$dir"
trap 'rm -f "$dir"/*.pcap "$dir"/copy.bin' EXIT

now() { date +%s.%N; }

for t in "${threads[@]}"; do
    start=$(now)
    "$sg" frames "$root/examples/ipv4-udp.json" -o "$dir/frames-$t.pcap" --count "$frames" --threads "$t" 2>/dev/null
    end=$(now)
    secs[$t]=$(echo "$end - $start" | bc -l)
done
start=$(now)
"$sg" frames "$root/examples/ipv4-udp.json" -o "$dir/keep.pcap" --count "$frames" --checksums keep 2>/dev/null
end=$(now)
keep=$(echo "$end - $start" | bc -l)
rm -f "$dir/keep.pcap"
ref="$dir/frames-${threads[0]}.pcap"
for t in "${threads[@]}"; do
    cmp -s "$ref" "$dir/frames-$t.pcap" || { echo "files of ${threads[0]} and $t threads differ" >&2; exit 1; }
done
bytes=$(stat -c %s "$ref")

# Baseline: the same bytes copied to a new file (cold for the copy's target, like ours).
start=$(now)
cat "$ref" >"$dir/copy.bin"
end=$(now)
copy=$(echo "$end - $start" | bc -l)

printf 'frames %d, file %d bytes\n' "$frames" "$bytes"
printf '%-22s %8.3f s %14.0f frames/s %10.1f MB/s\n' "plain copy (cat)" "$copy" \
    "$(echo "$frames / $copy" | bc -l)" "$(echo "$bytes / $copy / 1000000" | bc -l)"
for t in "${threads[@]}"; do
    s=${secs[$t]}
    printf '%-22s %8.3f s %14.0f frames/s %10.1f MB/s  %5.2fx the copy time\n' "streamgen, $t thread(s)" "$s" \
        "$(echo "$frames / $s" | bc -l)" "$(echo "$bytes / $s / 1000000" | bc -l)" "$(echo "$s / $copy" | bc -l)"
done
printf '%-22s %8.3f s %14.0f frames/s  %5.2fx the copy time\n' "checksums kept, 1 thr" "$keep" \
    "$(echo "$frames / $keep" | bc -l)" "$(echo "$keep / $copy" | bc -l)"
