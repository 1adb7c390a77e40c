"""The types of vantor.farm."""

import os
from collections.abc import Awaitable, Callable, Generator, Iterable
from typing import Any, Dict, Generic, List, Literal, Optional, Sequence, TypeVar, Union, overload

from . import Job, Picture, Scene
from ._vocabulary import _Aov, _Display, _Filter, _Integer, _Number

__all__ = ["AnimationJob", "FarmError", "FarmJob", "FrameJob", "animate", "render"]

_Result = TypeVar("_Result")
_Source = Union[Callable[..., Scene], str, "os.PathLike[str]"]

class FarmError(RuntimeError): ...

# Jobs are made by render() and animate().

class FarmJob(Awaitable[_Result], Generic[_Result]):
    def __init__(self, client: Any, pickled_source: bytes, pieces: Any) -> None: ...
    @property
    def progress(self) -> float: ...
    @property
    def workers(self) -> Dict[str, int]: ...
    def done(self) -> bool: ...
    def cancel(self) -> None: ...
    def result(self, timeout: Optional[float] = None, *, progress: bool = False) -> _Result: ...
    def __await__(self) -> Generator[Any, None, _Result]: ...

class FrameJob(FarmJob[Picture]):
    def __init__(
        self, client: Any, pickled_source: bytes, pieces: Any, size: Any, window: Any, ranges: int
    ) -> None: ...
    def preview(self) -> Optional[Picture]: ...

class AnimationJob(FarmJob[List[str]]):
    def __init__(
        self, client: Any, pickled_source: bytes, pieces: Any, finished: Any
    ) -> None: ...

@overload
def render(
    source: _Source,
    width: _Integer,
    height: _Integer,
    samples: _Integer = 64,
    *,
    client: Any = None,
    frame: Any = None,
    pieces: Optional[_Integer] = None,
    ranges: _Integer = 1,
    window: Sequence[_Number] = ...,
    aovs: Union[_Aov, Iterable[_Aov]] = (),
    filter: Optional[_Filter] = None,
    filter_width: Optional[_Number] = None,
    wait: Literal[True] = True,
    progress: bool = False,
) -> Picture: ...
@overload
def render(
    source: _Source,
    width: _Integer,
    height: _Integer,
    samples: _Integer = 64,
    *,
    client: Any = None,
    frame: Any = None,
    pieces: Optional[_Integer] = None,
    ranges: _Integer = 1,
    window: Sequence[_Number] = ...,
    aovs: Union[_Aov, Iterable[_Aov]] = (),
    filter: Optional[_Filter] = None,
    filter_width: Optional[_Number] = None,
    wait: Literal[False],
    progress: bool = False,
) -> Union[FrameJob, Job]: ...
@overload
def animate(
    source: _Source,
    frames: Iterable[Any],
    path: Union[str, "os.PathLike[str]"],
    width: _Integer,
    height: _Integer,
    samples: _Integer = 64,
    *,
    client: Any = None,
    exposure: float = 0.0,
    display: Optional[_Display] = None,
    filter: Optional[_Filter] = None,
    filter_width: Optional[_Number] = None,
    again: bool = False,
    wait: Literal[True] = True,
    progress: bool = False,
) -> List[str]: ...
@overload
def animate(
    source: _Source,
    frames: Iterable[Any],
    path: Union[str, "os.PathLike[str]"],
    width: _Integer,
    height: _Integer,
    samples: _Integer = 64,
    *,
    client: Any = None,
    exposure: float = 0.0,
    display: Optional[_Display] = None,
    filter: Optional[_Filter] = None,
    filter_width: Optional[_Number] = None,
    again: bool = False,
    wait: Literal[False],
    progress: bool = False,
) -> AnimationJob: ...
