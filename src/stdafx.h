// Common header of the library: the export macro and the wrap-around arithmetic every layer uses.
#pragma once

// Classes and functions that native users link against are marked KXAC_API; everything else
// in the shared library stays hidden (it is built with hidden visibility by default). A Windows
// DLL exports them when KXAC_BUILDING is defined (the library's own sources and tests) and its
// users import them.
#if defined(_WIN32)
#if defined(KXAC_BUILDING)
#define KXAC_API __declspec(dllexport)
#else
#define KXAC_API __declspec(dllimport)
#endif
#elif defined(__GNUC__) || defined(__clang__)
#define KXAC_API __attribute__((visibility("default")))
#else
#define KXAC_API
#endif

#include <cstdint>

namespace kxac {
// The low 32 bits of a + b and of a - b: 32-bit arithmetic that wraps around as two's complement
// hardware does, computed in unsigned so that the wrap is defined behaviour.
inline int32_t WrapAdd(int32_t a, long long b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}
inline int32_t WrapSub(int32_t a, int32_t b) {
    return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}
}  // namespace kxac
