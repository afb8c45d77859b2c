#!/bin/sh
# Checks that a shared library is built for a platform: object format and processor, the C
# library it needs (musl or glibc) on Linux, an @rpath install name on macOS.
#   library_format.sh LIBRARY PLATFORM     PLATFORM as the jar names it, e.g. linux-aarch64-musl
set -eu

lib=$1
platform=$2
case "$platform" in
    linux-x86_64*) want="elf64-x86-64" ;;
    linux-aarch64*) want="elf64-littleaarch64" ;;
    macos-x86_64) want="Mach-O 64-bit x86-64" ;;
    macos-aarch64) want="Mach-O arm64" ;;
    windows-x86_64) want="COFF-x86-64" ;;
    *)
        echo "unknown platform $platform" >&2
        exit 2
        ;;
esac
format=$(llvm-readobj --file-headers "$lib" | sed -n 's/^Format: //p' | head -n 1)
if [ "$format" != "$want" ]; then
    echo "$lib is '$format', not '$want' as $platform needs" >&2
    exit 1
fi

# A Linux library names its C library among the ones it needs.
case "$platform" in
    linux-*)
        needed=$(llvm-readobj --needed-libs "$lib" | sed -n 's/^ *\(lib[^ ]*\)$/\1/p' | tr '\n' ' ')
        case "$platform:$needed" in
            *-musl:*libc.so\ *) ;;
            *-musl:*) echo "$lib needs [$needed]: no musl libc.so" >&2; exit 1 ;;
            *:*libc.so.6*) ;;
            *) echo "$lib needs [$needed]: no glibc libc.so.6" >&2; exit 1 ;;
        esac
        ;;
esac
# A dylib is named relative to the rpath of what loads it, never by a path of the build machine.
case "$platform" in
    macos-*)
        id=$(llvm-objdump --macho --dylib-id "$lib" | sed -n '2p')
        case "$id" in
            @rpath/*) ;;
            *) echo "$lib has the install name '$id', not @rpath/..." >&2; exit 1 ;;
        esac
        ;;
esac
echo "$platform: $format"
