#!/usr/bin/env bash
# Whole-process timings of tessaphon-cli on generated documents: wall time, CPU time (user +
# system: on a machine busy with other work the wall time grows, the CPU time much less) and peak
# resident memory, medians of RUNS runs, from /usr/bin/time. Usage: bench/cli_bench.sh [build-dir]
#   RUNS=7 bench/cli_bench.sh build      QUICK=1 leaves out the one-hour cases
set -euo pipefail
BUILD=${1:-build}
RUNS=${RUNS:-5}
CLI=${CLI:-"$BUILD/bin/tessaphon-cli"} # another binary to compare: CLI=path bench/cli_bench.sh
WORK=${WORK:-"$BUILD/cli-bench"}
mkdir -p "$WORK"
[ -x "$CLI" ] || { echo "no $CLI: run make build first" >&2; exit 2; }

# A document of LENGTH ms whose every frame differs from the one before: the factory document
# of that length with each nonzero value moved by a small amount that changes every frame.
make_varying() { # length_ms output
    [ -s "$2" ] && return
    "$CLI" new --length "$1" -o "$2.base"
    python3 - "$2.base" "$2" <<'PY'
import sys
lines = open(sys.argv[1], "rb").read().split(b"\r\n")
names = next(i for i, l in enumerate(lines) if l and not l[:1].isdigit() and i > 2)
out = lines[:names + 1]
# show f6 (row 7), which makes the synthesizer run at 22050 Hz
flags = out[3].split(b"\t"); flags[7] = b"1"; out[3] = b"\t".join(flags)
for k, line in enumerate(lines[names + 1:]):
    if not line:
        out.append(line); continue
    vals = [int(v) for v in line.split(b"\t") if v]
    vals = [v + (k * 7 + r) % 11 if v > 0 else v for r, v in enumerate(vals)]
    out.append(b"".join(b"%d\t" % v for v in vals))
open(sys.argv[2], "wb").write(b"\r\n".join(out))
PY
    rm -f "$2.base"
}

# An 8 KB document whose first line declares one hour: the value lines stop after a few frames.
make_truncated() { # output
    [ -s "$1" ] && return
    "$CLI" new --length 1000 -o "$1.base"
    python3 - "$1.base" "$1" <<'PY'
import sys
data = open(sys.argv[1], "rb").read()
first, rest = data.split(b"\r\n", 1)
data = b"3600000\t11025\t10\t\r\n" + rest
open(sys.argv[2], "wb").write(data[:8192])
PY
    rm -f "$1.base"
}

make_varying 60000 "$WORK/60s.stk"
make_varying 600000 "$WORK/10min.stk"
make_varying 3600000 "$WORK/1h.stk"
make_truncated "$WORK/truncated-1h.stk"
make_varying 10000 "$WORK/10s.stk"
[ -s "$WORK/10s.wav" ] || "$CLI" synth "$WORK/10s.stk" -o "$WORK/10s.wav"

# median of the numbers on standard input
median() { sort -g | awk '{ a[NR] = $1 } END { print (NR % 2) ? a[(NR + 1) / 2] : (a[NR / 2] + a[NR / 2 + 1]) / 2 }'; }

run_case() { # label command...
    local label=$1; shift
    local times=() cpus=() mems=()
    for _ in $(seq "$RUNS"); do
        /usr/bin/time -f "%e %U %S %M" -o "$WORK/time.txt" "$@" >/dev/null 2>"$WORK/stderr.txt" || true
        read -r t u s m <"$WORK/time.txt"
        times+=("$t"); cpus+=("$(echo "$u + $s" | bc -l)"); mems+=("$m")
    done
    local tm cm mm
    tm=$(printf '%s\n' "${times[@]}" | median)
    cm=$(printf '%s\n' "${cpus[@]}" | median)
    mm=$(printf '%s\n' "${mems[@]}" | median)
    printf '%-44s %8.0f ms %8.0f ms %8.0f MB\n' "$label" "$(echo "$tm * 1000" | bc -l)" "$(echo "$cm * 1000" | bc -l)" \
        "$(echo "$mm / 1024" | bc -l)"
}

echo "load: $(uptime)"
echo "case (median of $RUNS)                        wall          CPU       peak RSS"
run_case "synth 60 s varying frames (22050 Hz)" "$CLI" synth "$WORK/60s.stk" -o "$WORK/out.wav"
run_case "info 10-minute document" "$CLI" info "$WORK/10min.stk"
run_case "awk splitting the 10-minute document" awk -F'\t' '{ n += NF } END { print n }' "$WORK/10min.stk"
run_case "synth 10-minute document" "$CLI" synth "$WORK/10min.stk" -o "$WORK/out.wav"
if [ -z "${QUICK:-}" ]; then # QUICK=1 leaves out the one-hour cases
    run_case "info one-hour document" "$CLI" info "$WORK/1h.stk"
    run_case "info 8 KB document declaring one hour" "$CLI" info "$WORK/truncated-1h.stk"
    run_case "synth 8 KB document declaring one hour" "$CLI" synth "$WORK/truncated-1h.stk" -o "$WORK/out.wav"
fi
run_case "phonemes: 10 words of text to a document" "$CLI" phonemes --text \
    "The quick brown fox jumps over the lazy dog today." -o "$WORK/text.stk"
run_case "formants 10 s, 1000 x 400" "$CLI" formants "$WORK/10s.wav" --columns 1000 --rows 400
# Copy synthesis of a 10 s recording (RECORDING=path, else the 10 s synthesis above): the trace
# path and, when the build has it, copysynth, recording to document; then the figures judging a
# synthesis of the traced document.
RECORDING=${RECORDING:-/work/shared/recordings/speech10s_11025.wav}
[ -s "$RECORDING" ] || RECORDING="$WORK/10s.wav"
run_case "trace 10 s recording to document" "$CLI" trace "$RECORDING" -o "$WORK/copy.stk" --force
if grep -q "^  copysynth " <<<"$("$CLI" --help)"; then
    run_case "copysynth 10 s recording to document" "$CLI" copysynth "$RECORDING" -o "$WORK/copy.stk" --force
fi
"$CLI" trace "$RECORDING" -o "$WORK/traced.stk" --force
"$CLI" synth "$WORK/traced.stk" -o "$WORK/traced.wav" --force 2>/dev/null
run_case "compare --summary 10 s recording and copy" "$CLI" compare "$RECORDING" "$WORK/traced.wav" --summary

# Inputs per second of the document fuzz targets, when they are built (make fuzz): libFuzzer
# with the address and undefined-behaviour sanitizers, FUZZ_SECONDS each on the kept corpus.
FUZZ_BUILD=${FUZZ_BUILD:-build-fuzz}
for target in fuzz_stk fuzz_undo; do
    [ -x "$FUZZ_BUILD/bin/$target" ] || continue
    corpus="$WORK/corpus-$target"
    mkdir -p "$corpus"
    "$FUZZ_BUILD/bin/$target" --make-seeds "$corpus" >/dev/null 2>&1 || true
    rate=$("$FUZZ_BUILD/bin/$target" -max_total_time="${FUZZ_SECONDS:-10}" -print_final_stats=1 "$corpus" \
        fuzz/corpus/$target 2>&1 | awk '/average_exec_per_sec/ { print $2 }')
    printf '%-44s %8s inputs/s\n' "$target (libFuzzer, sanitizers)" "${rate:-?}"
done
