// Common header of the library: the export macro shared by every public header.
#pragma once

// Classes and functions that native users link against are marked KXAC_API; everything else
// in the shared object stays hidden (the library is built with hidden visibility by default).
#if defined(__GNUC__) || defined(__clang__)
#define KXAC_API __attribute__((visibility("default")))
#else
#define KXAC_API
#endif
