# Linux x86-64 with musl (Alpine); programs link musl statically and run here as they are.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KXAC_ZIG_TARGET x86_64-linux-musl)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
