#!/usr/bin/env bash
# Usage: fuzz.sh BUILD [--keep] [SECONDS] [TARGET...]
#
# Runs each target, all of them if none is named, for so many seconds (60), as many at once as
# there are processors. The next run goes on from what a run has learnt, BUILD/targets/TARGET/corpus.
# Inputs that break a promise, crash or hang are kept in BUILD/findings, and make it fail.
# With --keep, fuzz/corpus becomes what reaches the same code in as few small inputs.
set -euo pipefail
build=$1
shift
keep=0
if [[ ${1-} == --keep ]]; then
  keep=1
  shift
fi
seconds=60
if [[ ${1-} =~ ^[0-9]+$ ]]; then
  seconds=$1
  shift
fi
mapfile -t known < <("$build/bin/fuzz_replay" list)
(($#)) || set -- "${known[@]}"
for target in "$@"; do
  if [[ " ${known[*]} " != *" $target "* ]]; then
    echo "fuzz: no target $target; expected ${known[*]}" >&2
    exit 2
  fi
done
mkdir -p "$build/findings"
export build seconds keep
export ASAN_OPTIONS=detect_leaks=1:${ASAN_OPTIONS-} UBSAN_OPTIONS=print_stacktrace=1

run() { # TARGET
  local target=$1 place=$build/targets/$1 kept=fuzz/corpus/$1 code=0
  local fuzzer=("$build/bin/aceconv_fuzz" "--target=$target" -rss_limit_mb=2048)
  mkdir -p "$place/corpus" "$place/seeds" "$kept"
  if [[ $keep == 1 ]]; then
    rm -rf "$place/kept"
    mkdir "$place/kept"
    "${fuzzer[@]}" -max_len=480 -use_counters=0 -set_cover_merge=1 "$place/kept" "$kept" \
      "$place/corpus" "$place/seeds" >"$place/log" 2>&1 || code=$?
    ((code)) || { rm -rf "$kept" && mv "$place/kept" "$kept"; }
  else
    "$build/bin/fuzz_replay" words "$target" >"$place/words"
    "$build/bin/fuzz_replay" seeds "$target" "$place/seeds"
    local words=("-dict=$place/words")
    [[ -s $place/words ]] || words=()
    "${fuzzer[@]}" -max_len=4096 -max_total_time="$seconds" -timeout=30 "${words[@]}" \
      -artifact_prefix="$build/findings/$target-" -print_final_stats=1 \
      "$place/corpus" "$kept" "$place/seeds" >"$place/log" 2>&1 || code=$?
  fi
  if ((code)); then
    grep -aE -A 4 '^BROKEN|ERROR|^SUMMARY' "$place/log" | cut -c -400 >&2 || true
    echo "$target: failed with $code, see $place/log and $build/findings" >&2
    return 1
  fi
  awk -v target="$target" -v files="$(find "$kept" -type f | wc -l)" '
    match($0, /cov: [0-9]+ ft: [0-9]+/) { reached = substr($0, RSTART, RLENGTH) }
    /number_of_executed_units/ { runs = ", " $2 " executions" }
    END { print target ": " reached runs ", " files " kept inputs" }' "$place/log"
}
export -f run

printf '%s\n' "$@" | xargs -P "$(nproc)" -I TARGET bash -c 'set -euo pipefail; run TARGET'
