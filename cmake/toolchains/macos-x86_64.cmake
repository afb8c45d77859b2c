# macOS 10.15 or later on Intel. Nothing here runs its programs.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(KXAC_ZIG_TARGET x86_64-macos.10.15)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
