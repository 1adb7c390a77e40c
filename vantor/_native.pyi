"""The compiled companion, which is for the package's own use."""

from typing import Any

def __getattr__(name: str) -> Any: ...
