// Pieces of the load and unload sequence that live beside the classes they concern.
#pragma once

namespace qn {

// Destroys the class registry and every descriptor in it.
void freeClassRegistry();

} // namespace qn
