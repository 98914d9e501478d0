// The library exports its inline procedures. This source includes the headers that no other source
// includes, so that their procedures are emitted as well.
#include "zktarn/util/array_copy.hpp"
