#!/usr/bin/env bash
# Runs the fuzzers under AddressSanitizer and UndefinedBehaviorSanitizer, each from its kept corpus,
# and prints a line for each, then the counts. Usage:
#   fuzz/run.sh [SECONDS]  [TARGET]...         so long each (10)
#   fuzz/run.sh --executions N [TARGET]...     until each program has had so many inputs
# --built before anything else takes the programs as they are, and builds none.
# The executions of a program are kept beside what it has found: one that is cut off is taken up
# where it was, and one that is built anew begins again. What they find lies in
# build/linux-fuzz/found/TARGET/, and beside it each input that breaks a promise:
# `build/linux-fuzz/bin/TARGET_fuzz FILE` plays it again.
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
seconds=10 wanted='' built=''
if [[ ${1-} == --built ]]; then
    built=1
    shift
fi
if [[ ${1-} == --executions ]]; then
    wanted=${2?Usage : fuzz/run.sh --executions N}
    shift 2
elif [[ ${1-} =~ ^[0-9]+$ ]]; then
    seconds=$1
    shift
fi
targets=("$@")
((${#targets[@]})) || mapfile -t targets < <(ls fuzz/corpus)

if ! command -v clang++-14 >/dev/null; then
    for target in "${targets[@]}"; do echo "laissé $target : clang++-14 est absent"; done
    echo "0 réussis, 0 échoués, ${#targets[@]} laissés"
    exit 0
fi
[[ -n $built ]] || tools/build.sh linux-fuzz || exit 1

found=build/linux-fuzz/found
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
# Where an allocation was made is told when its input is played again. A small store of freed memory
# is left: a large one costs more than the program itself.
export ASAN_OPTIONS=malloc_context_size=1:quarantine_size_mb=1:thread_local_quarantine_size_kb=64
# Short inputs: what they mean together is seen soon, and many fit into a second. What a list costs
# that is written entry by entry grows with its square.
longest() {
    case $1 in
        exclusions) echo 64 ;;
        arguments) echo 128 ;;
        settings_text | hash_list | certificate) echo 200 ;;
        *) echo 320 ;;
    esac
}
# A promise that does not hold, an overrun, an endless loop or too much memory end it. A loop is not
# called endless before two minutes: on a busy machine an input may wait long for its turn.
fuzz_once() {
    local target=$1 log=$logs/$1
    shift
    "build/linux-fuzz/bin/${target}_fuzz" "$@" -max_len="$(longest "$target")" -timeout=120 \
        -report_slow_units=120 -rss_limit_mb=2048 -reload=0 -print_final_stats=1 -artifact_prefix="$found/$target-" "$found/$target" \
        "fuzz/corpus/$target" >"$log" 2>&1
    status=$?
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    total=$((total + ${executions:-0}))
    echo "$total" >"$tally"
}
fuzz() {
    local target=$1 status=0 executions total=0 tally left
    mkdir -p "$found/$target"
    tally=$found/$target-$(cksum <"build/linux-fuzz/bin/${target}_fuzz" | cut -d ' ' -f 1).total
    [[ ! -f $tally ]] || total=$(<"$tally")
    if [[ -z $wanted ]]; then
        fuzz_once "$target" -max_total_time="$seconds"
    else
        while ((status == 0 && (left = wanted - total) > 0)); do
            fuzz_once "$target" -runs=$((left < slice ? left : slice))
        done
    fi
    if ((status == 0)); then
        echo "ok $target : ${executions:-0} exécutions, $total en tout"
    else
        grep -aE '^FAUTE|^SUMMARY|^ERROR|runtime error|Test unit written' "$logs/$target" |
            sed 's/^/    /'
        echo "FAUTE fuzz $target (état $status)"
    fi
}
slice=250000
export -f fuzz fuzz_once longest
export found logs seconds wanted slice

passed=0
failed=0
# One a core: each works by itself.
slots=$(nproc)
while IFS= read -r line; do
    echo "$line"
    case $line in
        'ok '*) passed=$((passed + 1)) ;;
        'FAUTE '*) failed=$((failed + 1)) ;;
    esac
done < <(
    for target in "${targets[@]}"; do
        while (($(jobs -rp | wc -l) >= slots)); do wait -n; done
        fuzz "$target" &
    done
    wait
)
echo "$passed réussis, $failed échoués, 0 laissés"
((failed == 0 && passed > 0))
