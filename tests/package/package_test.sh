#!/usr/bin/env bash
# One check of the installed package by name; the places come through the environment.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
check=$1
work=$SCRATCH/$check
rm -rf "$work"
mkdir -p "$work"

fail() { echo "$*" >&2; exit 1; }

build_against() {
    local prefix=$1 source=$2
    "$CMAKE" -S "$source" -B "$work/cmake" -G Ninja -DCMAKE_BUILD_TYPE=Debug \
        -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_CXX_FLAGS="$CXXFLAGS"
    grep -q "^TorviAPI_DIR:PATH=$prefix/" "$work/cmake/CMakeCache.txt" || fail "another TorviAPI was found"
    "$CMAKE" --build "$work/cmake"
}

with_find_package() {
    build_against "$1" "$here/consumer"
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

# Whether that process says in that file that it is ready; it doesn't if it ends, or says nothing for a minute.
becomes_ready() {
    for _ in $(seq 600); do
        ! grep -q '^torvi-[a-z]* ready' "$2" || return 0
        kill -0 "$1" 2>/dev/null || return 1
        sleep 0.1
    done
    return 1
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
        for tool in torvi torvi-nas torvi-cloud; do
            [ ! -e "$BUILD_DIR/bin/$tool" ] || "$PREFIX/bin/$tool" --help >/dev/null || fail "$tool doesn't start"
        done
        ;;
    FindPackageBuildsAProgramThatRuns) with_find_package "$PREFIX" ;;
    TheExamplesSayWhatTheServerHas)
        nas=$BUILD_DIR/bin/torvi-nas
        [ -x "$nas" ] || { echo "torvi-nas isn't built"; exit 0; }
        mkdir -p "$work/nas/Public" "$work/example"
        touch "$work/nas/Public/first file" "$work/nas/Public/second"
        trap 'kill $(jobs -p) 2>/dev/null || true' EXIT
        # The cloud's clients know its ports and no others. Where they can't be had, the NAS is listed nowhere.
        place=127.$((128 + RANDOM % 100)).$((RANDOM % 256)).$((1 + RANDOM % 254))
        listed=()
        "$BUILD_DIR/bin/torvi-cloud" --address "$place" --port 80 --tls-port 443 --app desk-app:desk-secret \
            --user ann:ann-refresh --user ben:ben-refresh >"$work/cloud-ready" 2>"$work/cloud.log" &
        if becomes_ready $! "$work/cloud-ready"; then
            listed=(--cloud "http://$place" --cloud-user ann --device-name Cellar)
        else
            grep -q -e "cannot listen on $place:[0-9]*: Permission denied\$" \
                -e "cannot listen on $place:[0-9]*: Address already in use\$" "$work/cloud.log" ||
                fail "torvi-cloud doesn't start: $(cat "$work/cloud.log")"
        fi
        "$nas" --root "$work/nas" --port 0 --user ann:secret --user bob:hidden --description "bob:Bob of sales" \
            --team ann:/home/Plans:bob "${listed[@]}" >"$work/ready" 2>"$work/nas.log" &
        # They are as they stand in the documentation, but for the port: the server takes one that is free.
        cp "$here"/../../docs/example/* "$work/example"
        CXXFLAGS="$CXXFLAGS -Wall -Wextra -Werror" build_against "$PREFIX" "$work/example"
        becomes_ready $! "$work/ready" || fail "torvi-nas doesn't start: $(cat "$work/nas.log")"
        port=$(sed -n 's/^torvi-nas ready http=127\.0\.0\.1:\([0-9]*\) .*/\1/p' "$work/ready")
        sed -i "s/8080/$port/g" "$work"/example/*.cpp
        "$CMAKE" --build "$work/cmake"
        says() {
            local program=$1
            shift
            # shellcheck disable=SC2086  # a program with arguments
            "$work/cmake/"$program >"$work/said"
            printf '%s\n' "$@" | sort | diff - <(sort "$work/said") || fail "$program says: $(cat "$work/said")"
        }
        says example 'dwStatus 0, result word 0' 'first file' second
        says sharing 'user ann (-)' 'user bob (Bob of sales)' 'team folder Plans for bob' 'share /home/Plans/'
        if [ ${#listed[@]} -gt 0 ]; then
            printf 'desk-secret\nann-refresh\n' |
                says "cloud $place desk-app" 'device Cellar' "logged in to torvi-nas at 127.0.0.1:$port"
            # Ben has no device, and is told so in one line.
            code=0
            printf 'desk-secret\nben-refresh\n' |
                "$work/cmake/cloud" "$place" desk-app >"$work/said" 2>"$work/told" || code=$?
            [ $code = 1 ] && [ ! -s "$work/said" ] && echo 'no address to log in at: ""' | diff - "$work/told" ||
                fail "cloud ends with $code and says: $(cat "$work/said" "$work/told")"
        else
            echo "the cloud is left out: $(cat "$work/cloud.log")"
        fi
        ;;
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
