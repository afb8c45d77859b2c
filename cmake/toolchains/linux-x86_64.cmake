# Linux x86-64 with glibc 2.17 or later.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KXAC_ZIG_TARGET x86_64-linux-gnu.2.17)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
