// Emits the inline procedures that no other source includes as symbols of the library.
#include "zktarn/util/array_copy.hpp"
