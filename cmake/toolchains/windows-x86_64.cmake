# Windows 10 or later on x64 (MinGW-w64 runtime, linked statically); programs run here under wine.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(KXAC_ZIG_TARGET x86_64-windows-gnu)
# Debian's wine64 keeps its loader out of the PATH.
find_program(KXAC_WINE NAMES wine64 wine PATHS /usr/lib/wine REQUIRED)
set(KXAC_TARGET_EMULATOR ${KXAC_WINE})
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
