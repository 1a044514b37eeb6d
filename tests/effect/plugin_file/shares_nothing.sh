#!/bin/sh
# What is built for more instructions than the baseline's must not lend its functions to the rest of the effect: the
# linker keeps one copy of an inline function, and it may be the one that an older processor cannot run.
# shares_nothing.sh <object...>: looks at those named *_avx2*.
looked=0
for object in "$@"; do
    case "$object" in
    *_avx2*) ;;
    *) continue ;;
    esac
    looked=$((looked + 1))
    shared="$(nm -C --defined-only "$object" | awk '$2 ~ /^[WVu]$/ && $3 !~ /^DW\.ref\./')"
    if [ -n "$shared" ]; then
        printf '%s shares:\n%s\n' "$object" "$shared" >&2
        exit 1
    fi
done
[ "$looked" -gt 0 ] || { echo "no object for more than the baseline was given" >&2; exit 1; }
