#!/usr/bin/env bash
# A fuzzing campaign: builds the fuzz targets (clang, "fuzz" preset) and runs every target
# for RUNS executions, one after the other at the lowest priority, then prints the runs each
# reached and whether it found anything (the input is in build/fuzz/artifacts/).
#   fuzz/campaign.sh RUNS            e.g. fuzz/campaign.sh 10000000
# Logs: build/fuzz/campaign/TARGET.log. Exit status 1 when a target found something.
set -uo pipefail
cd "$(dirname "$0")/.."
runs=${1:?usage: $0 RUNS}
targets=(decode parsers engine blockfile)
cmake --preset fuzz >/dev/null && cmake --build --preset fuzz -j 2 --target "${targets[@]/#/fuzz_}" >/dev/null || exit 2
mkdir -p build/fuzz/campaign
status=0
for t in "${targets[@]}"; do
    log=build/fuzz/campaign/$t.log
    start=$(date +%s)
    nice -n 19 fuzz/run.sh "$t" -runs="$runs" >"$log" 2>&1
    rc=$?
    done_runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$log" | tail -1 | grep -o '[0-9]*$')
    result="no finding"
    if ((rc != 0)); then
        result="FINDING: $(grep -m1 -E 'ERROR|runtime error|terminate called' "$log" || echo "exit $rc"); see $log"
        status=1
    fi
    printf '%-10s %12s runs  %6ss  %s\n' "$t" "${done_runs:-?}" "$(($(date +%s) - start))" "$result"
done
exit $status
