// What loading, unloading and the wrappers share about one entry point.
#pragma once

#include <velpki/pkcs11_access.h>

#include <type_traits>

namespace velpki {

template <auto &pointer>
using FunctionOf = std::remove_reference_t<decltype(pointer)>;

// The address that an entry point had when its module was unloaded: code that is gone. Null after loading.
template <auto &pointer>
inline FunctionOf<pointer> closed = nullptr;

}  // namespace velpki
