"""The Python module vrm through its public interface, checked against streamgen.

Run by ctest with PYTHONPATH at the built module, VRM_STREAMGEN the streamgen binary and
VRM_EXAMPLES the shipped example blocks.
"""

import contextlib
import errno
import glob
import importlib.util
import io
import json
import os
import pathlib
import re
import struct
import subprocess
import sys
import tempfile
import textwrap
import threading
import unittest

import vrm

ROOT = pathlib.Path(__file__).resolve().parents[2]
STREAMGEN = os.environ.get("VRM_STREAMGEN", "streamgen")
EXAMPLES = os.environ.get("VRM_EXAMPLES", str(ROOT / "examples"))
INVALID = os.path.join(EXAMPLES, "invalid.json")
VALID = sorted(p for p in glob.glob(os.path.join(EXAMPLES, "*.json")) if p != INVALID)
IPV4 = os.path.join(EXAMPLES, "ipv4-udp.json")
PORT = os.path.join(EXAMPLES, "ports", "two-blocks.json")


def streamgen(*args, check=True):
    return subprocess.run([STREAMGEN, *args], check=check, capture_output=True, text=True)


def pcap_records(data):
    """The frames of a pcap file's bytes (native byte order, as libpcap writes)."""
    frames, pos = [], 24
    while pos < len(data):
        _, _, length, _ = struct.unpack_from("=IIII", data, pos)
        frames.append(data[pos + 16:pos + 16 + length])
        pos += 16 + length
    return frames


class Blocks(unittest.TestCase):
    def setUp(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.addCleanup(self.tmp.cleanup)

    def test_values_equal_streamgen_values_at(self):
        for path in VALID:
            block = vrm.Block.from_json(path)
            for start, count in ((0, 300), (4294967290, 6)):
                with self.subTest(example=os.path.basename(path), start=start):
                    out = streamgen("values", path, "--at", "--raw", "--start", str(start), "--count", str(count)).stdout
                    expected = [line.split() for line in out.splitlines()]
                    got = [[str(i)] + [v.hex() for v in block.values(i).values()]
                           for i in range(start, start + count)]
                    self.assertEqual(got, expected)

    def test_stamped_frames_equal_streamgen_frames(self):
        count = 300
        modes = [("checksums recomputed", True, []), ("checksums kept", False, ["--checksums", "keep"])]
        for path in VALID:
            block = vrm.Block.from_json(path)
            plan = block.plan()
            with open(path) as f:
                frame_settings = json.load(f)["baseStream"]["frame"]
            # Blocks that only modify their template: every frame has its length and the frames
            # repeat with the modifiers.
            plain = "lengthCfg" not in frame_settings and "options" not in frame_settings
            if plain:
                self.assertEqual(plan.frame_length, len(block.frame_template))
            for mode, checksums, args in modes:
                with self.subTest(example=os.path.basename(path), mode=mode):
                    pcap = os.path.join(self.tmp.name, "streamgen.pcap")
                    streamgen("frames", path, "-o", pcap, "--count", str(count), *args)
                    with open(pcap, "rb") as f:
                        written = f.read()
                    frames = pcap_records(written)
                    slot = plan.frame_length

                    def slots(fs):
                        return b"".join(f + bytes(slot - len(f)) for f in fs)

                    self.assertEqual([plan.length(i) for i in range(count)], [len(f) for f in frames])
                    self.assertTrue(plan.min_length <= min(map(len, frames)) <= max(map(len, frames)) <= plan.max_length)
                    self.assertEqual(plan.frames(0, count, checksums=checksums), frames)
                    self.assertEqual(bytes(plan.stamp(0, count, checksums=checksums)), slots(frames))
                    self.assertEqual(bytes(plan.stamp(120, 50, None, checksums)), slots(frames[120:170]))
                    out = bytearray(50 * plan.frame_length)
                    plan.stamp(7, 50, out, checksums=checksums)
                    self.assertEqual(bytes(out), slots(frames[7:57]))
                    self.assertEqual([plan.frame(i, checksums=checksums) for i in (0, 1, 299)],
                                     [frames[0], frames[1], frames[299]])
                    if checksums:  # the default
                        self.assertEqual(plan.frame(299), frames[299])
                        self.assertEqual(bytes(plan.stamp(3, 2)), slots(frames[3:5]))
                    if plan.cycle_length and plain:
                        self.assertEqual(plan.frame(plan.cycle_length + 7, checksums=checksums), frames[7])
                    ours = os.path.join(self.tmp.name, "vrm.pcap")
                    for threads in (1, 3):
                        summary = block.write_pcap(ours, count, threads=threads, checksums=checksums)
                        self.assertEqual(summary["frames"], count)
                        with open(ours, "rb") as f:
                            self.assertEqual(f.read(), written)

    def test_checksums_agree_with_scapy(self):
        try:
            from scapy.layers import inet, inet6  # noqa: F401 (binds IPv4 and IPv6 to Ethernet)
            from scapy.layers.l2 import Ether
        except ImportError:
            self.skipTest("scapy is not installed")
        for path in VALID:
            plan = vrm.Block.from_json(path).plan()
            for i in (0, 1, 2, 3, 17, 1000, 2 ** 32 - 1):
                with self.subTest(example=os.path.basename(path), frame=i):
                    frame = plan.frame(i)
                    pkt = Ether(frame)
                    cleared = []
                    for layer in pkt.layers():
                        for name in ("chksum", "cksum"):
                            if name in pkt[layer].fields:
                                setattr(pkt[layer], name, None)  # Scapy computes what is None
                                cleared.append(layer.__name__)
                    self.assertTrue(cleared)
                    self.assertEqual(bytes(pkt), frame, "checksums of %s" % ", ".join(cleared))

    def test_stamp_into_caller_buffers(self):
        plan = vrm.Block.from_json(IPV4).plan()
        expected = bytes(plan.stamp(10, 4))
        buffers = [("bytearray", bytearray(len(expected))),
                   ("memoryview", memoryview(bytearray(len(expected) + 5)))]
        try:
            import numpy
            buffers.append(("numpy", numpy.zeros(len(expected), dtype=numpy.uint8)))
        except ImportError:
            pass
        for name, out in buffers:
            with self.subTest(buffer=name):
                self.assertIs(plan.stamp(10, 4, out), out)
                self.assertEqual(bytes(out)[:len(expected)], expected)

    def test_validation_lines_equal_streamgen_validate(self):
        for path in VALID + [INVALID]:
            with self.subTest(example=os.path.basename(path)):
                block = vrm.Block.from_json(path)
                lines = streamgen("validate", path, check=False).stdout.splitlines()
                expected = [line for line in lines if not line.startswith("valid: ")]
                self.assertEqual(block.validate(), expected)
                self.assertEqual(block.valid, path != INVALID)
        self.assertTrue(vrm.Block.from_json(INVALID).validate())

    def test_sources_and_description(self):
        with open(IPV4) as f:
            text = f.read()
        doc = json.loads(text)
        doc["baseStream"]["frame"]["data"] = bytes.fromhex(doc["baseStream"]["frame"]["data"].replace(" ", ""))
        doc["rangeModifiers"][0]["initialValue"] = b"\xc0\x00\x02\x01"
        blocks = [vrm.Block.from_json(IPV4), vrm.Block.from_json(pathlib.Path(IPV4)),
                  vrm.Block.from_json(text), vrm.Block.from_dict(doc)]
        for block in blocks[1:]:
            self.assertEqual(block.to_dict(), blocks[0].to_dict())
            self.assertEqual(block.values(77), blocks[0].values(77))
        block = blocks[0]
        self.assertEqual(block.frames, 256)
        self.assertEqual(block.to_dict()["rangeModifiers"][1]["mode"], "RANDOM")
        self.assertEqual(block.modifiers, [
            {"modIndex": 1, "mode": "INCREMENT", "width": 4, "field": "ipv4.src", "bitOffset": 208, "bitLength": 32,
             "offset": 0},
            {"modIndex": 2, "mode": "RANDOM", "width": 2, "field": "udp.sport", "bitOffset": 272, "bitLength": 16,
             "offset": 0},
        ])


class Ports(unittest.TestCase):
    def setUp(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.addCleanup(self.tmp.cleanup)

    def test_schedule_and_captures_equal_streamgen_port(self):
        port = vrm.Port.from_json(PORT)
        self.assertEqual(port.frames, 100000)
        self.assertEqual(port.blocks, ["ipv4-flows", "ipv6-bursts"])
        for fmt in ("pcap-ns", "pcapng"):
            with self.subTest(format=fmt):
                ours = os.path.join(self.tmp.name, "ours." + fmt)
                theirs = os.path.join(self.tmp.name, "theirs." + fmt)
                self.assertEqual(port.write_pcap(ours, format=fmt, threads=2)["frames"], 100000)
                streamgen("port", PORT, "-o", theirs, "--format", fmt)
                with open(ours, "rb") as a, open(theirs, "rb") as b:
                    self.assertEqual(a.read(), b.read())
        # The schedule's times are the pcap's stamps (nanosecond pcap, native byte order).
        with open(os.path.join(self.tmp.name, "ours.pcap-ns"), "rb") as f:
            data = f.read()
        stamps, pos = [], 24
        while pos < len(data) and len(stamps) < 3000:
            sec, ns, length, _ = struct.unpack_from("=IIII", data, pos)
            stamps.append(sec * 10**9 + ns)
            pos += 16 + length
        self.assertEqual(list(port.schedule(0, 3000)["time"]), stamps)
        # Any start, without walking there: a run equals the same slice of a longer one.
        whole = port.schedule(0, 5000)
        part = port.schedule(1234, 100)
        for key in ("time", "block", "index"):
            self.assertEqual(list(part[key]), list(whole[key])[1234:1334])

    def test_from_the_requests_a_host_sends(self):
        req = os.path.join(self.tmp.name, "port.req")
        streamgen("requests", PORT, "-o", req)
        with open(req, "rb") as f:
            data = f.read()
        port = vrm.Port.from_requests(data, count=3000)
        ours = os.path.join(self.tmp.name, "r.pcap")
        theirs = os.path.join(self.tmp.name, "f.pcap")
        port.write_pcap(ours)
        streamgen("port", PORT, "-o", theirs, "--count", "3000")
        with open(ours, "rb") as a, open(theirs, "rb") as b:
            self.assertEqual(a.read(), b.read())
        for bad, text in ((data[:100], "goes past the end"), (data[:2], "a length needs 4 bytes"),
                          (struct.pack("<I", len(vrm.request("Generator_3", "GetStreamCount"))) +
                           vrm.request("Generator_3", "GetStreamCount"), "does not configure a port")):
            with self.subTest(text=text), self.assertRaisesRegex(ValueError, text):
                vrm.Port.from_requests(bad)

    def test_sources_limits_and_refusals(self):
        with open(PORT) as f:
            doc = json.load(f)
        for source in (PORT, pathlib.Path(PORT), json.dumps(doc), json.dumps(doc).encode()):
            with self.subTest(source=type(source).__name__):
                self.assertEqual(vrm.Port.from_json(source, count=10).frames, 10)
        self.assertEqual(vrm.Port.from_dict(doc, duration=0.001).frames, len(
            [t for t in vrm.Port.from_dict(doc).schedule(0, 20000)["time"] if t < 10**6]))
        forever = dict(doc, common={"mode": "CONTINUOUS"})
        self.assertIsNone(vrm.Port.from_dict(forever).frames)
        with self.assertRaisesRegex(ValueError, "sends for ever"):
            vrm.Port.from_dict(forever).write_pcap(os.path.join(self.tmp.name, "x.pcap"))
        bad = dict(doc, bindings=[{"streamBlockId": 9, "loadProfileId": 10}])
        with self.assertRaisesRegex(ValueError, r"bindings\[0\]\.streamBlockId: no block has blockID 9"):
            vrm.Port.from_dict(bad)
        with self.assertRaises(FileNotFoundError):
            vrm.Port.from_json(os.path.join(self.tmp.name, "missing.json"))
        with self.assertRaises(FileNotFoundError):
            vrm.Port.from_json(PORT, count=5).write_pcap(os.path.join(self.tmp.name, "no", "x.pcap"))


class Analyze(unittest.TestCase):
    def test_a_ports_capture_and_crafted_frames(self):
        port = vrm.Port.from_json(PORT)
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "p.pcapng")
            port.write_pcapng(path)
            streams = vrm.analyze(pathlib.Path(path))
        self.assertEqual(sum(s["frames"] for s in streams), port.frames)
        self.assertEqual({s["block"] for s in streams}, {1, 2})
        self.assertTrue(all(s["lost"] == 0 and s["latency_max_ns"] == 0 for s in streams))
        # Frames as pairs: the capture's own, the second stream's frame 1 dropped, one delayed.
        frames = []
        with tempfile.TemporaryDirectory() as d:
            path = os.path.join(d, "p.pcap")
            port.write_pcap(path, format="pcap-ns")
            data = open(path, "rb").read()
        at = 24
        while at < len(data) and len(frames) < 3000:
            sec, nsec, n = struct.unpack_from("<III", data, at)
            frames.append((data[at + 16:at + 16 + n], sec * 10**9 + nsec))
            at += 16 + n
        first = vrm.analyze(frames)[0]
        key = (first["block"], first["stream"])
        ours = [k for k, (f, t) in enumerate(frames) if vrm.analyze([(f, t)])[0]["stream"] == key[1]
                and vrm.analyze([(f, t)])[0]["block"] == key[0]]
        changed = list(frames)
        changed[ours[3]] = (changed[ours[3]][0], changed[ours[3]][1] + 5000)
        del changed[ours[1]]
        s = [r for r in vrm.analyze(changed) if (r["block"], r["stream"]) == key][0]
        self.assertEqual((s["lost"], s["duplicates"], s["out_of_order"]), (1, 0, 0))
        self.assertEqual(s["latency_max_ns"], 5000)
        with self.assertRaises(TypeError):
            vrm.analyze([b"abc"])
        with self.assertRaises(OSError):
            vrm.analyze("/nonexistent/capture.pcap")


class Send(unittest.TestCase):
    """Block.send and Port.send on a veth pair between two namespaces the test makes (root)."""

    def setUp(self):
        self.a, self.b = "vrmpyA%d" % os.getpid(), "vrmpyB%d" % os.getpid()
        if subprocess.run(["ip", "netns", "add", self.a], capture_output=True).returncode != 0:
            self.skipTest("network namespaces cannot be made here (needs root)")
        self.addCleanup(subprocess.run, ["ip", "netns", "del", self.a], capture_output=True)
        subprocess.run(["ip", "netns", "add", self.b], check=True)
        self.addCleanup(subprocess.run, ["ip", "netns", "del", self.b], capture_output=True)
        for cmd in (["ip", "link", "add", "vp0", "netns", self.a, "type", "veth", "peer", "name", "vp1", "netns", self.b],
                    ["ip", "-n", self.a, "addr", "add", "192.0.2.1/24", "dev", "vp0"],
                    ["ip", "-n", self.b, "addr", "add", "192.0.2.2/24", "dev", "vp1"],
                    ["ip", "netns", "exec", self.a, "sysctl", "-qw", "net.ipv6.conf.all.disable_ipv6=1"],
                    ["ip", "netns", "exec", self.b, "sysctl", "-qw", "net.ipv6.conf.all.disable_ipv6=1"],
                    ["ip", "-n", self.a, "link", "set", "vp0", "up"],
                    ["ip", "-n", self.b, "link", "set", "vp1", "up"]):
            subprocess.run(cmd, check=True)

    def rx(self):
        return int(subprocess.run(["ip", "netns", "exec", self.b, "cat", "/sys/class/net/vp1/statistics/rx_packets"],
                                  capture_output=True, text=True, check=True).stdout)

    def in_a(self, code):
        env = dict(os.environ, PYTHONPATH=os.pathsep.join(sys.path))
        r = subprocess.run(["ip", "netns", "exec", self.a, sys.executable, "-c", code], capture_output=True,
                           text=True, env=env, timeout=60)
        return r.returncode, r.stdout, r.stderr

    def test_counts_are_what_arrives(self):
        # (source, call, frames): a block as fast as it goes, a port at a rate.
        rows = [("vrm.Block.from_json(%r)" % IPV4, "send('vp0', count=3001, tx='packet')", 3001),
                ("vrm.Block.from_json(%r)" % IPV4, "send('vp0', count=2002, rate=100000)", 2002),
                ("vrm.Port.from_json(%r)" % PORT, "send('vp0', count=1003, rate='max')", 1003)]
        for source, call, frames in rows:
            with self.subTest(call=call):
                before = self.rx()
                code, out, err = self.in_a("import json, vrm; print(json.dumps(%s.%s))" % (source, call))
                self.assertEqual(code, 0, err)
                counts = json.loads(out)
                self.assertEqual(counts["frames"], frames)
                self.assertEqual(self.rx() - before, frames)
                after, start = counts["interface_tx_packets"][1], counts["interface_tx_packets"][0]
                self.assertEqual(after - start, frames)

    def test_errors(self):
        rows = [("send('nosuch0', count=1)", "OSError", "no interface named nosuch0"),
                ("send('vp0', rate=-1)", "ValueError", "rate: expected"),
                ("send('vp0', tx='carrier-pigeon')", "ValueError", "tx: expected")]
        for call, kind, text in rows:
            with self.subTest(call=call):
                code, out, err = self.in_a(
                    "import vrm\ntry:\n    vrm.Block.from_json(%r).%s\nexcept Exception as e:\n    print(type(e).__name__, e)" % (IPV4, call))
                self.assertEqual(code, 0, err)
                self.assertIn(kind, out.split()[0] if out else "")
                self.assertIn(text, out)


class Messages(unittest.TestCase):
    def test_set_stream_block_equals_the_request_built_in_cpp(self):
        with tempfile.TemporaryDirectory() as tmp:
            for path in VALID:
                with self.subTest(example=os.path.basename(path)):
                    wire = os.path.join(tmp, "request.bin")
                    streamgen("request", path, "-o", wire)
                    with open(wire, "rb") as f:
                        cpp = vrm.decode(f.read())
                    block = vrm.Block.from_json(path)
                    ours = vrm.request("Generator_3", "SetStreamBlock", blocks=[block.to_dict()], returnIndex=False)
                    self.assertEqual(vrm.decode(ours), cpp)
                    self.assertEqual(cpp["name"], "Generator_3.SetStreamBlock")

    def test_every_method_builds_a_request_with_defaults(self):
        self.assertEqual(vrm.modules(), ["Generator_3", "LoadProfile_1", "Stats_1", "ifSetup_1"])
        for module in vrm.modules():
            for method in vrm.methods(module):
                with self.subTest(module=module, method=method):
                    decoded = vrm.decode(vrm.request(module, method))
                    self.assertEqual(decoded["kind"], "request")
                    self.assertEqual(list(decoded["members"]), vrm.members(module, method)["request"])

    def test_responses_parse_back(self):
        cases = [
            ("Generator_3", "GetRunState", {"isRunning": True}),
            ("Generator_3", "SetStreamBlock", {"indexes": [{"blockId": 4, "streamIndexes": [1, 2, 3]}]}),
            ("Generator_3", "Commit", {"warningLog": [], "expectedBankSwitchDuration": 250}),
            ("Generator_3", "GetRateEnabledRows_StreamStatsTable", {"rows": [7, 8]}),
            ("Stats_1", "DoSQL", None),
            ("LoadProfile_1", "GetLoadProfile", None),
            ("ifSetup_1", "GetInterfaceLibParams", None),
        ]
        for module, method, members in cases:
            with self.subTest(module=module, method=method):
                if members is None:  # the defaults of every member
                    members = vrm.parse_response(module, method, vrm.response(module, method))
                parsed = vrm.parse_response(module, method, vrm.response(module, method, **members))
                self.assertEqual({k: parsed[k] for k in members}, members)

    def test_choice_records_carry_their_one_alternative(self):
        rate = {"random": {"minRate": {"rateUnit": "L2_RATE", "rate": 5}, "maxRate": {"rate": 9}}}
        members = vrm.decode(vrm.request("Generator_3", "SetCommonCfg", config={"rate": rate}))["members"]
        self.assertEqual(list(members["config"]["rate"]), ["random"])
        parsed = vrm.parse_response("Generator_3", "GetCommonCfg", vrm.response("Generator_3", "GetCommonCfg",
                                                                               genCfg={"rate": rate}))
        self.assertEqual(parsed["genCfg"]["rate"]["random"]["minRate"], {"rateUnit": "L2_RATE", "rate": 5})
        self.assertEqual(parsed["genCfg"]["rate"]["random"]["maxRate"]["rate"], 9)
        default = vrm.parse_response("Generator_3", "GetCommonCfg", vrm.response("Generator_3", "GetCommonCfg"))
        self.assertEqual(list(default["genCfg"]["rate"]), ["fixed"])
        modifiers = [{"fillType": "PRBS"}, {"customPfc": {"customPfcPriority": 3}}, {"enabled": True}]
        decoded = vrm.decode(vrm.request("Generator_3", "ModAllStreamBlocks", modifiers=modifiers))
        self.assertEqual(decoded["members"]["modifiers"],
                         [{"fillType": "PRBS"}, {"customPfc": {"customPfcEnabled": False, "customPfcPriority": 3}},
                          {"enabled": True}])
        with self.assertRaisesRegex(ValueError, r"modifiers\[0\]: expected exactly one of: enabled, "):
            vrm.request("Generator_3", "ModAllStreamBlocks", modifiers=[{"enabled": True, "errorFCS": True}])

    def test_request_members_as_python_values(self):
        decoded = vrm.decode(vrm.request("Generator_3", "ControlArray", action="STOP", blockId=[3, 4]))
        self.assertEqual(decoded, {"kind": "request", "name": "Generator_3.ControlArray",
                                   "members": {"action": "STOP", "blockId": [3, 4]}})

    def test_decoded_set_stream_block_is_a_block_again(self):
        for path in VALID:
            with self.subTest(example=os.path.basename(path)):
                block = vrm.Block.from_json(path)
                data = vrm.request("Generator_3", "SetStreamBlock", blocks=[block.to_dict()])
                decoded = vrm.decode(data)
                self.assertIsInstance(decoded["members"]["blocks"][0]["baseStream"]["frame"]["data"], str)
                again = vrm.Block.from_dict(decoded)
                self.assertTrue(again.valid)
                self.assertEqual(vrm.request("Generator_3", "SetStreamBlock", **decoded["members"]), data)
                self.assertEqual(vrm.request("Generator_3", "SetStreamBlock", blocks=[again.to_dict()]), data)
                # The command line's document is the same one.
                doc = json.loads(streamgen("request", path, "--json").stdout)
                self.assertEqual(vrm.Block.from_dict(doc).to_dict(), again.to_dict())

    def test_cycles_beyond_32_bits_wrap_as_stepping_does(self):
        # Two linked modifiers of 100,000 values: the parent's cycle of 10^10 frames wraps to
        # 10^10 mod 2^32 in the engine's counts, so the parent restarts after that many frames.
        with open(IPV4) as f:
            block = json.load(f)
        for m in block["rangeModifiers"]:
            m.update(initialValue="00000000", stepValue="00000001", mask="ffffffff", recycleCount=100000,
                     mode="INCREMENT")
        block["rangeModifiers"][1].update(initialValue="0000", stepValue="0001", mask="ffff")
        b = vrm.Block.from_dict(block)
        plan = b.plan()
        wrapped = 10**10 % 2**32
        self.assertEqual(plan.cycle_length, wrapped * 100000 // 32)  # lcm(wrapped, 100000)
        source = slice(26, 30)  # the parent's field, the IPv4 source
        for k in (0, 1, 99999, 100000, 123456):
            self.assertEqual(plan.frame(wrapped + k)[source], plan.frame(k)[source])
            self.assertEqual(b.values(wrapped + k)[1], b.values(k)[1])
        self.assertEqual(plan.frame(wrapped - 1)[source], ((wrapped - 1) // 100000).to_bytes(4, "big"))
        warned = subprocess.run([STREAMGEN, "validate", "-"], input=json.dumps(block), check=True,
                                capture_output=True, text=True).stderr
        self.assertIn("rangeModifiers[0]: its cycle of 10000000000 frames", warned)
        self.assertIn("restarts after %d frames" % wrapped, warned)


class Errors(unittest.TestCase):
    def setUp(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.addCleanup(self.tmp.cleanup)

    def test_one_frame_range_everywhere(self):
        # Frames 0 .. 2**32-1 for every index and count; a count past them is refused before
        # anything is allocated or written.
        block = vrm.Block.from_json(IPV4)
        plan = block.plan()
        last = 2 ** 32 - 1
        pcap = os.path.join(self.tmp.name, "range.pcap")
        accepted = [
            ("frame: the last", lambda: plan.frame(last), plan.frame(last)),
            ("stamp: up to the last", lambda: bytes(plan.stamp(last - 1, 2)), plan.frame(last - 1) + plan.frame(last)),
            ("stamp: no frames from the last", lambda: plan.stamp(last, 0), bytearray()),
            ("stamp: the last into a buffer", lambda: bytes(plan.stamp(last, 1, bytearray(plan.frame_length))),
             plan.frame(last)),
            ("values: the last", lambda: sorted(block.values(last)), [1, 2]),
            ("write_pcap: no frames", lambda: block.write_pcap(pcap, 0)["frames"], 0),
        ]
        for name, call, expected in accepted:
            with self.subTest(case=name):
                self.assertEqual(call(), expected)
        os.remove(pcap)
        refused = [
            ("frame: 2**32", lambda: plan.frame(2 ** 32), IndexError),
            ("frame: 2**64", lambda: plan.frame(2 ** 64), IndexError),
            ("frame: -1", lambda: plan.frame(-1), IndexError),
            ("values: 2**32", lambda: block.values(2 ** 32), IndexError),
            ("values: -1", lambda: block.values(-1), IndexError),
            ("stamp: first 2**32", lambda: plan.stamp(2 ** 32, 0), IndexError),
            ("stamp: first -1", lambda: plan.stamp(-1, 1), IndexError),
            ("stamp: one past the last", lambda: plan.stamp(last, 2), IndexError),
            ("stamp: 10**10 frames", lambda: plan.stamp(0, 10 ** 10), IndexError),
            ("stamp: 2**32+1 frames", lambda: plan.stamp(0, 2 ** 32 + 1), IndexError),
            ("stamp: 2**100 frames into a buffer", lambda: plan.stamp(0, 2 ** 100, bytearray(64)), IndexError),
            ("stamp: a negative count", lambda: plan.stamp(0, -1), ValueError),
            ("stamp: a count of another type", lambda: plan.stamp(0, 1.0), TypeError),
            ("write_pcap: 2**32+1 frames", lambda: block.write_pcap(pcap, 2 ** 32 + 1), IndexError),
            ("write_pcap: 10**10 frames", lambda: block.write_pcap(pcap, 10 ** 10, threads=2), IndexError),
            ("write_pcap: a negative count", lambda: block.write_pcap(pcap, -1), ValueError),
            ("write_pcap: a count of another type", lambda: block.write_pcap(pcap, 1.0), TypeError),
        ]
        for name, call, kind in refused:
            with self.subTest(case=name):
                self.assertRaises(kind, call)
                self.assertFalse(os.path.exists(pcap))

    def test_paths_and_file_errors(self):
        block = vrm.Block.from_json(IPV4)
        tmp = self.tmp.name
        reference = os.path.join(tmp, "reference.pcap")
        block.write_pcap(reference, 20)
        with open(reference, "rb") as f:
            expected = f.read()
        for kind in (str, os.fsencode, pathlib.Path):
            with self.subTest(path=kind.__name__):
                target = kind(os.path.join(tmp, "out.pcap"))
                self.assertEqual(block.write_pcap(target, 20)["bytes"], len(expected))
                with open(target, "rb") as f:
                    self.assertEqual(f.read(), expected)
                os.remove(target)
        for kind in (str, pathlib.Path):
            with self.subTest(block_path=kind.__name__):
                self.assertEqual(vrm.Block.from_json(kind(IPV4)).to_dict(), block.to_dict())
        a_file = os.path.join(tmp, "a-file")
        open(a_file, "w").close()
        write = lambda path: block.write_pcap(path, 1)  # noqa: E731
        cases = [
            ("write into a missing directory", write, os.path.join(tmp, "missing", "x.pcap"), FileNotFoundError,
             errno.ENOENT),
            ("write onto a directory", write, tmp, IsADirectoryError, errno.EISDIR),
            ("write below a file", write, os.path.join(a_file, "x.pcap"), NotADirectoryError, errno.ENOTDIR),
            ("read a missing file", vrm.Block.from_json, os.path.join(tmp, "missing.json"), FileNotFoundError,
             errno.ENOENT),
            ("read a directory", vrm.Block.from_json, tmp, IsADirectoryError, errno.EISDIR),
        ]
        for name, call, path, kind, number in cases:
            for given in (path, pathlib.Path(path)):
                with self.subTest(case=name, path=type(given).__name__):
                    with self.assertRaises(kind) as caught:
                        call(given)
                    self.assertEqual(caught.exception.errno, number)
                    self.assertEqual(caught.exception.strerror, os.strerror(number))
                    self.assertEqual(caught.exception.filename, given)
        for name, call in [("write", lambda: block.write_pcap(os.path.join(tmp, "a\0b.pcap"), 1)),
                           ("read", lambda: vrm.Block.from_json(pathlib.Path(tmp, "a\0b.json")))]:
            with self.subTest(case=name + " a path with a NUL byte"):
                self.assertRaisesRegex(ValueError, "embedded null byte", call)
        self.assertEqual(sorted(os.listdir(tmp)), ["a-file", "reference.pcap"])  # nothing left behind

    def test_concurrent_pcap_writes(self):
        # Two Python threads writing at once (each call releases the GIL) get the files each
        # would get alone.
        jobs = [(VALID[0], 30000, 2), (VALID[-1], 20000, 1)]
        expected = []
        for path, count, _ in jobs:
            out = os.path.join(self.tmp.name, "expected.pcap")
            streamgen("frames", path, "-o", out, "--count", str(count))
            with open(out, "rb") as f:
                expected.append(f.read())
        start = threading.Barrier(len(jobs))
        errors = []

        def write(k, path, count, threads):
            try:
                block = vrm.Block.from_json(path)
                start.wait()
                block.write_pcap(os.path.join(self.tmp.name, "%d.pcap" % k), count, threads=threads)
            except Exception as e:  # reported by the main thread
                errors.append(e)

        workers = [threading.Thread(target=write, args=(k, *job)) for k, job in enumerate(jobs)]
        for w in workers:
            w.start()
        for w in workers:
            w.join()
        self.assertEqual(errors, [])
        for k, data in enumerate(expected):
            with open(os.path.join(self.tmp.name, "%d.pcap" % k), "rb") as f:
                self.assertEqual(f.read(), data, "thread %d" % k)

    def test_keyboard_interrupt_after_each_call(self):
        # The module installs no signal handlers: after any of its calls, SIGINT still raises
        # KeyboardInterrupt and the interpreter goes on.
        script = textwrap.dedent("""
            import os, signal, sys, tempfile, time
            import vrm
            block = vrm.Block.from_json(sys.argv[2])
            plan = block.plan()
            out = tempfile.mkdtemp()
            calls = {
                "write_pcap": lambda: block.write_pcap(os.path.join(out, "x.pcap"), 5000, threads=2),
                "write_pcap failing": lambda: block.write_pcap(os.path.join(out, "no", "x.pcap"), 1),
                "from_json failing": lambda: vrm.Block.from_json(os.path.join(out, "missing.json")),
                "stamp": lambda: plan.stamp(0, 5000),
                "frame": lambda: plan.frame(5),
                "values": lambda: block.values(3),
                "request": lambda: vrm.decode(vrm.request("Generator_3", "Reset")),
            }
            try:
                calls[sys.argv[1]]()
            except OSError:
                pass
            try:
                os.kill(os.getpid(), signal.SIGINT)
                time.sleep(30)  # a signal left unhandled ends it early
            except KeyboardInterrupt:
                print("KeyboardInterrupt")
            print("still running")
        """)
        for call in ("write_pcap", "write_pcap failing", "from_json failing", "stamp", "frame", "values",
                     "request"):
            with self.subTest(call=call):
                done = subprocess.run([sys.executable, "-c", script, call, IPV4], capture_output=True, text=True,
                                      timeout=120)
                self.assertEqual((done.returncode, done.stdout), (0, "KeyboardInterrupt\nstill running\n"),
                                 done.stderr)

    def test_library_errors_map_to_python_exceptions(self):
        invalid = vrm.Block.from_json(INVALID)
        ipv4 = vrm.Block.from_json(IPV4)
        plan = ipv4.plan()
        response = vrm.response("Generator_3", "GetL1Cfg", perFrameL1OverheadBytes=20)
        cyclic = []
        cyclic.append(cyclic)
        cases = [
            ("bad JSON", lambda: vrm.Block.from_json("{"), ValueError, "(document): invalid JSON at line 1"),
            ("unknown key", lambda: vrm.Block.from_json('{"nope": 1}'), ValueError, "nope: unknown key"),
            ("bad hex", lambda: vrm.Block.from_dict({"baseStream": {"frame": {"data": "zz"}}}), ValueError,
             "baseStream.frame.data: expected hex bytes"),
            ("no such file", lambda: vrm.Block.from_json("/nonexistent/block.json"), OSError,
             "/nonexistent/block.json"),
            ("not a source", lambda: vrm.Block.from_json(3), TypeError, "expected JSON text"),
            ("invalid block values", lambda: invalid.values(0), ValueError, "the block is invalid"),
            ("invalid block plan", lambda: invalid.plan(), ValueError, "the block is invalid"),
            ("index beyond 32 bits", lambda: ipv4.values(2 ** 32), IndexError,
             "frame index 4294967296 is outside the frames 0 .. 4294967295"),
            ("negative index", lambda: plan.frame(-1), IndexError, "frame index -1 is outside"),
            ("count past the last frame", lambda: plan.stamp(2 ** 32 - 5, 10), IndexError,
             "count 10 from frame 4294967291 goes past the last frame, 4294967295"),
            ("negative count", lambda: plan.stamp(0, -3), ValueError, "count -3 is negative"),
            ("path of no path type", lambda: ipv4.write_pcap(3), TypeError, "expected str, bytes or os.PathLike"),
            ("buffer too small", lambda: plan.stamp(0, 10, bytearray(5)), ValueError, "the buffer holds 5 bytes"),
            ("read-only buffer", lambda: plan.stamp(0, 1, bytes(100)), BufferError, ""),
            ("threads", lambda: ipv4.write_pcap("/dev/null", 1, threads=0), ValueError, "threads: expected 1 to 256"),
            ("unknown module", lambda: vrm.request("Nope", "Reset"), ValueError, "unknown module Nope"),
            ("unknown method", lambda: vrm.request("Generator_3", "Nope"), ValueError,
             "unknown method Generator_3.Nope"),
            ("unknown member", lambda: vrm.request("Generator_3", "Reset", bogus=1), TypeError,
             "unexpected member 'bogus'"),
            ("member kind", lambda: vrm.request("Generator_3", "SetStreamBlock", returnIndex=3), ValueError,
             "returnIndex: expected true or false, got an integer"),
            ("enum name", lambda: vrm.request("Generator_3", "Control", action="JUMP"), ValueError,
             "action: expected one of START, STOP"),
            ("record member", lambda: vrm.request("Generator_3", "SetStreamBlock", blocks=[{"blockID": -1}]),
             ValueError, "blocks[0].blockID: out of range for uint32"),
            ("beyond 64 bits", lambda: vrm.request("Generator_3", "ClearAllStats", absExecTime=2 ** 70),
             ValueError, "absExecTime: integer out of range"),
            ("no JSON form", lambda: vrm.request("Generator_3", "ClearAllStats", absExecTime=object()), TypeError,
             "absExecTime: cannot convert a object"),
            ("self-containing list", lambda: vrm.request("Generator_3", "ControlArray", blockId=cyclic), ValueError,
             "nested deeper than 64"),
            ("malformed wire", lambda: vrm.decode(b"XX"), vrm.MessageError, "decode error at byte"),
            ("request as response", lambda: vrm.parse_response("Generator_3", "GetRunState",
                                                               vrm.request("Generator_3", "GetRunState")),
             vrm.MessageError, "type mismatch"),
            ("member of another kind", lambda: vrm.parse_response("Generator_3", "GetRunState", response),
             vrm.MessageError, "no member named 'isRunning'"),
        ]
        for name, call, kind, text in cases:
            with self.subTest(case=name):
                with self.assertRaises(kind) as caught:
                    call()
                self.assertIn(text, str(caught.exception))
        self.assertTrue(issubclass(vrm.MessageError, ValueError))


def have(module):
    return importlib.util.find_spec(module) is not None


class Stub(unittest.TestCase):
    # A script using the module as its documentation shows, with the types the stub gives.
    # Lines marked "type: ignore[...]" are calls the stub must refuse: --warn-unused-ignores
    # reports them if it accepts them.
    SCRIPT = textwrap.dedent("""
        from __future__ import annotations

        import array
        import pathlib
        import sys
        from typing import Any, Dict, List, Optional

        import vrm

        block: vrm.Block = vrm.Block.from_json(pathlib.Path(sys.argv[1]))
        same: vrm.Block = vrm.Block.from_json(sys.argv[1])
        lines: List[str] = block.validate()
        valid: bool = block.valid
        values: Dict[int, bytes] = block.values(2**32 - 1)
        mods: List[vrm.ModifierInfo] = block.modifiers
        field: Optional[str] = mods[0]["field"]
        frames: Optional[int] = block.frames
        again: vrm.Block = vrm.Block.from_dict(block.to_dict())

        plan: vrm.Plan = block.plan()
        length: int = plan.frame_length
        cycle: int = plan.cycle_length
        stamped: bytearray = plan.stamp(0, 4)
        raw: bytearray = plan.stamp(0, 4, None, False)
        view: memoryview = plan.stamp(0, 4, memoryview(bytearray(4 * length)), checksums=False)
        arr: array.array[int] = plan.stamp(1, 1, array.array("B", bytes(length)))
        one: bytes = plan.frame(3, checksums=False)
        summary: vrm.PcapSummary = block.write_pcap(pathlib.Path(sys.argv[2]), 3, threads=2, checksums=False)
        written: int = block.write_pcap(sys.argv[2])["frames"]

        wire: bytes = vrm.request("Generator_3", "Reset")
        decoded: Dict[str, Any] = vrm.decode(bytearray(wire))
        reply = vrm.response("Generator_3", "GetRunState", isRunning=True)
        parsed: Dict[str, Any] = vrm.parse_response("Generator_3", "GetRunState", memoryview(reply))
        listed: Dict[str, List[str]] = vrm.members("Generator_3", "Reset")
        names: List[str] = vrm.modules() + vrm.methods("Generator_3")
        error: type[ValueError] = vrm.MessageError

        if sys.argv[3:] == ["refused"]:
            plan.stamp(0, 1, b"read-only")  # type: ignore[call-overload]
            block.write_pcap(3)  # type: ignore[arg-type]
            plan.frame("3")  # type: ignore[arg-type]
            vrm.decode("text")  # type: ignore[arg-type]
        """)
    NUMPY = textwrap.dedent("""
        import numpy as np
        import numpy.typing as npt

        into: npt.NDArray[np.uint8] = plan.stamp(0, 4, np.empty((4, length), dtype=np.uint8))
        """)

    def setUp(self):
        self.tmp = tempfile.TemporaryDirectory()
        self.addCleanup(self.tmp.cleanup)
        self.script = os.path.join(self.tmp.name, "typed.py")
        with open(self.script, "w") as f:
            f.write(self.SCRIPT + (self.NUMPY if have("numpy") else ""))

    def test_typed_script_runs(self):
        subprocess.run([sys.executable, self.script, IPV4, os.path.join(self.tmp.name, "x.pcap")], check=True,
                       capture_output=True)

    def test_stub_passes_mypy(self):
        if not have("mypy"):
            self.skipTest("mypy is not installed")
        stub = ROOT / "python" / "vrm.pyi"
        env = dict(os.environ, MYPYPATH=str(stub.parent))
        done = subprocess.run([sys.executable, "-m", "mypy", "--strict", "--warn-unused-ignores", "--no-incremental",
                               "--cache-dir", os.path.join(self.tmp.name, "cache"), str(stub), self.script],
                              capture_output=True, text=True, env=env)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)


class Docs(unittest.TestCase):
    def test_python_examples_run(self):
        # Every python block of docs/python.md, in order and in one namespace as a reader would
        # type them, in a fresh directory where examples/ is the shipped examples.
        with open(ROOT / "docs" / "python.md") as f:
            blocks = re.findall(r"^```python\n(.*?)^```", f.read(), re.S | re.M)
        self.assertGreater(len(blocks), 3)
        tmp = tempfile.TemporaryDirectory()
        self.addCleanup(tmp.cleanup)
        os.symlink(EXAMPLES, os.path.join(tmp.name, "examples"))
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(tmp.name)
        namespace = {}
        for k, code in enumerate(blocks):
            with self.subTest(block=k, first_line=code.splitlines()[0]):
                needs = [m for m in ("numpy", "scapy", "matplotlib") if re.search(r"^\s*(import|from) %s\b" % m, code, re.M)]
                missing = [m for m in needs if not have(m)]
                if missing:
                    self.skipTest("%s is not installed" % ", ".join(missing))
                with contextlib.redirect_stdout(io.StringIO()):
                    exec(compile(code, "docs/python.md block %d" % k, "exec"), namespace)


if __name__ == "__main__":
    unittest.main()
