#!/usr/bin/env bash
# Copy synthesis on every recording of a folder, judged by compare --summary and by tools/mcd.py:
# "before" is the trace path (trace -> synth), "after" the copysynth path (copysynth -> synth,
# left out while the build has no copysynth command). Prints one table, recording by figure.
# Usage: bench/copysynth_eval.sh [build-dir] [recordings-dir]
#   bench/copysynth_eval.sh build /work/shared/recordings
set -euo pipefail
BUILD=${1:-build}
RECORDINGS=${2:-/work/shared/recordings}
CLI=${CLI:-"$BUILD/bin/tessaphon-cli"}
JUDGE=${JUDGE:-"$CLI"} # the build whose compare --summary judges (another: JUDGE=path)
WORK=${WORK:-"$BUILD/copysynth-eval"}
HERE=$(cd "$(dirname "$0")/.." && pwd)
for program in "$CLI" "$JUDGE"; do
    [ -x "$program" ] || { echo "no $program: run make build first" >&2; exit 2; }
done
ls "$RECORDINGS"/*.wav >/dev/null 2>&1 || { echo "$RECORDINGS: no .wav recordings" >&2; exit 2; }
mkdir -p "$WORK"
paths=("trace")
grep -q "^  copysynth " <<<"$("$CLI" --help)" && paths+=("copysynth")

# The summary line of one path on one recording, with mcd.py's figure and the clipping warning
# of the synthesis appended: "key=value ..." or "failed: why".
judge() { # path recording
    local path=$1 rec=$2 base stk wav
    base="$WORK/$(basename "$rec" .wav).$path"
    stk="$base.stk" wav="$base.wav"
    if ! "$CLI" "$path" "$rec" -o "$stk" --force >/dev/null 2>"$base.err"; then
        echo "failed: $(head -1 "$base.err")"; return
    fi
    "$CLI" synth "$stk" -o "$wav" --force >/dev/null 2>"$base.synth.err" || { echo "failed: synth"; return; }
    local line reference
    line=$("$JUDGE" compare "$rec" "$wav" --summary 2>/dev/null || echo "failed: compare")
    reference=$(/usr/bin/python3 "$HERE/tools/mcd.py" "$rec" "$wav" 2>/dev/null | awk '{ print $2 }')
    echo "$line mcd_py=${reference:-?}"
}

value() { # key line
    tr ' ' '\n' <<<"$2" | awk -F= -v k="$1" '$1 == k { print $2 }'
}

figures=(mcd_db mcd_py level_db f0_err_pct f0_gross_pct f1_err_pct f2_err_pct clipped)
echo "load: $(uptime | sed 's/.*load average/load average/')"
header="| recording | path |"
rule="|---|---|"
for f in "${figures[@]}"; do header+=" $f |"; rule+="---|"; done
echo "$header"
echo "$rule"
for rec in "$RECORDINGS"/*.wav; do
    for path in "${paths[@]}"; do
        line=$(judge "$path" "$rec")
        row="| $(basename "$rec" .wav) | $([ "$path" = trace ] && echo before || echo after) |"
        if [[ $line == failed* ]]; then
            row+=" $line |"
        else
            for f in "${figures[@]}"; do row+=" $(value "$f" "$line") |"; done
        fi
        echo "$row"
    done
done
