#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine and runs one of the project's jobs.
#   ./build.sh example   build, then run streamgen on a shipped example
#   ./build.sh test      build and run the unit tests (default preset)
#   ./build.sh asan      build and run the unit tests under ASan+UBSan
#   ./build.sh install   build, install to a temporary prefix and build and run consumers of it
#   ./build.sh fuzz [S]  build every fuzz target with clang and run each for S seconds (default 45)
set -euo pipefail
cd "$(dirname "$0")"

packages=(build-essential cmake ninja-build pkg-config libgtest-dev libgmock-dev libbenchmark-dev
          nlohmann-json3-dev libcli11-dev libpcap-dev clang libclang-rt-dev tshark
          libprotobuf-dev protobuf-compiler python3-dev pybind11-dev python3-numpy
          python3-scapy mypy libxdp-dev libbpf-dev iproute2 nftables)

install_missing() {
    local missing=()
    for p in "${packages[@]}"; do
        dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
    done
    if ((${#missing[@]})); then
        echo "installing: ${missing[*]}" >&2
        local sudo=""
        [ "$(id -u)" -eq 0 ] || sudo="sudo"
        $sudo apt-get update -qq
        DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
    fi
}

build() {
    local preset=$1
    shift
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$(nproc)" "$@"
}

job=${1:-test}
install_missing
case "$job" in
    example)
        build default
        exec ./examples/run-example.sh build/default
        ;;
    test)
        build default
        ctest --preset default
        ;;
    asan)
        build asan
        ctest --preset asan
        ;;
    install)
        build default
        tests/install/check.sh build/default
        ;;
    fuzz)
        targets=(decode parsers engine blockfile)
        build fuzz --target "${targets[@]/#/fuzz_}"
        for t in "${targets[@]}"; do
            echo "fuzzing $t for ${2:-45} s" >&2
            fuzz/run.sh "$t" -max_total_time="${2:-45}"
        done
        ;;
    *)
        echo "usage: $0 example|test|asan|install|fuzz [seconds]" >&2
        exit 2
        ;;
esac
