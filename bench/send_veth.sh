#!/usr/bin/env bash
# Sending on a veth pair, against the open anchors, in one run (needs root; makes and removes
# two network namespaces of its own, addresses in 192.0.2.0/24; nothing leaves the machine):
#   1. top speed with 60-byte frames (64 with FCS): streamgen send (--tx auto, xdp, packet)
#      against trafgen (netsniff-ng) and tcpreplay --topspeed, each the same number of frames,
#      frames per second from the sender's tx_packets counter over the command's wall time;
#   2. pacing at 10, 100 and 500 kpps: the mean rate between the first and last hand-over
#      against the target (ppm), lateness p50/p99/max, the longest back-to-back burst;
#   3. streamgen analyze -i on the peer while streamgen send goes at top speed: the frames the
#      analyzer saw against the peer's rx_packets, and the ring's drops.
# Run it with nothing else running:  sudo bench/send_veth.sh [STREAMGEN] [FRAMES]
set -euo pipefail
cd "$(dirname "$0")/.."
SG=$(realpath "${1:-build/default/tools/streamgen}")
N=${2:-3000000}
for tool in trafgen tcpreplay tshark; do
    command -v "$tool" >/dev/null || { echo "missing $tool (Debian: netsniff-ng, tcpreplay, tshark)" >&2; exit 2; }
done
[ "$(id -u)" -eq 0 ] || { echo "needs root (network namespaces)" >&2; exit 2; }

A=vrmbA$$
B=vrmbB$$
WORK=$(mktemp -d)
cleanup() {
    ip netns del "$A" 2>/dev/null || true
    ip netns del "$B" 2>/dev/null || true
    rm -rf "$WORK"
}
trap cleanup EXIT
ip netns add "$A"
ip netns add "$B"
ip link add vb0 netns "$A" type veth peer name vb1 netns "$B"
for ns in "$A" "$B"; do ip netns exec "$ns" sysctl -qw net.ipv6.conf.all.disable_ipv6=1; done
ip -n "$A" addr add 192.0.2.1/24 dev vb0
ip -n "$B" addr add 192.0.2.2/24 dev vb1
ip -n "$A" link set vb0 up
ip -n "$B" link set vb1 up
sleep 0.5

BLOCK=examples/ipv4-udp.json
"$SG" frames "$BLOCK" --count 100000 -o "$WORK/f.pcap" 2>/dev/null
# trafgen's configuration: the block's first frame, byte for byte.
python3 - "$WORK/f.pcap" >"$WORK/trafgen.cfg" <<'PY'
import struct, sys
data = open(sys.argv[1], 'rb').read()
n = struct.unpack_from('<I', data, 24 + 8)[0]
frame = data[24 + 16:24 + 16 + n]
print('{ ' + ', '.join('0x%02x' % b for b in frame) + ' }')
PY

tx() { ip netns exec "$A" cat /sys/class/net/vb0/statistics/tx_packets; }
# rate NAME CMD...: frames per second by the sender's counter over the command's wall time.
rate() {
    local name=$1
    shift
    local t0 c0 t1 c1
    c0=$(tx)
    t0=$(date +%s%N)
    ip netns exec "$A" "$@" >/dev/null 2>"$WORK/err.txt" || { echo "$name failed: $(tail -2 "$WORK/err.txt")" >&2; return 1; }
    t1=$(date +%s%N)
    c1=$(tx)
    python3 -c "import sys; print('%-28s %9d frames %8.3f s %10.0f pps' % ('$name', $c1 - $c0, ($t1 - $t0) / 1e9, ($c1 - $c0) * 1e9 / ($t1 - $t0)))"
}

echo "== top speed, 60-byte frames, $N frames each"
LOOPS=$(( (N + 99999) / 100000 ))
{
    rate "streamgen send (auto)" "$SG" send "$BLOCK" -i vb0 --count "$N" --rate max
    rate "streamgen send --tx xdp" "$SG" send "$BLOCK" -i vb0 --count "$N" --rate max --tx xdp
    rate "streamgen send --tx packet" "$SG" send "$BLOCK" -i vb0 --count "$N" --rate max --tx packet
    rate "trafgen (1 cpu)" trafgen --dev vb0 --conf "$WORK/trafgen.cfg" --num "$N" --cpus 1 --no-sock-mem
    rate "tcpreplay --topspeed" tcpreplay --topspeed --preload-pcap --loop "$LOOPS" -i vb0 "$WORK/f.pcap"
} | tee "$WORK/top.txt"
python3 - "$WORK/top.txt" <<'PY'
import sys
rows = {l[:28].strip(): float(l.split()[-2]) for l in open(sys.argv[1]) if l.strip()}
ours = rows.get('streamgen send (auto)', 0)
best = max(rows.get('trafgen (1 cpu)', 0), rows.get('tcpreplay --topspeed', 0))
print('ratio: streamgen send / the faster anchor = %.2fx' % (ours / best if best else 0))
PY

echo "== pacing (2 s each, the default --max-burst of 256)"
for r in 10000 100000 500000; do
    ip netns exec "$A" "$SG" send "$BLOCK" -i vb0 --count $((2 * r)) --rate "$r" --json 2>&1 >/dev/null |
        tail -1 | python3 -c "
import json, sys
d = json.load(sys.stdin)
ppm = (d['mean_pps'] / $r - 1) * 1e6
print('%7d pps: %d frames, mean %.3f pps (%+.1f ppm), late p50 %.1f us p99 %.1f us max %.1f us, longest burst %d, stalls %d, %s'
      % ($r, d['frames'], d['mean_pps'], ppm, d['late_ns']['p50'] / 1e3, d['late_ns']['p99'] / 1e3,
         d['late_ns']['max'] / 1e3, d['longest_burst'], d['stalls'], d['sender']))"
done

echo "== live analysis at top speed ($N frames)"
ip netns exec "$B" "$SG" analyze -i vb1 --duration 30 --json >"$WORK/live.json" 2>"$WORK/live.err" &
listener=$!
for _ in $(seq 50); do grep -q "listening on vb1" "$WORK/live.err" && break; sleep 0.1; done
rx0=$(ip netns exec "$B" cat /sys/class/net/vb1/statistics/rx_packets)
ip netns exec "$A" "$SG" send "$BLOCK" -i vb0 --count "$N" --rate max 2>/dev/null
sleep 0.5
kill -TERM "$listener" 2>/dev/null || true
wait "$listener" || true
rx1=$(ip netns exec "$B" cat /sys/class/net/vb1/statistics/rx_packets)
python3 -c "
import json
d = json.load(open('$WORK/live.json'))
print('analyzer saw %d frames, the interface received %d; %s' % (d['frames'], $rx1 - $rx0, open('$WORK/live.err').read().strip().splitlines()[-1]))"
