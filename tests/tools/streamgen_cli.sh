#!/usr/bin/env bash
# Command-line tests of streamgen.
#   streamgen_cli.sh STREAMGEN EXAMPLES_DIR WORK_DIR CASE
# Exit 0 pass, 1 fail, 77 skipped.
# shellcheck source=tests/tools/harness.sh
source "$(dirname "$0")/harness.sh" "$@"

# run EXPECTED_STATUS CMD... : runs streamgen, keeps stdout in out.txt and stderr in err.txt.
run() {
    local want=$1
    shift
    "$SG" "$@" >out.txt 2>err.txt
    local got=$?
    if [ "$got" -ne "$want" ]; then
        fail "streamgen $* exited $got, expected $want; stderr: $(head -c 400 err.txt)"
        return 1
    fi
    return 0
}


GOOD_EXAMPLES=(ipv4-udp ipv6-dst vlan-table)
# Examples whose frames vary in length, fill and signature.
SHAPED_EXAMPLES=(ipv4-fixed ipv4-incr-fill ipv4-random-prbs ipv6-decr-signature vlan-imix-constant)

case_help() {
    local cmd
    run 0 --help && has out.txt "Example"
    for cmd in validate values frames request decode describe; do
        run 0 "$cmd" --help && has out.txt "Example"
    done
    run 0 --version && has out.txt "streamgen "
    # Command-line mistakes: arguments | exit | start of the one-line message.
    local rows=(
        '|2|streamgen: A subcommand is required'
        'nosuchcommand|2|streamgen: unknown command nosuchcommand'
        'values|2|streamgen: BLOCK is required'
        "values $EX/ipv4-udp.json --start -1|2|streamgen: --start: expected 0 or more, got -1"
        "frames $EX/ipv4-udp.json -o x.pcap --checksums maybe|2|streamgen: --checksums"
    ) row args
    for row in "${rows[@]}"; do
        IFS='|' read -r args want msg <<<"$row"
        # shellcheck disable=SC2086
        run "$want" $args && has err.txt "$msg"
        [ "$(wc -l <err.txt)" -eq 1 ] || fail "streamgen $args: message is not one line: $(cat err.txt)"
    done
}

case_validate() {
    local ex
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 validate "$EX/$ex.json" && has out.txt "valid:"
    done
    # The library's lines, exactly as it writes them.
    if run 1 validate "$EX/invalid.json"; then
        has out.txt "Modifier ipv4.src initial, step and mask value do not match."
        has out.txt "Streamblocks with stream generation disabled need device modifiers to have total device count as multiple of (recycle count * (repeat count + 1)). Modifier udp.sport, Total count 10, Recycle count 4, Repeat count 0."
        has out.txt "Modifier ipv4.dst data size is not consistent."
    fi
    # Problems of the modifier set as a whole are the library's lines too.
    local m='"initialValue": "01", "stepValue": "01", "mask": "ff", "useStream": true'
    printf '{"rangeModifiers": [{"modIndex": 1, %s}, {"modIndex": 1, %s}]}\n' "$m" "$m" >twice.json
    run 1 validate twice.json && has out.txt "Modifier modIndex 1 is used by more than one modifier."
    printf '{"rangeModifiers": [{"modIndex": 1, %s}], "modLinks": [{"modIndex": 1, "childModIndex": [5]}]}\n' "$m" >link.json
    run 1 validate link.json && has out.txt "modLinks[0].childModIndex[0]: Modifier link from modIndex 1 to modIndex 5 refers to an unknown modIndex."
    run 1 validate twice.json && has out.txt "rangeModifiers[1]: Modifier modIndex 1 is used by more than one modifier."
    # The library's lines keep their text and gain the path and the sizes they are about.
    has "$EX/invalid.json" '"stepValue": "0001"'
    run 1 validate "$EX/invalid.json" &&
        has out.txt "rangeModifiers[0]: Modifier ipv4.src initial, step and mask value do not match. (initialValue has 4 bytes, stepValue 2, mask 4)"
    printf '{"tableModifiers": [{"modIndex": 1, "data": []}]}\n' >emptytable.json
    run 1 validate emptytable.json && has err.txt "emptytable.json: tableModifiers[0]: "
    has err.txt "data array is empty"
    # Commands that need a valid block refuse an invalid one with status 1, one message per
    # line of the library.
    local cmd
    for cmd in values request "frames -o invalid.pcap"; do
        # shellcheck disable=SC2086
        run 1 $cmd "$EX/invalid.json" && has err.txt "invalid.json: the block is invalid: tableModifiers[0].data[1]: Modifier ipv4.dst data size is not consistent. (data[1] has 3 bytes, data[0] 4)"
        [ "$(grep -c '^streamgen: .*invalid.json: the block is invalid: ' err.txt)" -eq "$(wc -l <err.txt)" ] ||
            fail "$cmd: not one message per line: $(cat err.txt)"
    done
}

case_values_agree() {
    local ex n
    for ex in "${GOOD_EXAMPLES[@]}"; do
        for n in 1 7 300; do
            run 0 values "$EX/$ex.json" --count "$n" && mv out.txt step.txt
            run 0 values "$EX/$ex.json" --count "$n" --at && mv out.txt at.txt
            [ "$(wc -l <step.txt)" -eq "$n" ] || fail "$ex: values --count $n printed $(wc -l <step.txt) lines"
            cmp -s step.txt at.txt || fail "$ex: values and values --at differ for $n frames: $(diff step.txt at.txt | head -5)"
        done
    done
    # The first line: index 0, then one hex value per modifier in modIndex order.
    run 0 values "$EX/ipv4-udp.json" --count 2
    [ "$(head -1 out.txt | cut -d' ' -f1-2)" = "0 c0000201" ] || fail "ipv4-udp first line: $(head -1 out.txt)"
    run 0 values "$EX/vlan-table.json" --count 4
    [ "$(tr '\n' ' ' <out.txt)" = "0 0064 1 0064 2 00c8 3 00c8 " ] || fail "vlan-table lines: $(cat out.txt)"
    # The frame's bytes: a mask that leaves bits alone keeps the template's there (f389 with
    # mask 0fff and initial value 2001 gives f001); --raw shows the modifier's own value.
    sed -e 's/0400 1389/0400 f389/' -e 's/"offsetReference": "udp.sport"/"offsetReference": "udp.dport"/' \
        -e 's/"initialValue": "0400"/"initialValue": "2001"/' -e 's/"mode": "RANDOM"/"mode": "INCREMENT"/' \
        -e 's/"field": "udp.sport"/"field": "udp.dport"/' "$EX/ipv4-udp.json" >mask.json
    run 0 values mask.json --count 2 && [ "$(tr '\n' ' ' <out.txt)" = "0 c0000201 f001 1 c0000201 f002 " ] ||
        fail "values of a masked field: $(cat out.txt)"
    run 0 values mask.json --count 2 --raw && [ "$(tr '\n' ' ' <out.txt)" = "0 c0000201 2001 1 c0000201 2002 " ] ||
        fail "values --raw: $(cat out.txt)"
    run 0 values mask.json --count 2 --start 1 --at && [ "$(cut -d' ' -f3 out.txt | tr '\n' ' ')" = "f002 f003 " ] ||
        fail "values --at of a masked field: $(cat out.txt)"
    # A value that stays for 2^32 frames in a carry chain: stepping, frames and validation
    # take it; values by index are refused with the modifier's path.
    sed 's/"stutterCount": 0,/"stutterCount": 4294967295,/' "$EX/ipv4-udp.json" >stutter.json
    run 0 validate stutter.json && has err.txt "restarts after 4294967296 frames"
    run 0 frames stutter.json -o stutter.pcap --count 10
    run 0 values stutter.json --count 3 && [ "$(cut -d' ' -f3 out.txt | tr '\n' ' ')" = "0400 0400 0400 " ] ||
        fail "values with a 2^32-frame stutter: $(cat out.txt)"
    run 2 values stutter.json --count 3 --at && has err.txt "stutter.json: rangeModifiers[0]: the library has no values by index"
    # Without --count: host.frames of the example.
    run 0 values "$EX/vlan-table.json" && [ "$(wc -l <out.txt)" -eq 20 ] || fail "vlan-table default count"
}

case_values_start() {
    local ex
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 values "$EX/$ex.json" --count 120 && tail -n 50 out.txt >tail.txt
        run 0 values "$EX/$ex.json" --start 70 --count 50 && mv out.txt step.txt
        run 0 values "$EX/$ex.json" --start 70 --count 50 --at && mv out.txt at.txt
        cmp -s tail.txt step.txt || fail "$ex: --start 70 (stepping) differs from lines 70..119"
        cmp -s tail.txt at.txt || fail "$ex: --start 70 --at differs from lines 70..119"
    done
    # Ranges in 64-bit arithmetic: nothing wraps round, and a start near the end is found by
    # index at once.
    run 2 values "$EX/ipv4-udp.json" --start 4294967295 --count 2 && has err.txt "--start/--count: frame indexes"
    run 2 values "$EX/ipv4-udp.json" --start 18446744073709551615 --count 1
    run 2 values "$EX/ipv4-udp.json" --start 1 --count 18446744073709551615
    run 0 values "$EX/ipv4-udp.json" --start 4294967290 --count 6 && mv out.txt step.txt
    run 0 values "$EX/ipv4-udp.json" --start 4294967290 --count 6 --at
    cmp -s step.txt out.txt && [ "$(wc -l <step.txt)" -eq 6 ] || fail "values near the last index"
}

case_frames_threads() {
    local ex t
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 frames "$EX/$ex.json" -o "$ex-1.pcap" --count 1001 --threads 1
        for t in 2 3 7; do
            run 0 frames "$EX/$ex.json" -o "$ex-$t.pcap" --count 1001 --threads "$t"
            cmp -s "$ex-1.pcap" "$ex-$t.pcap" || fail "$ex: $t threads give another file than 1 thread"
        done
    done
    # Several blocks of about a megabyte (13797 frames of ipv4-udp each), taken by whichever
    # thread is free: the same bytes in a new file and through a pipe.
    run 0 frames "$EX/ipv4-udp.json" -o big-1.pcap --count 50000 --threads 1
    for t in 2 3; do
        run 0 frames "$EX/ipv4-udp.json" -o "big-$t.pcap" --count 50000 --threads "$t"
        cmp -s big-1.pcap "big-$t.pcap" || fail "50000 frames: $t threads give another file than 1 thread"
        "$SG" frames "$EX/ipv4-udp.json" -o - --count 50000 --threads "$t" 2>/dev/null | cmp -s big-1.pcap - ||
            fail "50000 frames through a pipe with $t threads differ from the file"
    done
    # Fewer frames than threads, and none.
    run 0 frames "$EX/ipv4-udp.json" -o a.pcap --count 3 --threads 1
    run 0 frames "$EX/ipv4-udp.json" -o b.pcap --count 3 --threads 8
    cmp -s a.pcap b.pcap || fail "3 frames with 8 threads differ"
    run 0 frames "$EX/ipv4-udp.json" -o zero.pcap --count 0
    [ "$(stat -c %s zero.pcap)" -eq 24 ] || fail "an empty capture is not just the 24-byte header"
    run 2 frames "$EX/ipv4-udp.json" -o c.pcap --threads 0
}

case_frames_file() {
    run 0 frames "$EX/ipv4-udp.json" -o f.pcap --count 100 || return
    # The summary line goes to standard error, standard output stays empty.
    [ -s out.txt ] && fail "frames wrote to standard output"
    has err.txt "100 frames, 7624 bytes in "
    has err.txt "frames/s), lengths AUTO 60 (the template), checksums IPv4 header, UDP -> f.pcap"
    [ "$(stat -c %s f.pcap)" -eq $((24 + 100 * (16 + 60))) ] || fail "f.pcap has $(stat -c %s f.pcap) bytes"
    # Little-endian microsecond pcap, Ethernet link type.
    [ "$(od -An -tx1 -N4 f.pcap | tr -d ' ')" = "d4c3b2a1" ] || fail "bad pcap magic"
    [ "$(od -An -tu4 -j20 -N4 f.pcap | tr -d ' ')" = "1" ] || fail "link type is not Ethernet"
    # Frame 0 carries the first values: IPv4 source at bytes 26..29 of the frame.
    run 0 values "$EX/ipv4-udp.json" --count 1
    local src
    src=$(od -An -tx1 -j$((24 + 16 + 26)) -N4 f.pcap | tr -d ' \n')
    [ "$src" = "$(cut -d' ' -f2 out.txt)" ] || fail "frame 0 source $src, values says $(cut -d' ' -f2 out.txt)"
    # An output that cannot be written.
    run 1 frames "$EX/ipv4-udp.json" -o /nonexistent-dir/x.pcap --count 10 && has err.txt "No such file or directory"
}

# Nothing lost: outputs appear whole or not at all, inputs are never overwritten.
case_outputs() {
    local ex=$EX/ipv4-udp.json
    cp "$ex" block.json
    printf 'old\n' >old.out
    "$SG" frames "$ex" -o ref.pcap --count 50 2>/dev/null
    # Refused runs: arguments | exit | message; block.json and old.out stay as they were.
    local rows=(
        "frames block.json -o block.json|2|block.json: --output: block.json is the block file itself"
        "frames block.json -o ./block.json|2|is the block file itself"
        "request block.json -o block.json|2|is the block file itself"
        "frames $EX/invalid.json -o old.out|1|the block is invalid"
        "frames wrongfield.json -o old.out|2|host.modifiers[0].field"
        "request $EX/invalid.json -o old.out|1|the block is invalid"
        "frames block.json -o /dev/full --count 10|1|/dev/full: No space left on device"
        "request block.json -o /dev/full|1|/dev/full: No space left on device"
    ) row args want msg
    sed 's/"field": "ipv4.src"/"field": "ipv6.dst"/' "$ex" >wrongfield.json
    for row in "${rows[@]}"; do
        IFS='|' read -r args want msg <<<"$row"
        # shellcheck disable=SC2086
        run "$want" $args && has err.txt "$msg"
        cmp -s "$ex" block.json || fail "streamgen $args changed its input"
        [ "$(cat old.out)" = old ] || fail "streamgen $args changed an existing output"
    done
    # Write errors on standard output are failures.
    for args in "values $ex" "request $ex" "describe" "frames $ex -o -"; do
        # shellcheck disable=SC2086
        "$SG" $args >/dev/full 2>err.txt && fail "streamgen $args >/dev/full exited 0"
    done
    # A closed pipe ends the run as SIGPIPE does: status 141 in the shell.
    "$SG" frames "$ex" -o - --count 100000 2>/dev/null | head -c 100 >/dev/null
    local piped=${PIPESTATUS[0]}
    [ "$piped" -eq 141 ] || fail "frames into a closed pipe: status $piped, expected 141"
    # Standard input and output: the same capture as through files, nothing else on stdout.
    "$SG" frames - -o - --count 50 <"$ex" >stdout.pcap 2>err.txt || fail "frames - -o - failed"
    cmp -s ref.pcap stdout.pcap || fail "frames to standard output differ from the file"
    "$SG" frames "$ex" -o /dev/stdout --count 50 >devstdout.pcap 2>/dev/null
    cmp -s ref.pcap devstdout.pcap || fail "frames -o /dev/stdout differ from the file"
    run 0 validate - <"$ex" && has out.txt "valid:"
    run 0 request block.json -o - && "$SG" decode - <out.txt >dec.txt 2>&1 || fail "request -o - | decode -"
    # An interrupted run leaves no file and an existing one untouched. Job control keeps
    # SIGINT deliverable to a background job; a run the signal does not end is killed.
    local sig pid i
    set -m
    for sig in INT TERM; do
        "$SG" frames "$ex" -o old.out --count 100000000 2>/dev/null &
        pid=$!
        sleep 0.3
        kill -s "$sig" "$pid"
        for i in 1 2 3 4 5 6 7 8 9 10; do kill -0 "$pid" 2>/dev/null && sleep 0.2; done
        kill -0 "$pid" 2>/dev/null && { kill -KILL "$pid"; fail "frames ignored SIG$sig"; }
        wait "$pid" && fail "frames exited 0 after SIG$sig"
        [ "$(cat old.out)" = old ] || fail "SIG$sig: the existing output changed"
    done
    set +m
    [ -z "$(find . -name '.*' -type f)" ] || fail "temporary files left: $(find . -name '.*' -type f)"
}

case_request_decode() {
    local ex
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 request "$EX/$ex.json" && cp out.txt req.json
        has req.json '"name": "Generator_3.SetStreamBlock"'
        has req.json '"kind": "request"'
        run 0 request "$EX/$ex.json" --json && { cmp -s out.txt req.json || fail "$ex: --json differs from default"; }
        run 0 request "$EX/$ex.json" -o req.bin && has err.txt "Generator_3.SetStreamBlock"
        run 0 decode req.bin && cp out.txt dec.json
        has dec.json '"name": "Generator_3.SetStreamBlock"'
        has dec.json "blocks"
        has dec.json "returnIndex"
    done
    has dec.json "tableModifiers"
    # One shape: request --json prints what decode prints, and that document is a block file
    # again that encodes to the same bytes.
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 request "$EX/$ex.json" -o req.bin && run 0 decode req.bin && cp out.txt dec.json
        run 0 request "$EX/$ex.json" --json && { cmp -s out.txt dec.json || fail "$ex: request --json differs from decode"; }
        has dec.json '"members": {'
        run 0 request dec.json -o again.bin && { cmp -s req.bin again.bin || fail "$ex: the decoded request encodes to other bytes"; }
        run 0 validate dec.json && has out.txt "valid:"
    done
    run 2 request "$EX/ipv4-udp.json" --json -o x.bin
    # Malformed wire bytes: the runtime's message, status 2.
    printf 'XX' >bad.bin
    run 2 decode bad.bin && has err.txt "decode error at byte"
    head -c 20 req.bin >short.bin
    run 2 decode short.bin && has err.txt "decode error at byte"
    run 2 decode no-such-file.bin
}

case_describe() {
    run 0 describe && has out.txt "SetStreamBlock"
    has out.txt "GetStreamBlockRange"
    [ "$(wc -l <out.txt)" -gt 50 ] || fail "describe lists $(wc -l <out.txt) methods"
    run 0 describe SetStreamBlock
    has out.txt "Generator_3.SetStreamBlock (request)"
    has out.txt "  blocks: array"
    has out.txt "  returnIndex: bool"
    # Every member of the records, nested, with enum names.
    has out.txt "  blocks: array of struct"
    has out.txt "        lengthCfg: struct"
    has out.txt "          mode: enum (MIN, FIXED, INCR, DECR, IMIX, RANDOM, AUTO, MAX)"
    has out.txt "      initialValue: hex bytes (1 to 16)"
    run 0 describe GetStreamBlockRange && has out.txt "  startBlockID: uint32"
    run 2 describe NoSuchMethod && has err.txt "NoSuchMethod"
}

# Bad input: one table row per mistake: the JSON document, then the start of the one-line
# message (the JSON path first).
BAD_INPUT=(
    '{"rangeModifiers": [{"modIndex": 1}, {"stepValue": "zz"}]}|rangeModifiers[1].stepValue: expected hex bytes'
    '{"rangeModifiers": [{"initialValue": "123"}]}|rangeModifiers[0].initialValue: expected hex bytes'
    '{"rangeModifiers": [{"mask": 17}]}|rangeModifiers[0].mask: expected hex bytes'
    '{"rangeModifiers": [{"initialValue": "000102030405060708090a0b0c0d0e0f10"}]}|rangeModifiers[0].initialValue: expected at most 16 bytes'
    '{"rangeModifiers": [{"mode": "UPWARDS"}]}|rangeModifiers[0].mode: expected one of INCREMENT, DECREMENT, RANDOM, SHUFFLE'
    '{"rangeModifiers": [{"offset": 70000}]}|rangeModifiers[0].offset: out of range for uint16'
    '{"rangeModifiers": [{"useStream": "yes"}]}|rangeModifiers[0].useStream: expected true or false'
    '{"rangeModifiers": [{"recycleCount": 1.5}]}|rangeModifiers[0].recycleCount: expected an integer'
    '{"rangeModifiers": [{"colour": 1}]}|rangeModifiers[0].colour: unknown key'
    '{"rangeModifiers": {"modIndex": 1}}|rangeModifiers: expected an array'
    '{"blockID": -1}|blockID: out of range for uint32'
    '{"blockID": 4294967296}|blockID: out of range for uint32'
    '{"schedulerGroup": 256}|schedulerGroup: out of range for uint8'
    '{"name": 5}|name: expected a string'
    '{"bogus": true}|bogus: unknown key'
    '{"tableModifiers": [{"data": ["01", 2]}]}|tableModifiers[0].data[1]: expected hex bytes'
    '{"modLinks": [{"childModIndex": [1, -2]}]}|modLinks[0].childModIndex[1]: out of range for uint32'
    '{"baseStream": {"frame": {"data": "00 1g"}}}|baseStream.frame.data: expected hex bytes'
    '{"baseStream": {"enabled": 1}}|baseStream.enabled: expected true or false'
    '{"host": {"frames": "many"}}|host.frames: expected an integer'
    '{"host": {"speed": 1}}|host.speed: unknown key'
    '{"rangeModifiers": [{"modIndex": 1, "initialValue": "01", "stepValue": "01", "mask": "ff"}], "host": {"modifiers": [{"modIndex": 2, "field": "ipv4.src"}]}}|host.modifiers[0].modIndex: no modifier'
    '{"rangeModifiers": [{"modIndex": 1, "initialValue": "01", "stepValue": "01", "mask": "ff"}], "host": {"modifiers": [{"modIndex": 1, "field": "ipv4.src"}]}}|host.modifiers[0].field: field ipv4.src does not resolve'
    '[1, 2]|(top level): expected an object'
    '{"name": |(document): invalid JSON at line 2, column 1'
    '{"name": "a", "blockID": 1, "name": "b"}|name: duplicate key'
    '{"rangeModifiers": [{"modIndex": 1, "mask": "ff", "modIndex": 2}]}|rangeModifiers[0].modIndex: duplicate key'
    '{"blockID": 18446744073709551616}|blockID: out of range for uint32'
    '{"blockID": 1.5}|blockID: expected an integer, got a fraction'
)

# Blocks that only placing the fields or stamping refuses; validate refuses them as frames
# does: the document's body, then the start of the message.
FRAME_ONLY=(
    '"rangeModifiers": [{"modIndex": 1, "offset": 100, RANGE}]|rangeModifiers[0]: modifier (modIndex 1): its 2-byte value at offset 100 ends at byte 102, past the end of the 18-byte frame'
    '"rangeModifiers": [{"modIndex": 1, "offset": 5, "offsetReference": "eth.src", RANGE}]|rangeModifiers[0].offset: offset 5 puts the 2-byte value beyond its field eth.src, which has 48 bits'
    '"rangeModifiers": [{"modIndex": 1, "offset": 1, RANGE}], "host": {"modifiers": [{"modIndex": 1, "bitOffset": 0, "bitLength": 16}]}|rangeModifiers[0].offset: offset 1 puts the 2-byte value beyond its field bits 0..15, which has 16 bits'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "ipv6.src", RANGE}]|rangeModifiers[0].offsetReference: field ipv6.src does not resolve: the frame template ends inside the IPv4 header'
    '"rangeModifiers": [{"modIndex": 1, RANGE}], "baseStream": {"frame": {"data": ""}}|baseStream.frame.data: the frame template is empty'
    '"rangeModifiers": [{"modIndex": 1, RANGE}], "baseStream": {"frame": {"data": "LONG"}}|baseStream.frame.data: the frame template has 262145 bytes; pcap readers accept at most 262144'
)
# Valid blocks with a warning of validate (standard error): the body, then the warning.
WARNINGS=(
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "eth.src", RANGE}, {"modIndex": 2, "offsetReference": "eth.src", RANGE}]|rangeModifiers[0]: writes the same bits as rangeModifiers[1] (frame bytes 6..7)'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "somewhere", RANGE}]|rangeModifiers[0]: no field given'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "eth.src", "initialValue": "0f", "stepValue": "01", "mask": "f0", "recycleCount": 16, "useStream": true}]|rangeModifiers[0]: stepping carries into bits outside the mask (see initialValue and mask): frame 1 gets 10, where values --at shows 00'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "eth.src", "initialValue": "0000", "stepValue": "0001", "mask": "ffff", "mode": "RANDOM", "useStream": true}]|rangeModifiers[0]: RANDOM with a seed (initialValue) of 0: the register stays 0'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "eth.src", "initialValue": "f001", "stepValue": "0001", "mask": "0fff", "mode": "RANDOM", "useStream": true}]|rangeModifiers[0]: the RANDOM seed (initialValue) has bits outside the mask'
    '"tableModifiers": [{"modIndex": 1, "offsetReference": "eth.src", "data": ["0f", "1f"], "useStream": true}], "host": {"modifiers": [{"modIndex": 1, "bitOffset": 4, "bitLength": 4}]}|tableModifiers[0].data[1]: 1f has more significant bits than the 4 bits'
    '"rangeModifiers": [{"modIndex": 1, "offsetReference": "eth.src", "initialValue": "01", "stepValue": "01", "mask": "ff", "recycleCount": 16, "stutterCount": 4294967295, "useStream": true}]|rangeModifiers[0]: its cycle of 68719476736 frames ((stutterCount + 1) x recycleCount) does not fit the engine'"'"'s 32-bit frame counts, so it restarts after 4294967296 frames'
)

case_bad_input() {
    local row doc want cmd i=0
    for row in "${BAD_INPUT[@]}"; do
        doc=${row%%|*}
        want=${row#*|}
        i=$((i + 1))
        printf '%s\n' "$doc" >"bad$i.json"
        for cmd in validate values request "frames -o bad$i.pcap"; do
            # shellcheck disable=SC2086
            run 2 $cmd "bad$i.json" || continue
            [ "$(wc -l <err.txt)" -eq 1 ] || fail "row $i ($cmd): message is not one line: $(cat err.txt)"
            has err.txt "bad$i.json: $want"
        done
    done
    # A field that does not resolve in the template of a real example.
    sed 's/"field": "ipv4.src"/"field": "ipv6.dst"/' "$EX/ipv4-udp.json" >wrongfield.json
    run 2 validate wrongfield.json && has err.txt "host.modifiers[0].field: field ipv6.dst does not resolve"
    sed 's/"field": "ipv4.src"/"field": "ipv4.source"/' "$EX/ipv4-udp.json" >unknownfield.json
    run 2 validate unknownfield.json && has err.txt "host.modifiers[0].field: field ipv4.source does not resolve: unknown field name"
    run 2 validate no-such-file.json && has err.txt "no-such-file.json: No such file or directory"
    run 2 validate /dev/zero && has err.txt "/dev/zero: (document): larger than the limit of 64 MiB"
    # Placement and stamping problems: validate and frames agree.
    local range='"initialValue": "0102", "stepValue": "0001", "mask": "ffff", "useStream": true'
    local frame='"baseStream": {"frame": {"data": "000000000000000000000000080045000000"}}'
    local long body
    long=$(head -c 262145 /dev/zero | od -An -v -tx1 | tr -d ' \n')
    for row in "${FRAME_ONLY[@]}"; do
        body=${row%%|*}
        want=${row#*|}
        body=${body//RANGE/$range}
        body=${body//LONG/$long}
        case $body in *baseStream*) printf '{%s}\n' "$body" ;; *) printf '{%s, %s}\n' "$frame" "$body" ;; esac >place.json
        for cmd in validate "frames -o place.pcap"; do
            # shellcheck disable=SC2086
            run 2 $cmd place.json && has err.txt "place.json: $want"
            [ "$(wc -l <err.txt)" -eq 1 ] || fail "$cmd: message is not one line: $(cat err.txt)"
        done
    done
    for row in "${WARNINGS[@]}"; do
        body=${row%%|*}
        want=${row#*|}
        printf '{%s, %s}\n' "$frame" "${body//RANGE/$range}" >warn.json
        run 0 validate warn.json && has err.txt "warn.json: warning: $want"
    done
    # Length fields that disagree with the frame: warned about, and the summary of frames
    # names only the checksums it writes.
    sed 's/4500002e/45000030/' "$EX/ipv4-udp.json" >iplen.json
    run 0 validate iplen.json && has err.txt "iplen.json: warning: baseStream.frame.data: the IPv4 total length is 48 but the frame holds 46 bytes from the IPv4 header on"
    sed 's/0400 1389 001a/0400 1389 0020/' "$EX/ipv4-udp.json" >udplen.json
    run 0 validate udplen.json && has err.txt "baseStream.frame.data: the UDP length is 32 but the IP payload holds 26 bytes"
    run 0 frames udplen.json -o udplen.pcap && has err.txt "checksums IPv4 header ->"
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 validate "$EX/$ex.json" && [ ! -s err.txt ] || fail "warnings for $ex: $(cat err.txt)"
    done
}

case_tshark() {
    command -v tshark >/dev/null 2>&1 || { echo "tshark not installed: skipped"; exit 77; }
    run 0 frames "$EX/ipv4-udp.json" -o t.pcap --count 200 --threads 2 || return
    run 0 values "$EX/ipv4-udp.json" --count 200 || return
    # values: index, IPv4 source (hex), UDP source port (hex) -> dotted quad and decimal.
    local i s p
    while read -r i s p; do
        printf '%d.%d.%d.%d\t%d\t5001\n' "0x${s:0:2}" "0x${s:2:2}" "0x${s:4:2}" "0x${s:6:2}" "0x$p"
    done <out.txt >want.tsv
    tshark -n -r t.pcap -T fields -e ip.src -e udp.srcport -e udp.dstport >got.tsv 2>tshark.err ||
        fail "tshark failed: $(head -c 300 tshark.err)"
    [ "$(wc -l <got.tsv)" -eq 200 ] || fail "tshark read $(wc -l <got.tsv) frames"
    cmp -s want.tsv got.tsv || fail "tshark's addresses and ports differ from values: $(diff want.tsv got.tsv | head -5)"
}

# Every frame of every shipped example carries valid checksums; --checksums keep leaves the
# modifiers' bytes (stale IPv4 header checksums in ipv4-udp).
case_checksums() {
    command -v tshark >/dev/null 2>&1 || { echo "tshark not installed: skipped"; exit 77; }
    local ex bad
    # Status 1 is "good" (0 bad, 2 unverified, 4 illegal such as a zero UDP checksum over IPv6).
    bad='ip.checksum.status!=1 || udp.checksum.status!=1 || tcp.checksum.status!=1 || icmp.checksum.status!=1 || icmpv6.checksum.status!=1'
    for ex in "${GOOD_EXAMPLES[@]}"; do
        run 0 frames "$EX/$ex.json" -o "$ex.pcap" --count 3000 --threads 2 || continue
        tshark -n -r "$ex.pcap" -o ip.check_checksum:TRUE -o udp.check_checksum:TRUE -o tcp.check_checksum:TRUE \
            -Y "$bad" >bad.txt 2>tshark.err || fail "tshark failed: $(head -c 300 tshark.err)"
        [ -s bad.txt ] && fail "$ex: frames with bad checksums: $(head -3 bad.txt)"
        [ "$(tshark -n -r "$ex.pcap" -Y 'udp.checksum.status' -o udp.check_checksum:TRUE 2>/dev/null | wc -l)" -eq 3000 ] ||
            fail "$ex: tshark checked fewer than 3000 UDP checksums"
    done
    # Other transports, and a modifier on the IPv4 flags (the checksums then sum whole frames):
    # frame template | host field of the counting modifier | what frames reports.
    local e=001094000002001094000001 a4=c0000201c6336401 a6=20010db800000000000000000000000120010db8000000000000000000000002
    local rows=(
        "${e}0800450000280000400040060000${a4}0400005000000001000000005002200000000000|ipv4.src|IPv4 header, TCP"
        "${e}08004500001c0000000040010000${a4}0800000000010001|ipv4.dst|IPv4 header, ICMPv4"
        "${e}86dd6000000000083a40${a6}8000000000010001|ipv6.src|ICMPv6"
        "${e}86dd6000000000140640${a6}0400005000000001000000005002200000000000|ipv6.dst|TCP"
        "${e}0800450000280000400040060000${a4}0400005000000001000000005002200000000000|\"bitOffset\": 161, \"bitLength\": 1|IPv4 header, TCP"
    ) row frame field what
    for row in "${rows[@]}"; do
        IFS='|' read -r frame field what <<<"$row"
        case $field in *bitOffset*) ;; *) field="\"field\": \"$field\"" ;; esac
        printf '{"baseStream": {"frame": {"data": "%s"}}, "rangeModifiers": [{"modIndex": 1, "initialValue": "01", "stepValue": "01", "mask": "ff", "recycleCount": 200, "useStream": true}], "host": {"modifiers": [{"modIndex": 1, %s}]}}\n' \
            "$frame" "$field" >proto.json
        run 0 frames proto.json -o proto.pcap --count 300 || continue
        has err.txt "checksums $what ->"
        tshark -n -r proto.pcap -o ip.check_checksum:TRUE -o udp.check_checksum:TRUE -o tcp.check_checksum:TRUE \
            -Y "$bad" >bad.txt 2>/dev/null
        [ -s bad.txt ] && fail "$what ($field): frames with bad checksums: $(head -3 bad.txt)"
        [ "$(tshark -n -r proto.pcap -Y "$bad || frame" 2>/dev/null | wc -l)" -eq 300 ] || fail "$what: tshark read $(tshark -n -r proto.pcap 2>/dev/null | wc -l) frames"
    done
    run 0 frames "$EX/ipv4-udp.json" -o keep.pcap --checksums keep && has err.txt "checksums kept"
    [ "$(tshark -n -r keep.pcap -o ip.check_checksum:TRUE -Y 'ip.checksum.status==0' 2>/dev/null | wc -l)" -eq 240 ] ||
        fail "--checksums keep: not the 240 stale IPv4 header checksums of the modifiers' bytes"
}

# 100,000 frames of every example (every length mode and fill): tshark finds no malformed
# frame, no expert error and no bad checksum, and the lengths follow the block.
case_shaped() {
    command -v tshark >/dev/null 2>&1 || { echo "tshark not installed: skipped"; exit 77; }
    local ex bad n heur
    bad='_ws.malformed || _ws.expert.severity >= error || ip.checksum.status==0 || udp.checksum.status==0 || tcp.checksum.status==0'
    # The payloads are fill, not some protocol's messages: no guessing from their bytes (random
    # fill can look like the start of a STUN message, which is then malformed).
    read -ra heur <<<"$(tshark -G heuristic-decodes 2>/dev/null |
        awk '($1 == "udp" || $1 == "tcp") && $3 == "T" { printf " --disable-protocol %s", $2 }')"
    for ex in "${GOOD_EXAMPLES[@]}" "${SHAPED_EXAMPLES[@]}"; do
        run 0 frames "$EX/$ex.json" -o "$ex.pcap" --count 100000 --threads 2 || continue
        tshark -n -r "$ex.pcap" "${heur[@]}" -o ip.check_checksum:TRUE -o udp.check_checksum:TRUE -o tcp.check_checksum:TRUE \
            -T fields -e frame.len -e _ws.malformed -e _ws.expert.severity -e ip.checksum.status \
            -e udp.checksum.status >fields.tsv 2>tshark.err || { fail "$ex: tshark failed: $(tail -c 300 tshark.err)"; continue; }
        n=$(wc -l <fields.tsv)
        [ "$n" -eq 100000 ] || fail "$ex: tshark read $n frames"
        tshark -n -r "$ex.pcap" "${heur[@]}" -o ip.check_checksum:TRUE -o udp.check_checksum:TRUE -o tcp.check_checksum:TRUE \
            -Y "$bad" >bad.txt 2>/dev/null
        [ -s bad.txt ] && fail "$ex: malformed frames or bad checksums: $(head -3 bad.txt)"
        cut -f1 fields.tsv >lengths.txt
        case $ex in
        ipv4-fixed) [ "$(sort -u lengths.txt)" = 512 ] || fail "$ex: lengths other than 512" ;;
        ipv4-incr-fill)
            # 64, 66, ... 1518 and around: frame i has 64 + 2 * (i mod 728).
            awk '{ if ($1 != 64 + 2 * ((NR - 1) % 728)) { print NR - 1, $1; exit 1 } }' lengths.txt ||
                fail "$ex: lengths do not step by 2 from 64 to 1518" ;;
        ipv4-random-prbs)
            sort -n lengths.txt | awk 'NR == 1 && $1 < 64 { exit 1 } END { if ($1 > 1518) exit 1 }' ||
                fail "$ex: lengths outside 64..1518"
            [ "$(sort -u lengths.txt | wc -l)" -gt 1400 ] || fail "$ex: too few distinct lengths for uniform 64..1518" ;;
        ipv6-decr-signature)
            awk '{ if ($1 != 1518 - 8 * ((NR - 1) % 180)) { print NR - 1, $1; exit 1 } }' lengths.txt ||
                fail "$ex: lengths do not step down by 8 from 1518" ;;
        vlan-imix-constant)
            # L3 lengths 46, 576, 1500 and 100..1000 after 18 bytes of Ethernet and tag, weights 7:4:1:2.
            awk '$1 == 64 { a++ } $1 == 594 { b++ } $1 == 1518 { c++ } $1 >= 118 && $1 <= 1018 && $1 != 594 { d++ }
                 END { if (a < 48000 || a > 52000 || b < 27000 || b > 30200 || c < 6500 || c > 7800) exit 1 }' lengths.txt ||
                fail "$ex: IMIX lengths not in the weights 7:4:1:2" ;;
        esac
    done
}

# Capture formats and the frame check sequence, as tshark reads them.
case_formats() {
    command -v tshark >/dev/null 2>&1 || { echo "tshark not installed: skipped"; exit 77; }
    local f
    for f in pcap pcap-ns pcapng; do
        run 0 frames "$EX/ipv4-random-prbs.json" -o "r.$f" --count 50 --format "$f" || continue
        tshark -n -r "r.$f" -T fields -e frame.time_epoch -e frame.len >got.tsv 2>/dev/null
        awk -F'\t' '{ if ($1 + 0 != (NR - 1) / 1000000) { print; exit 1 } }' got.tsv || fail "$f: times are not frame i at i µs"
        [ "$(wc -l <got.tsv)" -eq 50 ] || fail "$f: tshark read $(wc -l <got.tsv) frames"
    done
    cmp -s <(tshark -n -r r.pcap -T fields -e frame.len 2>/dev/null) <(tshark -n -r r.pcapng -T fields -e frame.len 2>/dev/null) ||
        fail "pcap and pcapng frames differ in length"
    python3 - "$EX/ipv4-random-prbs.json" >fcs-bad.json <<'PY'
import json, sys
b = json.load(open(sys.argv[1]))
b["baseStream"]["error"] = {"errorFCS": True}
print(json.dumps(b))
PY
    for f in pcap pcapng; do
        run 0 frames "$EX/ipv4-random-prbs.json" -o "good.$f" --count 40 --format "$f" --fcs || continue
        run 0 frames fcs-bad.json -o "bad.$f" --count 40 --format "$f" --fcs || continue
        [ "$(tshark -n -r "good.$f" -o eth.check_fcs:TRUE -Y 'eth.fcs.status == "Good"' 2>/dev/null | wc -l)" -eq 40 ] ||
            fail "$f --fcs: not 40 good frame check sequences"
        [ "$(tshark -n -r "bad.$f" -o eth.check_fcs:TRUE -Y 'eth.fcs.status == "Bad"' 2>/dev/null | wc -l)" -eq 40 ] ||
            fail "$f --fcs with errorFCS: not 40 bad frame check sequences"
    done
    run 0 frames fcs-bad.json -o nofcs.pcap --count 4 && has err.txt "errorFCS: this output carries no frame check sequence"
}

# A port of two blocks: the IPv4 block every 672 ns (10% of 10 Gbit/s, 60-byte frames), the
# IPv6 block in bursts from 10 µs; the same capture for any thread count and in both formats.
case_port() {
    command -v tshark >/dev/null 2>&1 || { echo "tshark not installed: skipped"; exit 77; }
    run 0 port "$EX/ports/two-blocks.json" -o p1.pcap --threads 1 || return
    has err.txt "100000 frames of 2 block(s)"
    run 0 port "$EX/ports/two-blocks.json" -o p3.pcap --threads 3 || return
    cmp -s p1.pcap p3.pcap || fail "port: the capture differs between 1 and 3 threads"
    run 0 port "$EX/ports/two-blocks.json" -o p.pcapng --format pcapng --count 3000 || return
    cmp -s <(tshark -n -r p.pcapng -T fields -e frame.time_epoch -e frame.len 2>/dev/null) \
        <(tshark -n -r p1.pcap -c 3000 -T fields -e frame.time_epoch -e frame.len 2>/dev/null) ||
        fail "port: pcapng and pcap-ns frames differ"
    # pcapng names each frame's block in its comment.
    tshark -n -r p.pcapng -T fields -e frame.comment -e eth.type 2>/dev/null | sort | uniq -c | awk '{ print $2, $3, $4, $5 }' >names.txt
    [ "$(cat names.txt)" = "block 1 ipv4-flows 0x0800
block 2 ipv6-bursts 0x86dd" ] || fail "port: pcapng block names: $(cat names.txt)"
    # Nanoseconds of the IPv4 block's frames: 0, 672, 1344, ...
    tshark -n -r p1.pcap -Y ip -T fields -e frame.time_epoch 2>/dev/null | tr -d . |
        awk '{ if ($1 + 0 != (NR - 1) * 672) { print NR - 1, $1; exit 1 } }' ||
        fail "port: the IPv4 block's frames are not 672 ns apart"
    # The IPv6 block: bursts of 8 from 10 µs.
    tshark -n -r p1.pcap -Y ipv6 -T fields -e frame.time_epoch 2>/dev/null | tr -d . | head -9 >v6.txt
    [ "$(head -1 v6.txt | awk '{ print $1 + 0 }')" = 10000 ] || fail "port: the IPv6 block does not start at 10 µs"
    [ "$(wc -l <v6.txt)" -eq 9 ] || fail "port: fewer than 9 IPv6 frames"
    # Mean frame 799 bytes, 823 on the wire: 658.4 ns apart at the line rate inside a burst,
    # a burst of 8 every 8 * 13168 ns at 500 Mbit/s.
    [ "$(awk 'NR == 2 || NR == 9 { printf "%d ", $1 }' v6.txt)" = "10658 115344 " ] ||
        fail "port: IPv6 bursts not at 10658 and 115344 ns: $(tr '\n' ' ' <v6.txt)"
    printf '{"blocks": [%s], "common": {"rate": {"fixed": {"rateUnit": "FRAMES_PER_SECOND", "rate": 1000000}}}}\n' \
        "$(sed -n '/"blocks"/,/^    },$/p' "$EX/ports/two-blocks.json" | sed '1d;$d')}" >forever.json
    run 2 port forever.json -o f.pcap && has err.txt "the port sends for ever"
    run 0 port forever.json -o f.pcap --duration 0.5 && has err.txt "500 frames of 1 block(s)"
    # The same port as the requests a host sends: the same capture.
    run 0 requests "$EX/ports/two-blocks.json" -o port.req || return
    run 0 port --requests port.req -o r.pcap || return
    cmp -s r.pcap p1.pcap || fail "port --requests: not the capture of the port file"
    head -c 100 port.req >cut.req
    run 2 port --requests cut.req -o c.pcap && has err.txt "requests[0]: a length of"
    printf '\005\000\000\000TMxyz' >bad.req
    run 2 port --requests bad.req -o c.pcap && has err.txt "requests[0]: decode error"
    run 2 port "$EX/ports/two-blocks.json" --requests port.req -o c.pcap
}

case_analyze() {
    # A port's capture: every stream complete, on time; as a table, as JSON, from standard input.
    "$SG" port "$EX/ports/two-blocks.json" --count 20000 -o p.pcapng --format pcapng 2>/dev/null || fail "port failed"
    run 0 analyze p.pcapng && has err.txt "20000 frames, " && has err.txt "0 without a signature"
    has out.txt "lost"
    run 0 analyze - --json <p.pcapng || return
    python3 - out.txt <<'PY' || fail "analyze --json: $(head -c 300 out.txt)"
import json, sys
d = json.load(open(sys.argv[1]))
assert d["frames"] == 20000 and d["unsigned"] == 0, d
assert sum(s["frames"] for s in d["streams"]) == 20000
assert all(s["lost"] == s["duplicates"] == s["out_of_order"] == 0 for s in d["streams"])
assert all(s["latency_max_ns"] == 0 for s in d["streams"])
assert {s["block"] for s in d["streams"]} == {1, 2}
PY
    # Frames without signatures are counted as such.
    "$SG" frames "$EX/ipv4-udp.json" --count 10 -o plain.pcap 2>/dev/null
    run 0 analyze plain.pcap && has err.txt "10 frames, 0 stream(s), 10 without a signature"
    printf 'this is not a capture file, not at all' >bad.cap
    run 2 analyze bad.cap && has err.txt "capture: neither pcap nor pcapng"
    run 2 analyze nosuch.pcap && has err.txt "nosuch.pcap"
}

finish_case
