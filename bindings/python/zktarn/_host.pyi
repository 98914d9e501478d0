"""Types of the extension module that is the host."""

from typing import Callable, Dict, Optional

version: str
library: str
functions: Dict[str, Callable[..., object]]

def set_bit_generator(factory: Optional[Callable[[int], object]]) -> None: ...
def block_count() -> int: ...
def conformance(function: str, answer: float, console_is_standard_output: bool) -> bool: ...
