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

# End to end: sender -> router (forwarding IPv4 and IPv6) -> receiver, each a namespace of
# this script's. The router's nftables rule drops every 10th frame of one stream; the
# analyzer listening on the receiver reports exactly those losses on that stream, none on the
# others, and its receive ring misses nothing.
case_verdict() {
    command -v nft >/dev/null || { echo "skipped: no nft (Debian: nftables)"; exit 77; }
    local R=vrmsR$$ D=vrmsD$$
    ip netns add "$R" && ip netns add "$D" || return
    trap 'cleanup; ip netns del '"$R"' 2>/dev/null; ip netns del '"$D"' 2>/dev/null' EXIT
    ip -n "$A" link del vs0
    ip link add s0 netns "$A" type veth peer name r0 netns "$R"
    ip link add r1 netns "$R" type veth peer name d0 netns "$D"
    ip -n "$R" link set r0 address 00:10:94:00:00:02  # the frames' destination
    ip -n "$R" addr add 192.0.2.254/24 dev r0
    ip -n "$R" addr add 2001:db8:1::fe/64 dev r0 nodad
    ip -n "$R" addr add 198.51.100.254/24 dev r1
    ip -n "$R" addr add 2001:db8:2::fe/64 dev r1 nodad
    ip -n "$D" addr add 198.51.100.1/24 dev d0
    ip -n "$D" addr add 2001:db8:2::1/64 dev d0 nodad
    ip netns exec "$R" sysctl -qw net.ipv4.ip_forward=1 net.ipv6.conf.all.forwarding=1
    # The receiver's addresses known to the router from the start (no frame waits for ARP or ND).
    local mac
    mac=$(ip netns exec "$D" cat /sys/class/net/d0/address)
    ip -n "$R" neigh add 198.51.100.1 lladdr "$mac" dev r1 nud permanent
    ip -n "$R" neigh add 2001:db8:2::1 lladdr "$mac" dev r1 nud permanent
    ip netns exec "$D" sysctl -qw net.ipv6.conf.all.accept_ra=0
    for l in "$A s0" "$R r0" "$R r1" "$D d0" "$R lo" "$D lo"; do
        set -- $l
        ip -n "$1" link set "$2" up
    done
    ip netns exec "$R" nft -f - <<'NFT' || { fail "nft rules"; return; }
table inet verdict {
    chain forward {
        type filter hook forward priority 0;
        ip saddr 192.0.2.3 numgen inc mod 10 == 5 counter drop
    }
}
NFT
    # Four IPv4 streams (sources 192.0.2.1 .. .4) and an IPv6 block, 100-byte frames signed.
    cat >verdict.json <<'JSON'
{"blocks": [
  {"name": "v4", "blockID": 1, "baseStream": {"enabled": true, "frame": {
     "data": "001094000002 001094000001 0800 4500005a00000000401100 00 c0000201 c6336401 0400 1389 0046 0000 000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f202122232425262728292a2b2c2d2e2f303132333435363738393a3b3c3d",
     "options": {"insertSigField": true}}},
   "rangeModifiers": [{"modIndex": 1, "offsetReference": "ipv4.src", "initialValue": "c0000201", "stepValue": "00000001",
     "mask": "ffffffff", "recycleCount": 4, "mode": "INCREMENT", "useStream": true}]},
  {"name": "v6", "blockID": 2, "baseStream": {"enabled": true, "frame": {
     "data": "001094000002 001094000001 86dd 60000000002a1140 20010db8000100000000000000000001 20010db8000200000000000000000001 0400 1389 002a 0000 000102030405060708090a0b0c0d0e0f101112131415161718191a1b1c1d1e1f2021",
     "options": {"insertSigField": true}}}}],
 "loadProfiles": [{"loadProfileId": 1, "load": 40000000, "loadUnit": "FRAMES_PER_SECOND"},
                  {"loadProfileId": 2, "load": 10000000, "loadUnit": "FRAMES_PER_SECOND"}],
 "bindings": [{"streamBlockId": 1, "loadProfileId": 1}, {"streamBlockId": 2, "loadProfileId": 2}]}
JSON
    local rx0
    rx0=$(counter "$D" d0 rx_packets)
    ip netns exec "$D" "$SG" analyze -i d0 --duration 4 --json >verdict.out 2>verdict.err &
    local listener=$!
    for _ in $(seq 50); do grep -q "listening on d0" verdict.err && break; sleep 0.1; done
    # 20,008 frames: 16,006 of v4 (4,002 of 192.0.2.3, which does not end on a dropped one).
    timeout 60 ip netns exec "$A" "$SG" send verdict.json -i s0 --count 20008 >out.txt 2>err.txt ||
        fail "send: $(cat err.txt)"
    wait "$listener" || fail "analyze: $(cat verdict.err)"
    has verdict.err ", 0 the receive ring missed"
    local dropped
    dropped=$(ip netns exec "$R" nft list ruleset | sed -n 's/.*counter packets \([0-9]*\).*/\1/p')
    python3 - verdict.out "$dropped" "$(($(counter "$D" d0 rx_packets) - rx0))" <<'PY' || fail "verdict: $(cat verdict.out)"
import json, sys
d = json.load(open(sys.argv[1]))
dropped, arrived = int(sys.argv[2]), int(sys.argv[3])
streams = {(s["block"], s["stream"]): s for s in d["streams"]}
assert dropped == 400, dropped
# Every signed frame that arrived was seen (the interface may also have had a stray ARP or
# ICMPv6 frame outside the listening window).
assert arrived >= 20008 - dropped, arrived
assert sum(s["frames"] for s in streams.values()) == 20008 - dropped, d
assert set(streams) == {(1, 0), (1, 1), (1, 2), (1, 3), (2, 0)}, streams.keys()
for key, s in streams.items():
    want = dropped if key == (1, 2) else 0
    assert s["lost"] == want, (key, s)
    assert s["duplicates"] == 0 and s["out_of_order"] == 0, (key, s)
PY
}

finish_case
