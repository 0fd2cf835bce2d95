# Type stubs of the quillheron package, for editors and type checkers.
import os
from typing import Any, Dict, Iterator, List, Mapping, Optional, Sequence, Tuple, Union

import numpy as np
import numpy.typing as npt

from .pb import heron_v1_1_pb2, listeningmodel_pb2, routeconfiguration_pb2

FORMATS: Tuple[str, ...]
BAND_TYPES: Dict[str, int]

ArrayLike = npt.ArrayLike
Band = Union[Tuple[Any, Any, Any, Any], Tuple[Any, Any, Any, Any, Any]]

class Design:
    family: str
    fmt: str
    rate: Any
    width: int
    shape: Optional[Tuple[int, ...]]
    result: Any  # int, or an int32 array for a sweep
    error: Optional[str]
    errors: Dict[int, str]
    output: np.ndarray
    sections: np.ndarray
    gain: Any  # float, or a float64 array for a sweep
    iwl: Optional[np.ndarray]
    gain_iwl: Any
    names: List[str]
    parameters: Dict[str, float]  # thumpx only
    def sos(self, which: Optional[Sequence[int]] = ...) -> np.ndarray: ...

class DistprevDesign:
    result: int
    header: bytes
    records: List[bytes]
    output: np.ndarray
    def record(self, k: int) -> Dict[str, Any]: ...

def butterworth(kind: Union[str, ArrayLike], cutoff: ArrayLike, order: int, rate: ArrayLike = ...,
                fmt: str = ..., *, workers: Optional[int] = ...) -> Design: ...
def peq(bands: Sequence[Band], rate: ArrayLike = ..., fmt: str = ..., *, workers: Optional[int] = ...) -> Design: ...
def thumpx(speaker_size: int, rate: int = ..., fmt: str = ..., *, bass_ctrl: float = ..., hp_ratio: float = ...,
           ext_bass: float = ..., lp_ratio: float = ..., pre_lp_freq: float = ..., harm_hp_freq: float = ...,
           clip_level: float = ...) -> Design: ...
def crossover(freq: float, rate: int = ..., fmt: str = ...) -> Design: ...
def distprev(count: int = ..., *, nf_mode: int = ..., nf_thld: float = ..., nf_sense: float = ...,
             nf_attk_thld: float = ..., nf_attk_ms: float = ..., nf_rel_ms: float = ..., nf_band_ct: int = ...,
             nf_base_freq: float = ..., nf_base_q: float = ..., nf_base_attn_max: float = ..., nf_spacing: int = ...,
             nf_width: int = ..., nf_slope: float = ...) -> DistprevDesign: ...

Cascade = Union[Design, np.ndarray, Tuple[np.ndarray, float]]

def response(cascade: Cascade, freqs: ArrayLike, rate: Optional[float] = ...) -> Dict[str, np.ndarray]: ...
def poles(cascade: Cascade) -> List[Dict[str, Any]]: ...
def quantisation_report(design: Design) -> Dict[str, Any]: ...
def dequantise(words: ArrayLike, width: int, layout: str = ..., sections: Optional[int] = ...) -> Tuple[np.ndarray, float]: ...

class QuillheronError(RuntimeError):
    code: int

class RecordView(bytes):
    record: str
    def __getitem__(self, key: Any) -> Any: ...
    def keys(self) -> List[str]: ...
    def items(self) -> Iterator[Tuple[str, Any]]: ...
    def layout(self, key: str) -> Dict[str, Any]: ...

class Records:
    premix: RecordView
    postmix: RecordView
    premix_result: int
    result: int
    premix_fader: Optional[Tuple[int, int, int, int, int]]
    postmix_fader: Optional[Tuple[int, int, int, int, int]]
    rate: int

RouteSource = Union[bytes, str, os.PathLike, routeconfiguration_pb2.RouteConfiguration]
ModelSource = Union[bytes, str, os.PathLike, listeningmodel_pb2.listeningModel]

def populate(route: RouteSource, rate: int, models: Sequence[ModelSource] = ..., room_mask: int = ...) -> Records: ...
def convert(premix: Optional[bytes] = ..., postmix: Optional[bytes] = ..., rate: int = ...,
            with_room_models: bool = ..., premix_fader: Optional[Sequence[int]] = ...,
            postmix_fader: Optional[Sequence[int]] = ...) -> heron_v1_1_pb2.HeronSettings: ...
