#!/usr/bin/env bash
# Live preview playback: clips played through the real player and views
# under Xvfb with Mesa's software rasteriser, graded (full grade and a
# 33-point cube) and plain. The clips are made once and kept next to the
# build (the 4K HEVC one takes a minute or two to encode).
set -euo pipefail
cd "$(dirname "$0")/.."
BENCH_BUILD_DIR=${BENCH_BUILD_DIR:-build-release}
binary="$BENCH_BUILD_DIR/bench/preview_bench"
clips="$BENCH_BUILD_DIR/preview-clips"
seconds=${PREVIEW_BENCH_SECONDS:-10}
mkdir -p "$clips"

# Camera-like bitrates: a noisy test pattern does not compress away.
tags=(-colorspace bt709 -color_primaries bt709 -color_trc bt709 -color_range tv)
make_clip() {  # name size rate codec bitrate pixel-format
  local out="$clips/$1.mp4"
  [[ -f "$out" ]] && return
  local codec=(-c:v libx264 -preset veryfast)
  [[ $4 == hevc ]] && codec=(-c:v libx265 -preset ultrafast -x265-params log-level=error -tag:v hvc1)
  ffmpeg -nostdin -hide_banner -loglevel error -y -f lavfi -i "testsrc2=size=$2:rate=$3:duration=10" \
    -vf "noise=alls=6:allf=t" "${codec[@]}" -b:v "$5" -maxrate "$5" -bufsize "$5" -g $((2 * $3)) \
    -pix_fmt "$6" "${tags[@]}" "$clips/$1.tmp.mp4"
  mv "$clips/$1.tmp.mp4" "$out"
}
make_clip 1080p30-h264 1920x1080 30 h264 16M yuv420p
make_clip 720p60-h264 1280x720 60 h264 10M yuv420p
make_clip 4k30-hevc10-landscape 3840x2160 30 hevc 40M yuv420p10le
# A phone's portrait clip: stored landscape, tagged to be turned.
if [[ ! -f "$clips/4k30-hevc10-phone.mp4" ]]; then
  ffmpeg -nostdin -hide_banner -loglevel error -y -i "$clips/4k30-hevc10-landscape.mp4" -c copy \
    -metadata:s:v:0 rotate=90 "$clips/4k30-hevc10-phone.mp4"
fi

# The same phone clip as HLG and as PQ (the tags rewritten in the stream):
# the preview then runs its HDR conversion, which costs what is measured.
for transfer in hlg:18 pq:16; do
  out="$clips/4k30-hevc10-phone-${transfer%%:*}.mp4"
  [[ -f "$out" ]] || ffmpeg -nostdin -hide_banner -loglevel error -y -i "$clips/4k30-hevc10-phone.mp4" -c copy \
    -bsf:v "hevc_metadata=colour_primaries=9:transfer_characteristics=${transfer##*:}:matrix_coefficients=9" \
    -color_primaries bt2020 -colorspace bt2020nc -metadata:s:v:0 rotate=90 "$out"
done
[[ -f "$clips/1080p30-hlg.mp4" ]] || ffmpeg -nostdin -hide_banner -loglevel error -y -i "$clips/1080p30-h264.mp4" \
  -c copy -bsf:v "h264_metadata=colour_primaries=9:transfer_characteristics=18:matrix_coefficients=9" \
  -color_primaries bt2020 -colorspace bt2020nc "$clips/1080p30-hlg.mp4"

awk 'BEGIN { n = 33; print "LUT_3D_SIZE " n;
  for (b = 0; b < n; b++) for (g = 0; g < n; g++) for (r = 0; r < n; r++) {
    rv = r / (n - 1); gv = g / (n - 1); bv = b / (n - 1);
    printf "%.6f %.6f %.6f\n", 0.9 * rv * rv * (3 - 2 * rv) + 0.1 * gv, gv * gv * (3 - 2 * gv),
      0.85 * bv * bv * (3 - 2 * bv) + 0.1 * rv + 0.05 } }' > "$clips/look.cube"

echo "Playback for ${seconds} s per clip and view, 1280x720 view, grade: exposure 0.3, contrast 1.1,"
echo "saturation 1.2, temperature 40, 33-point cube. Load before: $(cut -d' ' -f1-3 /proc/loadavg)"
LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1600x1000x24" \
  "$binary" --seconds "$seconds" --lut "$clips/look.cube" \
  "1080p30-h264=$clips/1080p30-h264.mp4" "720p60-h264=$clips/720p60-h264.mp4" \
  "1080p30-hlg=$clips/1080p30-hlg.mp4" \
  "4k30-hevc10-phone=$clips/4k30-hevc10-phone.mp4" "4k30-phone-hlg=$clips/4k30-hevc10-phone-hlg.mp4" \
  "4k30-phone-pq=$clips/4k30-hevc10-phone-pq.mp4" 2>&1 |
  grep -v -e '^Failed to open VDPAU backend' -e '^QStandardPaths: XDG_RUNTIME_DIR'
echo "Goals: native rate with 0 missed for 1080p30 and 720p60; at most 1 % missed for the 4K clip."
