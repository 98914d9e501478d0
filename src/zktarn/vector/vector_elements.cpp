// The procedures on elements are inline; this source makes them symbols of the library.
#include "zktarn/vector/vector_mod.hpp"
