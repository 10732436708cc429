// STACK from the inside.
#pragma once

#include <velpki/stack.h>

namespace velpki {

// Room for `slots` elements in one piece, as a list of known length needs it: pushes grow by one slot each. False for
// null, a negative number and exhausted memory, with the list as it was.
bool reserve_stack(STACK *stack, int slots) noexcept;

}  // namespace velpki
