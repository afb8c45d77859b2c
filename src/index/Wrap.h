// 32-bit integer arithmetic that wraps around as two's complement hardware does, computed in
// unsigned so that the wrap is defined behaviour.
#pragma once

#include <cstdint>

namespace kxac {
// The low 32 bits of a + b and of a - b.
inline int WrapAdd(int a, long long b) {
    return static_cast<int>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int WrapSub(int a, int b) {
    return static_cast<int>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
}  // namespace kxac
