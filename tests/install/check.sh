#!/usr/bin/env bash
# Installs a build to a temporary prefix, moves the tree elsewhere (the package must not
# depend on where it was installed) and checks it as its consumers see it:
#   - a CMake consumer (find_package) built with clang++ and no flags;
#   - a pkg-config consumer built with clang++ -std=c++20 (vrm.pc must not lower it);
#   - a host of the traffic library (find_package) writes shaped frames whose checksums
#     tshark finds right;
#   - streamgen runs from <prefix>/bin without LD_LIBRARY_PATH;
#   - the libraries export no standard library template instances.
#   tests/install/check.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: $0 BUILD_DIR}" && pwd)
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH

cmake --install "$build" --prefix "$work/installed" >/dev/null
mv "$work/installed" "$work/moved"
prefix=$work/moved
libdir=$(dirname "$(find "$prefix" -name vrm.pc -path '*/pkgconfig/*')")/..

echo "find_package consumer (clang++, no flags)"
cmake -S "$here" -B "$work/cmake" -G Ninja -DCMAKE_CXX_COMPILER=clang++ -DCMAKE_PREFIX_PATH="$prefix" >/dev/null
cmake --build "$work/cmake" >/dev/null
"$work/cmake/consumer"

echo "traffic host (find_package, vrm::traffic)"
"$work/cmake/traffic_host" "$here/../../examples/ipv4-random-prbs.json" "$work/host.pcap" 2000
if command -v tshark >/dev/null 2>&1; then
    read -ra heur <<<"$(tshark -G heuristic-decodes 2>/dev/null |
        awk '($1 == "udp" || $1 == "tcp") && $3 == "T" { printf " --disable-protocol %s", $2 }')"
    good=$(tshark -n -r "$work/host.pcap" "${heur[@]}" -o ip.check_checksum:TRUE -o udp.check_checksum:TRUE \
        -Y 'ip.checksum.status == 1 && udp.checksum.status == 1 && !_ws.malformed' 2>/dev/null | wc -l)
    [ "$good" -eq 2000 ] || { echo "traffic host: $good of 2000 frames with good checksums" >&2; exit 1; }
fi

echo "pkg-config consumer (clang++ -std=c++20)"
export PKG_CONFIG_PATH=$libdir/pkgconfig
cflags=$(pkg-config --cflags vrm)
case "$cflags" in *-std=*) echo "vrm.pc sets the language standard: $cflags" >&2; exit 1 ;; esac
case "$cflags" in *"$prefix"*) ;; *) echo "vrm.pc does not point into the prefix: $cflags" >&2; exit 1 ;; esac
# shellcheck disable=SC2046
clang++ -std=c++20 "$here/consumer.cpp" $cflags $(pkg-config --libs vrm) -Wl,-rpath,"$(cd "$libdir" && pwd)" \
    -o "$work/pc-consumer"
"$work/pc-consumer"

echo "streamgen from the prefix"
"$prefix/bin/streamgen" validate "$here/../../examples/ipv4-udp.json"

echo "Python module from the prefix"
module=$(find "$prefix" -name 'vrm*.so' -path '*dist-packages*' | head -1)
if [ -n "$module" ]; then
    PYTHONPATH=$(dirname "$module") python3 -c 'import vrm; vrm.Block.from_json("'"$here"'/../../examples/ipv4-udp.json").plan()'
else
    echo "  (not built)"
fi

echo "exports"
for lib in "$libdir"/libvrm.so "$libdir"/libtmplatform.so "$libdir"/libvrmtraffic.so; do
    # Mangled names in namespace std or __gnu_cxx, their type information and tables.
    if nm -D --defined-only "$lib" | awk '{print $3}' | grep -E '^_Z(T[ISV])?(NK?)?(St|9__gnu_cxx)' | c++filt; then
        echo "$lib exports standard library instances" >&2
        exit 1
    fi
done
echo "install checks passed"
