"""Stream blocks (validation, modifier values, frame plans, pcap files) and the request and
response messages of the Generator_3, ifSetup_1, Stats_1 and LoadProfile_1 modules."""

import os
from typing import Any, Dict, List, Optional, TypedDict, TypeVar, Union

from typing_extensions import Buffer

_Buf = TypeVar("_Buf", bound=Buffer)

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
    """A block's frames compiled for bulk stamping; frame i is byte for byte what streamgen
    frames writes for frame i. Stamping releases the GIL."""

    @property
    def frame_length(self) -> int: ...
    @property
    def cycle_length(self) -> int:
        """Frames after which the frames repeat (0 when that does not fit in 64 bits)."""
    def stamp(self, first: int, count: int, out: Optional[_Buf] = None) -> Union[bytearray, _Buf]:
        """Frames first .. first+count-1 back to back: a new bytearray, or written into `out`
        (a writable C-contiguous buffer, e.g. bytearray or a NumPy uint8 array) and `out`
        returned."""
    def frame(self, index: int) -> bytes: ...

class Block:
    """A stream block in streamgen's JSON format, built and validated by the library."""

    @staticmethod
    def from_json(source: Union[str, bytes, "os.PathLike[str]"]) -> "Block":
        """JSON text, or the path of a JSON file. ValueError for bad input (with its JSON
        path), OSError for an unreadable file."""
    @staticmethod
    def from_dict(block: Dict[str, Any]) -> "Block":
        """A dict of the file's form; bytes values may stand for hex text."""
    def validate(self) -> List[str]:
        """The library's validation lines; empty when valid."""
    @property
    def valid(self) -> bool: ...
    def values(self, frame: int) -> Dict[int, bytes]:
        """{modIndex: value} of frame `frame` (0 <= frame < 2**32), computed by index."""
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
    def write_pcap(self, path: str, count: Optional[int] = None, threads: int = 1,
                   checksums: bool = True) -> PcapSummary:
        """Frames 0 .. count-1 to a pcap file, as streamgen frames writes them."""

def request(module: str, method: str, /, **members: Any) -> bytes:
    """The wire bytes of a request; members by their wire names (records as dicts, enums as
    names, byte values as bytes or hex text; omitted members take their defaults)."""

def response(module: str, method: str, /, **members: Any) -> bytes:
    """The wire bytes of a response, members given like request()'s."""

def parse_response(module: str, method: str, data: Buffer) -> Dict[str, Any]:
    """The members of a response as Python values. MessageError for malformed bytes, a
    request, or members of the wrong kind."""

def decode(data: Buffer) -> Dict[str, Any]:
    """{'kind': 'request'|'response', 'name': str, 'members': {...}}."""

def modules() -> List[str]: ...
def methods(module: str) -> List[str]: ...
def members(module: str, method: str) -> Dict[str, List[str]]:
    """{'request': [...], 'response': [...]}: the member names of a method."""
