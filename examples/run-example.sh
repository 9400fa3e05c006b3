#!/usr/bin/env bash
# Runs streamgen on the IPv4/UDP example: checks the block, writes its frames to a pcap file
# and shows the first values of its modifiers.
#   ./examples/run-example.sh BUILD_DIR        (for example build/default)
set -euo pipefail
build=${1:?usage: $0 BUILD_DIR}
here=$(cd "$(dirname "$0")" && pwd)
streamgen="$build/tools/streamgen"
[ -x "$streamgen" ] || { echo "no streamgen in $build/tools (build the project first)" >&2; exit 1; }
out="$build/examples"
mkdir -p "$out"
pcap="$out/ipv4-udp.pcap"

echo "\$ streamgen validate examples/ipv4-udp.json"
"$streamgen" validate "$here/ipv4-udp.json"
echo
echo "\$ streamgen values examples/ipv4-udp.json --count 6   (frame, IPv4 source, UDP source port)"
"$streamgen" values "$here/ipv4-udp.json" --count 6
echo
echo "\$ streamgen frames examples/ipv4-udp.json -o $pcap --count 1000"
"$streamgen" frames "$here/ipv4-udp.json" -o "$pcap" --count 1000
echo
echo "The frames are in $pcap (open it with Wireshark or tshark -r)."
