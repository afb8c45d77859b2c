#!/bin/sh
# Checks the Java natives a shared library exports.
#   exported_java_symbols.sh LIBRARY JAVA_SOURCE   the library exports exactly the 23 natives of
#                                                  CAvoidContainerWrap, and the Java class declares
#                                                  exactly those methods; any other Java native it
#                                                  exports is one that AvoidNatives (beside it)
#                                                  declares
#   exported_java_symbols.sh LIBRARY --none        the library exports no Java native at all
# The library may be of any platform (ELF, PE or Mach-O).
set -eu

lib=$1
source=$2
package=Java_com_tavrint_core_util_index_grid_
prefix=${package}CAvoidContainerWrap_
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sh "$(dirname "$0")/exported_symbols.sh" "$lib" > "$work/all"
grep '^Java_' "$work/all" | sort > "$work/java" || true

if [ "$source" = "--none" ]; then
    if [ -s "$work/java" ]; then
        echo "library built without the binding exports Java natives:" >&2
        cat "$work/java" >&2
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

# The natives of one class: the method names its source declares 'native'.
declared_natives() {
    tr '\n' ' ' < "$1" \
        | grep -oE 'static[[:space:]]+native[[:space:]]+[A-Za-z0-9_]+(\[\])?[[:space:]]+[A-Za-z0-9_]+[[:space:]]*\(' \
        | sed -E 's/[[:space:]]*\($//; s/.*[[:space:]]//' | sort
}

grep "^$prefix" "$work/java" > "$work/exported" || true
status=0
if [ "$(wc -l < "$work/expected")" -ne 23 ]; then
    echo "expected list does not hold 23 names" >&2
    status=1
fi
if ! diff -u "$work/expected" "$work/exported"; then
    echo "exported Java natives differ from the expected 23 (- missing, + unexpected)" >&2
    status=1
fi

declared_natives "$source" > "$work/declared"
if ! diff -u "$work/methods" "$work/declared"; then
    echo "native methods declared in $source differ from the expected 23" >&2
    status=1
fi

# The second native class: whatever it declares, exported by the same rule, and nothing else.
others=${package}AvoidNatives_
grep -v "^$prefix" "$work/java" > "$work/other" || true
if grep -v "^$others" "$work/other"; then
    echo "Java natives of no known class exported (above)" >&2
    status=1
fi
second=$(dirname "$source")/AvoidNatives.java
if [ -f "$second" ]; then
    declared_natives "$second" | sed 's/_/_1/g; s/^/'"$others"'/' | sort > "$work/second"
    if ! diff -u "$work/second" "$work/other"; then
        echo "exported natives of AvoidNatives differ from those $second declares" >&2
        status=1
    fi
fi

[ $status -eq 0 ] && echo "23 Java natives exported and declared, $(wc -l < "$work/other") of AvoidNatives"
exit $status
