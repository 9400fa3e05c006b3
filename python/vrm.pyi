"""Stream blocks (validation, modifier values, frame plans, pcap files) and the request and
response messages of the Generator_3, ifSetup_1, Stats_1 and LoadProfile_1 modules."""

import array
import mmap
import os
from typing import Any, Dict, Iterable, List, Optional, Protocol, Tuple, TypedDict, TypeVar, Union, overload

class _ArrayInterface(Protocol):
    """An array that exposes its memory through the buffer protocol, as a NumPy array does."""

    @property
    def __array_interface__(self) -> Dict[str, Any]: ...

# Objects with the buffer protocol the module takes (any C-contiguous buffer works at run time).
_ReadableBuffer = Union[bytes, bytearray, memoryview, array.array[Any], mmap.mmap, _ArrayInterface]
_WritableBuffer = Union[bytearray, memoryview, array.array[Any], mmap.mmap, _ArrayInterface]
_Buf = TypeVar("_Buf", bound=_WritableBuffer)
_Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

class MessageError(ValueError):
    """A refusal of the message runtime: malformed wire bytes, a value or message of another kind."""

class ModifierInfo(TypedDict):
    modIndex: int
    mode: str  # INCREMENT, DECREMENT, RANDOM, SHUFFLE or TABLE
    width: int  # bytes
    field: Optional[str]  # the host's field name, else the record's offsetReference
    bitOffset: Optional[int]  # the host's bit range in the frame, else None
    bitLength: Optional[int]
    offset: int  # bytes into the field

class PcapSummary(TypedDict):
    frames: int
    bytes: int
    seconds: float

class Plan:
    """A block's frames as the whole block describes them (modifiers, lengths, fill,
    signature); frame i (0 .. 2**32-1) is byte for byte what streamgen frames writes for
    frame i, checksums recomputed (checksums=False: as --checksums keep writes). Stamping
    releases the GIL."""

    @property
    def frame_length(self) -> int:
        """Bytes of each frame's slot in stamp's output: every frame's length when the
        block's frames have one length, else the longest frame."""
    @property
    def min_length(self) -> int: ...
    @property
    def max_length(self) -> int: ...
    @property
    def lengths(self) -> str:
        """The length settings in words, e.g. 'RANDOM 64..1518 seed 7'."""
    def length(self, index: int) -> int:
        """Frame `index`'s length in bytes; IndexError outside 0 .. 2**32-1."""
    def frames(self, first: int, count: int, checksums: bool = True) -> List[bytes]:
        """Frames first .. first+count-1, each bytes of its own length."""
    @property
    def cycle_length(self) -> int:
        """Frames after which the frames repeat (0 when that does not fit in 64 bits)."""
    @overload
    def stamp(self, first: int, count: int, out: None = None, checksums: bool = True) -> bytearray:
        """Frames first .. first+count-1, each in a slot of frame_length bytes (a shorter
        frame's slot ends in zeros), in a new bytearray. IndexError for a
        first outside 0 .. 2**32-1 or frames past 2**32-1, ValueError for a negative count."""
    @overload
    def stamp(self, first: int, count: int, out: _Buf, checksums: bool = True) -> _Buf:
        """Frames first .. first+count-1 written into `out` (a writable C-contiguous buffer,
        e.g. bytearray or a NumPy uint8 array), which is returned. ValueError for a buffer
        too small."""
    def frame(self, index: int, checksums: bool = True) -> bytes:
        """Frame `index` (0 .. 2**32-1); IndexError for an index outside."""

class Block:
    """A stream block in streamgen's JSON format, built and validated by the library."""

    @staticmethod
    def from_json(source: Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]) -> "Block":
        """JSON text (str or bytes), or the path of a JSON file (a str not starting with '{',
        or an os.PathLike). ValueError for bad input (with its JSON path), OSError
        (FileNotFoundError, ...) for an unreadable file."""
    @staticmethod
    def from_dict(block: Dict[str, Any]) -> "Block":
        """A dict of the file's form; bytes values may stand for hex text."""
    def validate(self) -> List[str]:
        """The library's validation lines; empty when valid."""
    @property
    def valid(self) -> bool: ...
    def values(self, frame: int) -> Dict[int, bytes]:
        """{modIndex: value} of frame `frame` (0 .. 2**32-1), computed by index. IndexError
        for an index outside."""
    @property
    def modifiers(self) -> List[ModifierInfo]: ...
    @property
    def frame_template(self) -> bytes: ...
    @property
    def frames(self) -> Optional[int]:
        """host.frames, or None."""
    def to_dict(self) -> Dict[str, Any]:
        """The stream block record as the library writes it back (what SetStreamBlock sends)."""
    def plan(self) -> Plan: ...
    def write_pcap(self, path: _Path, count: Optional[int] = None, threads: int = 1,
                   checksums: bool = True, format: str = "pcap", fcs: bool = False) -> PcapSummary:
        """Frames 0 .. count-1 (count at most 2**32) to a capture file, as streamgen frames
        writes them; format 'pcap', 'pcap-ns' or 'pcapng', fcs=True appends the frame
        check sequence. IndexError for a count beyond 2**32, ValueError for a negative one,
        OSError (FileNotFoundError, ...) when the file cannot be written."""
    def send(self, interface: str, count: Optional[int] = None, duration: Optional[float] = None,
             rate: Union[float, str, None] = None, tx: str = "auto", max_burst: int = 256,
             force: bool = False) -> Dict[str, Any]:
        """Frames on a network interface, as streamgen send sends them (GIL released);
        the counts the kernel confirmed. OSError (PermissionError) when it cannot send,
        ValueError for a frame too long, KeyboardInterrupt on Ctrl-C."""

class Port:
    """A port: common configuration, stream blocks, load profiles and bindings, and the frames
    it sends on its exact timeline (docs/port.md)."""

    @staticmethod
    def from_json(source: Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"],
                  count: Optional[int] = None, duration: Optional[float] = None) -> "Port":
        """JSON text or bytes, or the path of a port file. ValueError for bad input, OSError
        for an unreadable file."""
    @staticmethod
    def from_dict(port: Dict[str, Any], count: Optional[int] = None,
                  duration: Optional[float] = None) -> "Port": ...
    @staticmethod
    def from_requests(data: bytes, count: Optional[int] = None,
                      duration: Optional[float] = None) -> "Port":
        """The port a host's requests configure (each after its 32-bit little-endian length)."""
    @property
    def frames(self) -> Optional[int]:
        """The port's frames; None when it sends for ever."""
    @property
    def blocks(self) -> List[str]: ...
    def schedule(self, first: int = 0, count: Optional[int] = None) -> Dict[str, Any]:
        """{'time', 'block', 'index'} arrays (NumPy when present, else array.array)."""
    def write_pcap(self, path: _Path, format: str = "pcap-ns", threads: int = 1,
                   checksums: bool = True, fcs: bool = False) -> PcapSummary: ...
    def write_pcapng(self, path: _Path, threads: int = 1, checksums: bool = True,
                     fcs: bool = False) -> PcapSummary: ...
    def send(self, interface: str, count: Optional[int] = None, duration: Optional[float] = None,
             rate: Union[float, str, None] = None, tx: str = "auto", max_burst: int = 256,
             force: bool = False) -> Dict[str, Any]:
        """The port's frames on a network interface at their times (or rate), as Block.send."""

def analyze(source: Union[_Path, Iterable[Tuple[bytes, int]]], fcs: bool = False) -> List[Dict[str, Any]]:
    """Per-stream frames, rate, loss, duplicates, order and latency from a capture's path or
    from (frame bytes, receive time ns) pairs, as streamgen analyze reports them."""

def request(module: str, method: str, /, **members: Any) -> bytes:
    """The wire bytes of a request; members by their wire names (records as dicts, enums as
    names, byte values as bytes or hex text; omitted members take their defaults)."""

def response(module: str, method: str, /, **members: Any) -> bytes:
    """The wire bytes of a response, members given like request()'s."""

def parse_response(module: str, method: str, data: _ReadableBuffer) -> Dict[str, Any]:
    """The members of a response as Python values. MessageError for malformed bytes, a
    request, or members of the wrong kind."""

def decode(data: _ReadableBuffer) -> Dict[str, Any]:
    """{'kind': 'request'|'response', 'name': str, 'members': {...}}."""

def modules() -> List[str]: ...
def methods(module: str) -> List[str]: ...
def members(module: str, method: str) -> Dict[str, List[str]]:
    """{'request': [...], 'response': [...]}: the member names of a method."""
