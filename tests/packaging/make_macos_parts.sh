#!/bin/sh
# make_macos_parts.sh <source> <build> <property_list> <compiler>: what of the bundle needs no Mac. The build is configured
# as for one; the compiler is named and not asked to compile anything.
set -e
rm -rf "$2"
cmake -S "$1" -B "$2" -G Ninja -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_SYSTEM_PROCESSOR=arm64 \
    '-DCMAKE_OSX_ARCHITECTURES=arm64;x86_64' -DCMAKE_OSX_SYSROOT=/ "-DCMAKE_CXX_COMPILER=$4" \
    -DCMAKE_CXX_COMPILER_FORCED=ON -DFILIGRANE_PLUGIN_ONLY=ON "-DFILIGRANE_PROPERTY_LIST_TOOL=$3"
cmake --build "$2" --target Filigrane.plugin/Contents/Resources/Filigrane.rsrc Filigrane.plugin/Contents/PkgInfo
