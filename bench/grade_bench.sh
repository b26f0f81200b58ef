#!/usr/bin/env bash
# The live grade's throughput next to ffmpeg's own filters on the same work:
# 1280x720 BGRA frames, one thread each. ffmpeg's figure is the time its
# filters add over a run without them (decoding and conversion to bgra are
# subtracted), from -benchmark's user time.
set -euo pipefail
cd "$(dirname "$0")/.."
BENCH_BUILD_DIR=${BENCH_BUILD_DIR:-build-release}
binary="$BENCH_BUILD_DIR/bench/grade_bench"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"$binary" --benchmark_format=json --benchmark_out="$work/ours.json" --benchmark_out_format=json \
  --benchmark_repetitions=3 --benchmark_report_aggregates_only=true >/dev/null
ours() {  # median Mpixel/s (or ms for parsing) of one benchmark
  python3 - "$work/ours.json" "$1" "$2" <<'PY'
import json, sys
data = json.load(open(sys.argv[1]))
for b in data["benchmarks"]:
    if b["run_name"] == sys.argv[2] and b["aggregate_name"] == "median":
        print("%.1f" % (b["Mpixel/s"] if sys.argv[3] == "rate" else b["real_time"]))
PY
}

# A 33-point look for lut3d, like the one the benchmark builds.
awk 'BEGIN { n = 33; print "LUT_3D_SIZE " n;
  for (b = 0; b < n; b++) for (g = 0; g < n; g++) for (r = 0; r < n; r++) {
    rv = r / (n - 1); gv = g / (n - 1); bv = b / (n - 1);
    printf "%.6f %.6f %.6f\n", 0.9 * rv * rv * (3 - 2 * rv) + 0.1 * gv, gv * gv * (3 - 2 * gv),
      0.85 * bv * bv * (3 - 2 * bv) + 0.1 * rv + 0.05 } }' > "$work/look.cube"

frames=240
ffmpeg -nostdin -hide_banner -loglevel error -f lavfi -i "testsrc2=size=1280x720:rate=25" \
  -frames:v $frames -c:v libx264 -preset ultrafast -qp 10 -pix_fmt yuv444p "$work/clip.mkv"

ffmpeg_seconds() {  # user CPU seconds of one single-threaded run through FILTERS
  ffmpeg -nostdin -hide_banner -benchmark -threads 1 -i "$work/clip.mkv" \
    -filter_threads 1 -vf "$1" -threads 1 -f null - 2>&1 |
    sed -n 's/.*bench: utime=\([0-9.]*\)s.*/\1/p'
}
best_of_three() {
  for _ in 1 2 3; do ffmpeg_seconds "$1"; done | sort -n | head -1
}
baseline=$(best_of_three "format=bgra")
ffmpeg_rate() {  # Mpixel/s the filters alone reach
  local total
  total=$(best_of_three "format=bgra,$1,format=bgra")
  python3 -c "import sys; t = $total - $baseline; print('%.1f' % ($frames * 1280 * 720 / 1e6 / t) if t > 0 else 'n/a')"
}
chain="exposure=exposure=0.35,colorbalance=rs=0.16:rm=0.16:rh=0.16:bs=-0.16:bm=-0.16:bh=-0.16,eq=contrast=1.15:saturation=1.25"
lut="lut3d=file=$work/look.cube:interp=tetrahedral"

row() {
  python3 -c "import sys; a, b = '$2', '$3'; r = ('%.1fx' % (float(a) / float(b))) if b not in ('n/a', '0.0') else 'n/a'; print('%-44s %10s %12s %8s' % ('$1', a, b, r))"
}
echo "Single thread, 1280x720 BGRA frames, Mpixel/s of CPU time (higher is better)"
printf '%-44s %10s %12s %8s\n' "work" "tavrelune" "ffmpeg" "ratio"
row "cube only (33) vs lut3d tetrahedral" "$(ours cubeOnly33 rate)" "$(ffmpeg_rate "$lut")"
row "grade without cube vs exposure+colorbalance+eq" "$(ours fullGradeWithoutCube rate)" "$(ffmpeg_rate "$chain")"
row "grade with cube (33) vs the chain with lut3d" "$(ours fullGradeWithCube33 rate)" "$(ffmpeg_rate "${chain/colorbalance/$lut,colorbalance}")"
echo
echo "Also (tavrelune only):"
echo "  cube only (64): $(ours cubeOnly64 rate) Mpixel/s"
echo "  grade with cube, changing every frame: $(ours fullGradeWithCube33ChangingEveryFrame rate) Mpixel/s"
echo "  portable kernels: with cube $(ours fullGradeWithCube33Portable rate), without $(ours fullGradeWithoutCubePortable rate) Mpixel/s"
echo "  read a 33-point .cube: $(ours parseCube/33 time) ms; a 65-point one (resampled to 64): $(ours parseCube/65 time) ms (wall clock)"
echo "  (goals: with cube >= 400, without >= 800 Mpixel/s; parse 33 <= 10 ms, 65 <= 80 ms)"
