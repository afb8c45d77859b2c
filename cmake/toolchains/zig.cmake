# Cross-compiling with zig: one compiler (clang), a C++ runtime (libc++, linked statically) and the
# C libraries and system stubs of every target, in one package from PyPI. Each per-target file
# sets these and then includes this one:
#   CMAKE_SYSTEM_NAME, CMAKE_SYSTEM_PROCESSOR
#   KXAC_ZIG_TARGET       zig's target, with the oldest C library or OS release to build for
#   KXAC_TARGET_EMULATOR  (optional) the command that runs the target's programs on this machine
# Cache variables: KXAC_ZIG names the zig executable (default: zig on the PATH);
# KXAC_TARGET_SYSROOT (glibc targets), a folder with the target's C library for the emulator.
set(KXAC_ZIG "" CACHE FILEPATH "The zig executable")
if(NOT KXAC_ZIG)
    find_program(KXAC_ZIG_FOUND zig REQUIRED)
    set(KXAC_ZIG ${KXAC_ZIG_FOUND} CACHE FILEPATH "The zig executable" FORCE)
endif()
# try_compile projects read this file again and need the same zig.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KXAC_ZIG KXAC_TARGET_SYSROOT)

# C too: GoogleTest's project enables it.
set(CMAKE_C_COMPILER ${KXAC_ZIG} cc)
set(CMAKE_C_COMPILER_TARGET ${KXAC_ZIG_TARGET})
set(CMAKE_CXX_COMPILER ${KXAC_ZIG} c++)
set(CMAKE_CXX_COMPILER_TARGET ${KXAC_ZIG_TARGET})
# zig is also the archiver and the ranlib of its targets (zig-rules.cmake).
set(CMAKE_AR ${KXAC_ZIG} CACHE FILEPATH "zig, as archiver" FORCE)
set(CMAKE_RANLIB ${KXAC_ZIG} CACHE FILEPATH "zig, as ranlib" FORCE)
set(CMAKE_USER_MAKE_RULES_OVERRIDE ${CMAKE_CURRENT_LIST_DIR}/zig-rules.cmake)

if(DEFINED KXAC_TARGET_EMULATOR)
    set(CMAKE_CROSSCOMPILING_EMULATOR ${KXAC_TARGET_EMULATOR})
endif()

# A dylib is named @rpath/<file> even in the build tree: CMake, which cannot ask a Mac here for
# its version, would take it for one without rpaths and name the library by its build path.
if(CMAKE_SYSTEM_NAME STREQUAL "Darwin")
    set(CMAKE_INSTALL_NAME_DIR "@rpath")
    set(CMAKE_BUILD_WITH_INSTALL_NAME_DIR ON)
endif()

# Nothing of the build machine is searched for the target's libraries and headers; programs
# (javac, sh) are the build machine's.
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
