# macOS 11 or later on Apple Silicon. Nothing here runs its programs.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_PROCESSOR arm64)
set(KXAC_ZIG_TARGET aarch64-macos.11.0)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
