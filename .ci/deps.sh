#!/usr/bin/env bash
# Installs what the named jobs need and the machine lacks (Debian packages only).
# Usage: .ci/deps.sh build|java|demo|bench|fuzz|format|mutate|cross ...
set -euo pipefail

want=()
need_pkg() { dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'install ok installed' || want+=("$1"); }
need_cmd() { command -v "$1" >/dev/null 2>&1 || want+=("$2"); }

for job in "$@"; do
    case "$job" in
        build)
            need_cmd cmake cmake
            need_cmd g++ g++
            need_cmd ninja ninja-build
            need_cmd make make
            need_pkg libgtest-dev
            # the Java binding is compiled into the library: it needs the JDK's JNI headers
            need_cmd javac openjdk-17-jdk-headless
            # the export checks read the library with LLVM's tools (any of ELF, PE, Mach-O)
            need_cmd llvm-readobj llvm
            ;;
        java) need_cmd javac openjdk-17-jdk-headless; need_cmd mvn maven ;;
        demo) need_cmd javac openjdk-17-jdk-headless; need_cmd mvn maven; need_pkg fonts-dejavu-core ;;
        bench) need_pkg libbenchmark-dev ;;
        fuzz) need_cmd clang++ clang; need_pkg libclang-rt-14-dev ;;
        format) need_cmd clang-format clang-format ;;
        # Cross builds (zig itself comes from PyPI, see cross-tools.sh): GoogleTest's sources,
        # qemu-user and wine to run the targets' tests, LLVM's readers of ELF, PE and Mach-O
        cross)
            need_cmd python3 python3
            python3 -m pip --version >/dev/null 2>&1 || want+=(python3-pip)
            need_pkg googletest
            need_cmd qemu-aarch64 qemu-user
            [ -x /usr/lib/wine/wine64 ] || need_cmd wine64 wine64
            need_cmd unzip unzip
            ;;
        # universalmutator is installed from PyPI into a virtual environment of the build tree
        mutate) need_cmd python3 python3; python3 -c 'import venv, ensurepip' 2>/dev/null || want+=(python3-venv) ;;
        *) echo "deps.sh: unknown job '$job'" >&2; exit 2 ;;
    esac
done

[ ${#want[@]} -eq 0 ] && exit 0
mapfile -t want < <(printf '%s\n' "${want[@]}" | sort -u)
echo "Installing: ${want[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${want[@]}"
