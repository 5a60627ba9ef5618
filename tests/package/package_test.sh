#!/usr/bin/env bash
# One check of the installed package by name; the places come through the environment.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
check=$1
work=$SCRATCH/$check
rm -rf "$work"
mkdir -p "$work"

fail() { echo "$*" >&2; exit 1; }

with_find_package() {
    local prefix=$1
    "$CMAKE" -S "$here/consumer" -B "$work/cmake" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS"
    grep -q "^TorviAPI_DIR:PATH=$prefix/" "$work/cmake/CMakeCache.txt" || fail "another TorviAPI was found"
    "$CMAKE" --build "$work/cmake"
    "$work/cmake/consumer" "$work"
}

with_pkg_config() {
    local prefix=$1
    export PKG_CONFIG_PATH=$prefix/$LIBDIR/pkgconfig
    pkg-config --print-errors --exists 'TorviAPI >= 1.0'
    # shellcheck disable=SC2046  # flags are words
    "$CXX" -std=c++17 $CXXFLAGS "$here/consumer/main.cpp" -o "$work/consumer" $(pkg-config --cflags --libs TorviAPI)
    LD_LIBRARY_PATH=$prefix/$LIBDIR "$work/consumer" "$work"
}

case $check in
    InstallsIntoAPrefix)
        rm -rf "$PREFIX"
        "$CMAKE" --install "$BUILD_DIR" --prefix "$PREFIX" >/dev/null
        lib=$PREFIX/$LIBDIR
        [ -f "$lib/libTorviAPI.so.1.0.0" ] || fail "no library"
        [ "$(readlink "$lib/libTorviAPI.so.1")" = libTorviAPI.so.1.0.0 ] || fail "no link by the SONAME"
        [ "$(readlink "$lib/libTorviAPI.so")" = libTorviAPI.so.1 ] || fail "no link for the linker"
        readelf -d "$lib/libTorviAPI.so.1.0.0" | grep 'SONAME.*\[libTorviAPI\.so\.1\]' >/dev/null || fail "wrong SONAME"
        ! readelf -d "$lib/libTorviAPI.so.1.0.0" | grep -E 'R(UN)?PATH|TEXTREL' || fail "a path or relocations in code"
        ! grep -rl -e torviapi_objects -e "$BUILD_DIR" "$lib/cmake" "$lib/pkgconfig" || fail "the build leaks out"
        for tool in torvi torvi-nas; do
            [ ! -e "$BUILD_DIR/bin/$tool" ] || "$PREFIX/bin/$tool" --help >/dev/null || fail "$tool doesn't start"
        done
        ;;
    FindPackageBuildsAProgramThatRuns) with_find_package "$PREFIX" ;;
    PkgConfigBuildsAProgramThatRuns) with_pkg_config "$PREFIX" ;;
    MovedPrefixStillServesBoth)
        cp -a "$PREFIX" "$work/elsewhere"
        with_find_package "$work/elsewhere"
        with_pkg_config "$work/elsewhere"
        ldd "$work/cmake/consumer" | grep "$work/elsewhere" >/dev/null || fail "the program runs on another copy"
        ;;
    SharedObjectNeedsOnlyQtAndJsoncpp)
        readelf -d "$PREFIX/$LIBDIR/libTorviAPI.so.1" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | sort >"$work/needed"
        printf '%s\n' libQt5Core libQt5Network libc libgcc_s libjsoncpp libm libstdc++ ld-linux-x86-64 libasan libubsan |
            sort >"$work/allowed"
        sed 's/\.so.*//' "$work/needed" | sort | comm -23 - "$work/allowed" >"$work/extra"
        [ ! -s "$work/extra" ] || fail "needs more: $(cat "$work/extra")"
        ;;
    HeadersAreSelfContained)
        export PKG_CONFIG_PATH=$PREFIX/$LIBDIR/pkgconfig
        for header in "$PREFIX"/include/*.h; do
            # shellcheck disable=SC2046
            "$CXX" -std=c++17 -Wall -Wextra -Wpedantic -Werror -fsyntax-only -x c++ "$header" \
                $(pkg-config --cflags TorviAPI) || fail "$header needs something before it"
        done
        ;;
    *) fail "no such check: $check" ;;
esac
