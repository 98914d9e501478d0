// The procedures are inline; this source makes them symbols of the library.
#include "zktarn/util/array_copy.hpp"
