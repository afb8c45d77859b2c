#!/bin/sh
# Checks that a shared library keeps its internal classes hidden: the index of placed objects,
# the run merge and other helpers of the placement (namespace kxac), the rasterizer (namespace
# agg), the raster target, the scratch buffer and the JNI wrappers export no symbol, not even
# through a template instantiated for them.
# The library may be of any platform (ELF, PE or Mach-O).
#   exported_api.sh LIBRARY
set -eu

lib=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sh "$(dirname "$0")/exported_symbols.sh" "$lib" > "$work/mangled"
llvm-cxxfilt < "$work/mangled" > "$work/exported"
# Internal names are looked for in what a symbol names (its owner, template arguments included),
# not in its parameters: a Windows DLL exports every member of an exported class, the private ones
# too, and some of those take internal types.
sed 's/(.*//' "$work/exported" > "$work/owners"
if [ ! -s "$work/exported" ]; then
    echo "no symbols read from $lib" >&2
    exit 1
fi
internal='(^|[^A-Za-z0-9_])(CPlacedIndex|CRLERaster|CRLECreate|CGrowBuffer|CJavaUTFString|CJavaArray|CJavaArrayTraits|agg::|kxac::)'
if grep -E "$internal" "$work/owners" > "$work/leaked"; then
    echo "internal symbols exported by $lib:" >&2
    cat "$work/leaked" >&2
    exit 1
fi
# What native users link: the index, the containers and the version, on every platform.
for api in 'KXAvoidContainerVersion' 'CRLEIndex::' 'CAvoidContainer::' 'CAvoidObject::'; do
    if ! grep -qF "$api" "$work/exported"; then
        echo "$lib exports nothing of $api" >&2
        exit 1
    fi
done
echo "$(wc -l < "$work/exported") symbols exported, none internal"
