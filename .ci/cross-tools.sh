#!/usr/bin/env bash
# Fetches into a folder of the build tree what the cross builds need beyond Debian's installed
# packages, once (a second run finds them and does nothing):
#   zig/        zig, from its PyPI package (compiler, libc++, every target's C library)
#   arm64-root/ an ARM64 Debian root for qemu-user: glibc, libstdc++ and a Java 17 runtime,
#               fetched with apt-get download (a private package list for arm64) and unpacked
#               with dpkg -x; nothing is installed on the machine
# Usage: .ci/cross-tools.sh FOLDER ZIG_VERSION
set -euo pipefail

tools=$1
zig_version=$2
mkdir -p "$tools"
tools=$(cd "$tools" && pwd)

if [ ! -x "$tools/zig/ziglang/zig" ]; then
    echo "Installing zig $zig_version (PyPI: ziglang) into $tools/zig"
    rm -rf "$tools/zig"
    python3 -m pip install --quiet --disable-pip-version-check --no-deps --no-cache-dir \
        --target "$tools/zig" "ziglang==$zig_version"
fi

root=$tools/arm64-root
if [ ! -f "$root/.complete" ]; then
    echo "Fetching an ARM64 root (glibc, Java 17 runtime) into $root"
    apt=$tools/apt-arm64
    mkdir -p "$apt/lists/partial" "$apt/cache/archives/partial" "$apt/debs"
    opts=(-o "Dir::State::Lists=$apt/lists" -o "Dir::Cache=$apt/cache"
        -o "Dir::State::Status=/dev/null" -o APT::Architecture=arm64
        -o APT::Architectures::=arm64)
    apt-get "${opts[@]}" -qq update
    (cd "$apt/debs" && apt-get "${opts[@]}" -qq download \
        libc6 libgcc-s1 libstdc++6 zlib1g openjdk-17-jre-headless 2>&1 | grep -v unsandboxed || true)
    rm -rf "$root"
    mkdir -p "$root"
    for deb in "$apt/debs"/*.deb; do
        dpkg -x "$deb" "$root"
    done
    [ -x "$root/usr/lib/jvm/java-17-openjdk-arm64/bin/java" ] || {
        echo "cross-tools.sh: no arm64 java in $root" >&2
        exit 1
    }
    touch "$root/.complete"
fi
