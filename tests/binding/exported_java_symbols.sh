#!/bin/sh
# Checks the Java natives a shared library exports.
#   exported_java_symbols.sh LIBRARY WRAP_SOURCE SECOND_SOURCE
#       CAvoidContainerWrap (WRAP_SOURCE) declares exactly the 23 natives, the second class
#       (SECOND_SOURCE, in the same package) declares natives of its own, and the library exports
#       exactly those of both classes
#   exported_java_symbols.sh LIBRARY --none   the library exports no Java native at all
# The library may be of any platform (ELF, PE or Mach-O).
set -eu

lib=$1
source=$2
second=${3:-}
package=Java_com_tavrint_core_util_index_grid_
prefix=${package}CAvoidContainerWrap_
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sh "$(dirname "$0")/exported_symbols.sh" "$lib" > "$work/all"
grep '^Java_' "$work/all" | sort > "$work/exported" || true

if [ "$source" = "--none" ]; then
    if [ -s "$work/exported" ]; then
        echo "library built without the binding exports Java natives:" >&2
        cat "$work/exported" >&2
        exit 1
    fi
    echo "no Java natives exported"
    exit 0
fi

# Java method names; an underscore in a name is written _1 in the exported symbol.
for method in CreateAvoidContainer DestroyAvoidContainer AvoidContainerExtent \
    ResetAvoidContainer CreateAvoidObject DestroyAvoidObject RecycleAvoidObject AddAvoidObject \
    AddAvoidObjectForce AllPlacedObject AllUnPlacedObject AvoidObject_Reset \
    AvoidObject_PlacedState AvoidObject_SetID AvoidObject_GetID AvoidObject_SetStringID \
    AvoidObject_GetStringID AvoidObject_Offset AvoidObject_ClearOffset AvoidObject_AddBox \
    AvoidObject_AddLines AvoidObject_AddRing AvoidObject_AddOffset; do
    echo "$method"
done | sort > "$work/methods"
sed 's/_/_1/g; s/^/'"$prefix"'/' "$work/methods" | sort > "$work/expected"

# Every 'native' declaration of a Java source, by method name.
declared() {
    tr '\n' ' ' < "$1" \
        | grep -oE 'static[[:space:]]+native[[:space:]]+[A-Za-z0-9_]+(\[\])?[[:space:]]+[A-Za-z0-9_]+[[:space:]]*\(' \
        | sed -E 's/[[:space:]]*\($//; s/.*[[:space:]]//' | sort
}

second_class=$(basename "$second" .java)
declared "$second" > "$work/second"
if [ ! -s "$work/second" ]; then
    echo "$second declares no native" >&2
    exit 1
fi
sed 's/_/_1/g; s/^/'"$package$second_class"'_/' "$work/second" >> "$work/expected"
sort -o "$work/expected" "$work/expected"

status=0
if [ "$(wc -l < "$work/methods")" -ne 23 ]; then
    echo "expected list does not hold 23 names" >&2
    status=1
fi
if ! diff -u "$work/expected" "$work/exported"; then
    echo "exported Java natives differ from the 23 and those of $second_class (- missing," \
        "+ unexpected)" >&2
    status=1
fi

declared "$source" > "$work/declared"
if ! diff -u "$work/methods" "$work/declared"; then
    echo "native methods declared in $source differ from the expected 23" >&2
    status=1
fi

[ $status -eq 0 ] && echo "23 Java natives and $(wc -l < "$work/second") of $second_class" \
    "exported and declared"
exit $status
