// Crossing: whether a ray may meet a surface, or has crossed it where it starts.
#pragma once

#include "libvantor/embree/embree.h"
#include "libvantor/embree/ray_start.h"

namespace vantor {

/// Whether a ray of the query may meet what lies there; `product` is that of Embree's normal and the ray's direction.
bool may_meet(const Query &query, unsigned ray_id, unsigned geometry, unsigned instance, unsigned primitive,
              float distance, double product);

} // namespace vantor
