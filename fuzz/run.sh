#!/usr/bin/env bash
# Runs the fuzzers under AddressSanitizer and UndefinedBehaviorSanitizer, each from its kept corpus,
# and prints a line for each, then the counts. Usage:
#   fuzz/run.sh [SECONDS]  [TARGET]...         so long each (10)
#   fuzz/run.sh --executions N [TARGET]...     so many inputs each
# What they find lies in build/linux-fuzz/found/TARGET/, and beside it each input that breaks a
# promise: `build/linux-fuzz/bin/TARGET_fuzz FILE` plays it again.
set -uo pipefail

root=$(cd "$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/.." && pwd)
cd "$root" || exit 1
limit=(-max_total_time=10)
if [[ ${1-} == --executions ]]; then
    limit=(-runs="${2?Usage : fuzz/run.sh --executions N}")
    shift 2
elif [[ ${1-} =~ ^[0-9]+$ ]]; then
    limit=(-max_total_time="$1")
    shift
fi
targets=("$@")
((${#targets[@]})) || mapfile -t targets < <(ls fuzz/corpus)

if ! command -v clang++-14 >/dev/null; then
    for target in "${targets[@]}"; do echo "laissé $target : clang++-14 est absent"; done
    echo "0 réussis, 0 échoués, ${#targets[@]} laissés"
    exit 0
fi
tools/build.sh linux-fuzz || exit 1

found=build/linux-fuzz/found
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
fuzz() {
    local target=$1 log=$logs/$1
    mkdir -p "$found/$target"
    # Short inputs: what they mean together is seen soon, and many fit into a second.
    # A promise that does not hold, an overrun, an endless loop or too much memory end it.
    "build/linux-fuzz/bin/${target}_fuzz" "${limit[@]}" -max_len=320 -timeout=20 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$found/$target-" "$found/$target" \
        "fuzz/corpus/$target" >"$log" 2>&1
    local status=$? executions
    executions=$(sed -n 's/^stat::number_of_executed_units: *//p' "$log")
    if ((status == 0)); then
        echo "ok $target : $executions exécutions"
    else
        grep -aE '^FAUTE|^SUMMARY|^ERROR|runtime error|Test unit written' "$log" | sed 's/^/    /'
        echo "FAUTE fuzz $target (état $status)"
    fi
}
export -f fuzz
export found logs

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
