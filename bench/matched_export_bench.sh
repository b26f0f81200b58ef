#!/usr/bin/env bash
# "Match preview colours" in one run: how far exported frames are from the
# graded preview (matched export and filter chain, against the encoder's own
# round-trip error) on a 1080p gradient and testsrc2, for three grades and a
# 33-point LUT; then the wall time of a graded 1080p30 H.264 export with a
# LUT, matched against the filter chain, and the matched export's multiple
# of real time; and, since the encoder's share bounds that ratio, the CPU
# time of the two video filter graphs alone (as the dry run prints them).
#
# Environment: BENCH_BUILD_DIR (default build-release), MATCHED_BENCH_SECONDS
# (length of the timed clip, default 10), MATCHED_BENCH_REPS (default 1).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BENCH_BUILD_DIR:-build-release}
seconds=${MATCHED_BENCH_SECONDS:-10}
reps=${MATCHED_BENCH_REPS:-1}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
encode=(-c:v libx264 -preset veryfast -crf 12 -pix_fmt yuv420p)

ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi \
  -i "nullsrc=size=1920x1080:rate=30:duration=1,format=gbrp,geq=r='X/W*255':g='Y/H*255':b='(1-X/W)*200+28'" \
  "${encode[@]}" "$work/gradient.mp4"
ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi -i "testsrc2=size=1920x1080:rate=30:duration=1" \
  "${encode[@]}" "$work/testsrc2.mp4"
# Mild temporal noise stands in for camera grain.
ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi -i "testsrc2=size=1920x1080:rate=30:duration=$seconds" \
  -vf "noise=alls=4:allf=t" "${encode[@]}" "$work/timed.mp4"

# A 33-point cube: a warm S-curve with some cross-talk.
python3 - "$work/look.cube" <<'PY'
import sys
n = 33
curve = lambda v: v * v * (3 - 2 * v) * 0.6 + v * 0.4
with open(sys.argv[1], "w") as f:
    f.write(f"LUT_3D_SIZE {n}\n")
    for b in range(n):
        for g in range(n):
            for r in range(n):
                R, G, B = r / (n - 1), g / (n - 1), b / (n - 1)
                f.write(f"{min(1, curve(R) * 1.04 + 0.03 * G):.6f} {curve(G):.6f} {curve(B) * 0.94 + 0.02 * R:.6f}\n")
PY

"$build/bench/matched_export_bench" --benchmark_repetitions="$reps" --benchmark_out="$work/result.json" \
  --benchmark_out_format=json "$work" "$work/look.cube" "$work/timed.mp4" "$seconds" \
  "$work/gradient.mp4" "$work/testsrc2.mp4" >/dev/null 2>"$work/bench.log" \
  || { cat "$work/bench.log" >&2; exit 1; }

echo "Preview vs export, per channel in 8-bit steps (mean/p95):"
cat "$work/accuracy.txt"
echo
python3 - "$work/result.json" "$seconds" <<'PY'
import json, sys
runs = [b for b in json.load(open(sys.argv[1]))["benchmarks"] if b.get("run_type") == "iteration"]
def mean(name, key):
    values = [b[key] for b in runs if b["name"].split("/")[0] == name]
    return sum(values) / len(values)
matched, chain = mean("matched", "seconds"), mean("filter_chain", "seconds")
print(f"Graded 1080p30 H.264 export with a LUT, {sys.argv[2]} s of video:")
print(f"  matched      {matched:7.2f} s  {float(sys.argv[2]) / matched:5.2f}x real time")
print(f"  filter chain {chain:7.2f} s  {float(sys.argv[2]) / chain:5.2f}x real time")
print(f"  matched is {chain / matched:.2f}x faster")
open(sys.argv[1] + ".chain", "w").write(str(chain))  # for the last step
PY

# The filter graphs alone, decoding included, encoding left out.
graph() {
  "$build/tavrelune" convert --dry-run --codec h264 --exposure 0.3 --contrast 1.1 --saturation 1.2 \
    --temperature 30 "$@" -o "$work/out" "$work/timed.mp4" "$work/look.cube" \
    | python3 -c 'import json, sys; a = json.loads(sys.stdin.read().splitlines()[0]); print(a[a.index("-vf") + 1])'
}
cpu() {
  /usr/bin/time -f "%U %S" ffmpeg -nostdin -hide_banner -loglevel error -i "$work/timed.mp4" "$@" -f null - 2>&1 \
    | tail -1 | awk '{print $1 + $2}'
}
matched_graph=$(graph --match-preview)
chain_graph=$(graph --filter-chain)
# The dry run points into the working folder (a run folder or its stand-in);
# the timed run left the baked table (same grade, same name) in $work, and
# the chain reads a staged copy.
local_tables() { sed "s#lut3d=file=[^:]*/#lut3d=file=$work/#"; }
cp "$work/look.cube" "$work/active-lut.cube"
decode=$(cpu)
matched_cpu=$(cpu -vf "$(local_tables <<<"$matched_graph")")
chain_cpu=$(cpu -vf "$(local_tables <<<"$chain_graph")")
python3 - "$decode" "$matched_cpu" "$chain_cpu" <<'PY'
import sys
decode, matched, chain = map(float, sys.argv[1:])
print("Video filter graph alone, CPU seconds beyond decoding:")
print(f"  matched {matched - decode:6.2f}   filter chain {chain - decode:6.2f}   ratio {(chain - decode) / (matched - decode):.2f}x")
PY

# What bounds the ratio: the share of the matched export's CPU time that its
# filter graph takes. The rest is decoding and encoding with the export's
# own encoder settings, which no grade path can avoid.
"$build/tavrelune" convert --dry-run --codec h264 --exposure 0.3 --contrast 1.1 --saturation 1.2 \
  --temperature 30 --match-preview -o "$work/out" "$work/timed.mp4" "$work/look.cube" | head -1 >"$work/matched.json"
python3 - "$work/matched.json" "$work" "$work/result.json.chain" "$matched_cpu" "$decode" <<'PY'
import json, re, resource, subprocess, sys, time
arguments = json.load(open(sys.argv[1]))
at = arguments.index("-vf")
arguments[at + 1] = re.sub(r"lut3d=file=[^:]*/", "lut3d=file=" + sys.argv[2] + "/", arguments[at + 1])
at = arguments.index("-progress")
del arguments[at:at + 2]
arguments[-1] = sys.argv[2] + "/matched-again.mp4"
started = time.monotonic()
subprocess.run(arguments, check=True)
wall = time.monotonic() - started
usage = resource.getrusage(resource.RUSAGE_CHILDREN)
cpu = usage.ru_utime + usage.ru_stime
chain = float(open(sys.argv[3]).read())
share = (float(sys.argv[4]) - float(sys.argv[5])) / cpu
print(f"The matched export's ffmpeg alone: {wall:.2f} s, {cpu:.2f} s of CPU, of which its filter graph {share * 100:.0f} %;")
print(f"  with a filter graph that cost nothing it would be at most {chain / (wall * (1 - share)):.2f}x faster than the chain")
PY
