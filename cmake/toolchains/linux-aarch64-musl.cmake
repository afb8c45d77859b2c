# Linux ARM64 with musl (Alpine); programs link musl statically and run here under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(KXAC_ZIG_TARGET aarch64-linux-musl)
set(KXAC_TARGET_EMULATOR qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/zig.cmake)
