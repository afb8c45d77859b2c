#!/bin/sh
# Prints the names a shared library exports, one per line, as the linker of its platform sees
# them: the dynamic symbols of an ELF object, the export table of a PE DLL, the exported symbols
# of a Mach-O dylib (without the underscore Mach-O puts before every C name). Names stay
# mangled. Needs llvm-readobj and llvm-nm (Debian: llvm).
#   exported_symbols.sh LIBRARY
set -eu

lib=$1
format=$(llvm-readobj --file-headers "$lib" | sed -n 's/^Format: //p' | head -n 1)
case "$format" in
    elf*) llvm-nm -D --defined-only -j "$lib" ;;
    COFF*) llvm-readobj --coff-exports "$lib" | sed -n 's/^ *Name: //p' ;;
    Mach-O*) llvm-nm -g --defined-only -j "$lib" | sed 's/^_//' ;;
    *)
        echo "$lib: not a shared library of a known format ('$format')" >&2
        exit 1
        ;;
esac
