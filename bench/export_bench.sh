#!/usr/bin/env bash
# Export speed and overhead: a graded 1080p30 clip with a LUT converted
# through the export engine and, with the same arguments, by ffmpeg directly,
# for each software encoder preset considered. Also reports SSIM against the
# graded source at the bitrate of the "High" preset.
#
# Environment: BENCH_BUILD_DIR (default build-release), EXPORT_BENCH_SECONDS
# (clip length, default 10), EXPORT_BENCH_REPS (repetitions, default 1),
# EXPORT_BENCH_PRESETS (default: the list below).
set -euo pipefail
cd "$(dirname "$0")/.."
build=${BENCH_BUILD_DIR:-build-release}
seconds=${EXPORT_BENCH_SECONDS:-10}
reps=${EXPORT_BENCH_REPS:-1}
presets=${EXPORT_BENCH_PRESETS:-"h264:veryfast h264:faster h264:medium hevc:ultrafast hevc:superfast hevc:fast hevc:medium"}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Mild temporal noise stands in for camera grain, so the encoders have real
# detail to spend bits on.
ffmpeg -nostdin -hide_banner -loglevel error -y \
  -f lavfi -i "testsrc2=size=1920x1080:rate=30:duration=$seconds" \
  -f lavfi -i "sine=frequency=440:sample_rate=48000:duration=$seconds" \
  -vf "noise=alls=4:allf=t" -c:v libx264 -preset veryfast -crf 18 -pix_fmt yuv420p \
  -c:a aac "$work/source.mp4"

# A 17-point cube with a gentle warm S-curve.
python3 - "$work/look.cube" <<'PY'
import sys
n = 17
with open(sys.argv[1], "w") as f:
    f.write(f"LUT_3D_SIZE {n}\n")
    curve = lambda v: v * v * (3 - 2 * v) * 0.6 + v * 0.4
    for b in range(n):
        for g in range(n):
            for r in range(n):
                f.write(f"{min(1, curve(r/(n-1))*1.03):.6f} {curve(g/(n-1)):.6f} {curve(b/(n-1))*0.97:.6f}\n")
PY

# shellcheck disable=SC2086
"$build/bench/export_bench" --benchmark_repetitions="$reps" --benchmark_report_aggregates_only=false \
  --benchmark_format=console --benchmark_out="$work/result.json" --benchmark_out_format=json \
  "$work/source.mp4" "$work/look.cube" "$work" "$seconds" $presets >/dev/null 2>"$work/bench.log" \
  || { cat "$work/bench.log" >&2; exit 1; }

grade=$(cat "$work/grade.txt")
printf '%-16s %9s %9s %8s %11s %8s\n' "encoder:preset" "ours s" "direct s" "ratio" "x realtime" "SSIM"
for preset in $presets; do
  name=${preset/:/-}
  ssim=$(ffmpeg -nostdin -hide_banner -i "$work/$name.mp4" -i "$work/source.mp4" \
    -lavfi "[1:v]$grade[ref];[0:v][ref]ssim" -f null - 2>&1 | sed -n 's/.*All:\([0-9.]*\).*/\1/p' | tail -1)
  python3 - "$work/result.json" "$preset" "$ssim" <<'PY'
import json, sys
runs = [b for b in json.load(open(sys.argv[1]))["benchmarks"]
        if b["name"].split("/")[0] == sys.argv[2] and b.get("run_type") == "iteration"]
ours = sum(b["ours_s"] for b in runs) / len(runs)
direct = sum(b["direct_s"] for b in runs) / len(runs)
speed = sum(b["x_realtime"] for b in runs) / len(runs)
print(f"{sys.argv[2]:<16} {ours:9.2f} {direct:9.2f} {ours/direct:8.3f} {speed:10.2f}x {sys.argv[3]:>8}")
PY
done
