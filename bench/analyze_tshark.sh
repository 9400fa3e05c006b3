#!/usr/bin/env bash
# streamgen analyze against tshark listing the same capture, in one run:
#   bench/analyze_tshark.sh [STREAMGEN] [FRAMES]     (default 1,000,000 frames)
# The capture is a port's (examples/ports/two-blocks.json: 17 streams with signatures),
# written by streamgen port; each reader runs once over it, from a warm page cache.
set -euo pipefail
cd "$(dirname "$0")/.."
SG=$(realpath "${1:-build/default/tools/streamgen}")
N=${2:-1000000}
WORK=$(mktemp -d)
trap 'rm -rf "$WORK"' EXIT
printf '{"blocks": [%s], "common": {"rate": {"fixed": {"rateUnit": "FRAMES_PER_SECOND", "rate": 1000000000}}}}\n' \
    "$(sed -n '/"blocks"/,/^    },$/p' examples/ports/two-blocks.json | sed '1d;$d')}" >"$WORK/port.json"
"$SG" port "$WORK/port.json" --count "$N" -o "$WORK/c.pcap" 2>/dev/null
cat "$WORK/c.pcap" >/dev/null
t() {
    local t0 t1
    t0=$(date +%s%N)
    "$@" >/dev/null 2>&1
    t1=$(date +%s%N)
    echo $(((t1 - t0) / 1000000))
}
ours=$(t "$SG" analyze "$WORK/c.pcap")
theirs=$(t tshark -n -r "$WORK/c.pcap")
python3 -c "print('%d frames: streamgen analyze %d ms (%.1f Mframes/s), tshark -r %d ms; tshark / analyze = %.0fx' % ($N, $ours, $N / max($ours, 1) / 1e3, $theirs, $theirs / max($ours, 1)))"
