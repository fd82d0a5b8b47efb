"""What type hints say of arrays."""

from typing import Any

import numpy.typing

Array = numpy.typing.NDArray[Any]
