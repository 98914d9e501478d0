// NumPy's headers of another system include this; macOS has the same under this name.

#pragma once

#include <machine/endian.h>
