#!/usr/bin/env bash
# streamgen send on a veth pair between two network namespaces that this script makes and
# removes, on documentation addresses (192.0.2.1 and 192.0.2.2), with bounded counts and
# durations. Nothing is sent on the machine's own interfaces.
#   streamgen_send.sh STREAMGEN EXAMPLES_DIR WORK_DIR CASE
# Exit 0 pass, 1 fail, 77 skipped (no namespaces: not root, or no veth).
# shellcheck source=tests/tools/harness.sh
source "$(dirname "$0")/harness.sh" "$@"

# Namespaces named after this process, so that cases running at once do not meet.
A=vrmsA$$
B=vrmsB$$
cleanup() {
    ip netns del "$A" 2>/dev/null
    ip netns del "$B" 2>/dev/null
}
trap cleanup EXIT
if ! ip netns add "$A" 2>/dev/null; then
    echo "skipped: network namespaces cannot be made here (needs root)"
    exit 77
fi
ip netns add "$B" || exit 1
if ! ip link add vs0 netns "$A" type veth peer name vs1 netns "$B" 2>/dev/null; then
    echo "skipped: no veth pairs here"
    exit 77
fi
for ns in "$A" "$B"; do
    ip netns exec "$ns" sysctl -qw net.ipv6.conf.all.disable_ipv6=1  # no frames of the kernel's own
    ip -n "$ns" link set lo up
done
ip -n "$A" addr add 192.0.2.1/24 dev vs0
ip -n "$B" addr add 192.0.2.2/24 dev vs1
ip -n "$A" link set vs0 up
ip -n "$B" link set vs1 up

inA() { ip netns exec "$A" "$@"; }
inB() { ip netns exec "$B" "$@"; }
counter() { ip netns exec "$1" cat "/sys/class/net/$2/statistics/$3"; }

# send EXPECTED_STATUS ARGS...: streamgen send in namespace A, stdout in out.txt, stderr in err.txt.
send() {
    local want=$1
    shift
    timeout 60 ip netns exec "$A" "$SG" send "$@" >out.txt 2>err.txt
    local got=$?
    if [ "$got" -ne "$want" ]; then
        fail "streamgen send $* exited $got, expected $want; stderr: $(head -c 400 err.txt)"
        return 1
    fi
}

# The frames of two captures, in order, the same bytes (PCAP or PCAPNG, via tshark).
same_frames() {
    tshark -r "$1" -F pcap -w a.pcap 2>/dev/null && tshark -r "$2" -F pcap -w b.pcap 2>/dev/null || {
        fail "cannot read $1 or $2"
        return
    }
    python3 - a.pcap b.pcap <<'PY' || fail "$1 and $2 differ"
import struct, sys
def frames(path):
    data = open(path, 'rb').read()
    at, out = 24, []
    while at < len(data):
        n = struct.unpack_from('<I', data, at + 8)[0]
        out.append(data[at + 16:at + 16 + n])
        at += 16 + n
    return out
a, b = frames(sys.argv[1]), frames(sys.argv[2])
if len(a) != len(b):
    sys.exit(f"{len(a)} frames against {len(b)}")
for k, (x, y) in enumerate(zip(a, b)):
    if x != y:
        sys.exit(f"frame {k} differs")
PY
}

# capture N FILE: starts tshark on B's end for N frames; wait_capture waits for it to end.
capture() {
    inB tshark -n -i vs1 -c "$1" -w "$2" >cap.out 2>cap.err &
    CAPTURE=$!
    for _ in $(seq 100); do
        # (tshark says so a moment before its first packet can arrive)
        grep -q "Capture started" cap.err 2>/dev/null && sleep 0.5 && return 0
        sleep 0.1
    done
    fail "tshark did not start: $(cat cap.err)"
}
wait_capture() {
    for _ in $(seq 100); do
        kill -0 "$CAPTURE" 2>/dev/null || break
        sleep 0.1
    done
    kill "$CAPTURE" 2>/dev/null
    wait "$CAPTURE" 2>/dev/null
}

# What arrives is byte for byte what streamgen frames and port write, for a block and a port,
# through AF_XDP and through the packet socket.
case_bytes() {
    local tx
    "$SG" frames "$EX/ipv4-random-prbs.json" --count 300 -o ref-block.pcap 2>/dev/null || fail "frames failed"
    "$SG" port "$EX/ports/two-blocks.json" --count 2000 -o ref-port.pcap 2>/dev/null || fail "port failed"
    for tx in xdp packet; do
        capture 300 got-block.pcapng
        send 0 "$EX/ipv4-random-prbs.json" -i vs0 --count 300 --tx "$tx" && has err.txt "sent 300 frames"
        wait_capture
        same_frames got-block.pcapng ref-block.pcap
        capture 2000 got-port.pcapng
        send 0 "$EX/ports/two-blocks.json" -i vs0 --count 2000 --rate 200000 --tx "$tx" && has err.txt "sent 2000 frames"
        wait_capture
        same_frames got-port.pcapng ref-port.pcap
    done
}

# The count sent is exact, and it is what the interfaces count: the sender's tx_packets and
# the peer's rx_packets, as fast as it goes and paced, through either way of sending.
case_counts() {
    local rate tx tx0 rx0 sent
    for tx in xdp packet; do
        for rate in max 50000; do
            tx0=$(counter "$A" vs0 tx_packets)
            rx0=$(counter "$B" vs1 rx_packets)
            send 0 "$EX/ipv4-udp.json" -i vs0 --count 20011 --rate "$rate" --tx "$tx" --json || continue
            has err.txt "\"sender\":\"$tx"
            sent=$(tail -1 err.txt | python3 -c 'import json, sys; print(json.load(sys.stdin)["frames"])')
            [ "$sent" = 20011 ] || fail "--tx $tx --rate $rate: sent $sent frames, not 20011"
            [ $(($(counter "$A" vs0 tx_packets) - tx0)) -eq 20011 ] || fail "--tx $tx --rate $rate: tx_packets moved otherwise"
            [ $(($(counter "$B" vs1 rx_packets) - rx0)) -eq 20011 ] || fail "--tx $tx --rate $rate: rx_packets moved otherwise"
        done
    done
    # A port stops at its own end (two-blocks: 100,000 frames), and --duration on the schedule.
    tx0=$(counter "$A" vs0 tx_packets)
    send 0 "$EX/ports/two-blocks.json" -i vs0 --duration 0.0005 --json || return
    sent=$(tail -1 err.txt | python3 -c 'import json, sys; print(json.load(sys.stdin)["frames"])')
    want=$("$SG" port "$EX/ports/two-blocks.json" --duration 0.0005 -o /dev/null 2>&1 | awk '{ print $1 }')
    [ "$sent" = "$want" ] || fail "--duration 0.0005: sent $sent frames, the schedule has $want"
    [ $(($(counter "$A" vs0 tx_packets) - tx0)) -eq "$sent" ] || fail "--duration: tx_packets moved otherwise"
}

# Each refusal: one line naming the problem, its exit status, and the counts when it stops a run.
case_errors() {
    send 3 "$EX/ipv4-udp.json" -i nosuch0 --count 1 && has err.txt "no interface named nosuch0"
    ip -n "$A" link set vs0 down
    send 3 "$EX/ipv4-udp.json" -i vs0 --count 1 && has err.txt "vs0 is down (--force sends anyway)"
    ip -n "$A" link set vs0 up
    ip -n "$A" link set vs0 mtu 100
    send 3 "$EX/ipv4-random-prbs.json" -i vs0 --count 100 && has err.txt "more than vs0 takes (MTU 100"
    ip -n "$A" link set vs0 mtu 1500
    timeout 60 ip netns exec "$A" setpriv --reuid=65534 --regid=65534 --clear-groups --inh-caps=-all \
        "$SG" send "$EX/ipv4-udp.json" -i vs0 --count 1 >out.txt 2>err.txt
    [ $? -eq 3 ] || fail "without CAP_NET_RAW: not exit 3: $(cat err.txt)"
    has err.txt "a packet socket needs CAP_NET_RAW"
    timeout 60 ip netns exec "$A" setpriv --reuid=65534 --regid=65534 --clear-groups --inh-caps=-all \
        "$SG" send "$EX/ipv4-udp.json" -i vs0 --count 1 --tx xdp >out.txt 2>err.txt
    [ $? -eq 3 ] || fail "AF_XDP without capabilities: not exit 3: $(cat err.txt)"
    has err.txt "through AF_XDP: it needs CAP_NET_RAW"
    send 2 "$EX/ipv4-udp.json" -i vs0 --rate fast && has err.txt "--rate: expected frames per second"
    # Interrupted: stops, drains and prints the final counts, status 130.
    # (A script's background job starts with SIGINT ignored; the default is put back for it.)
    python3 -c 'import os, signal, sys; signal.signal(signal.SIGINT, signal.SIG_DFL); os.execvp(sys.argv[1], sys.argv[1:])' \
        ip netns exec "$A" "$SG" send "$EX/ipv4-udp.json" -i vs0 --rate 1000 --count 100000 --duration 20 >out.txt 2>err.txt &
    local pid=$!
    sleep 0.5
    kill -INT "$pid"
    wait "$pid"
    [ $? -eq 130 ] || fail "SIGINT: not exit 130"
    has err.txt "sent "
    # The interface goes away during the run: exit 4, with the counts so far.
    ip netns exec "$A" "$SG" send "$EX/ipv4-udp.json" -i vs0 --rate 1000 --count 100000 --duration 20 >out.txt 2>err.txt &
    pid=$!
    sleep 0.5
    ip -n "$A" link del vs0
    wait "$pid"
    [ $? -eq 4 ] || fail "interface deleted: not exit 4: $(cat err.txt)"
    has err.txt "went away or down while sending"
    has err.txt " frames, "
}

finish_case
