#!/usr/bin/env bash
# Packs the built tree into the Debian package, as `make package` does from a
# Release build (stripped), and checks it as Debian's tools and a user would
# see it: lintian, the control fields, then the program, desktop entry,
# metainfo, manual page and completion as unpacked from the package.
# Usage: debian_package_test.sh BUILD_FOLDER SOURCE_FOLDER VERSION
set -euo pipefail
export LC_ALL=C
build=$1 source=$2 version=$3
# Lintian warnings accepted (listed in README.md).
accepted_warnings=

work=$(mktemp -d "${TMPDIR:-/tmp}/tavrelune-package.XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*" >&2; exit 1; }

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work" >"$work/cpack.log" 2>&1 ||
    { cat "$work/cpack.log"; fail "cpack"; }
deb=$(echo "$work"/tavrelune_"$version"_*.deb)
[[ -f $deb ]] || fail "no tavrelune_${version}_*.deb made"

lintian --fail-on error,warning ${accepted_warnings:+--suppress-tags "$accepted_warnings"} "$deb" ||
    fail "lintian"

field() { dpkg-deb --field "$deb" "$1"; }
[[ $(field Section) == video ]] || fail "Section: $(field Section)"
[[ $(field Recommends) == va-driver-all ]] || fail "Recommends: $(field Recommends)"
for package in ffmpeg libmpv2 libqt6core6 libqt6widgets6 libc6; do
    [[ ", $(field Depends)," == *", $package"[\ ,]* ]] || fail "Depends lacks $package: $(field Depends)"
done

root=$work/root
dpkg-deb -x "$deb" "$root"
share=$root/usr/share
# The program in the package runs on its own, finds the system's ffmpeg and
# probes a clip.
mapfile -t versions < <("$root/usr/bin/tavrelune" --version)
[[ ${versions[0]} == "tavrelune $version" ]] || fail "--version: ${versions[0]}"
[[ ${versions[1]} == "ffmpeg "*" (/usr/bin/ffmpeg)" ]] || fail "--version: ${versions[1]}"
ffmpeg -v error -f lavfi -i testsrc2=size=320x240:rate=25:duration=1 -pix_fmt yuv420p "$work/clip.mp4"
facts=$("$root/usr/bin/tavrelune" probe "$work/clip.mp4")
[[ $facts == *'"width":320'* && $facts == *'"height":240'* ]] || fail "probe: $facts"

desktop-file-validate "$share/applications/io.github.tavrelune.Tavrelune.desktop" || fail "desktop entry"
metainfo=$share/metainfo/io.github.tavrelune.Tavrelune.metainfo.xml
appstreamcli validate --no-net "$metainfo" || fail "metainfo"
[[ -f $share/icons/hicolor/scalable/apps/tavrelune.svg ]] || fail "no icon"
# The newest release named in the metainfo and the changelog is this one.
grep -m1 '<release ' "$metainfo" | grep -q "version=\"$version\"" || fail "metainfo lacks release $version"
zcat "$share/doc/tavrelune/changelog.gz" | head -1 | grep -q "^tavrelune ($version) " ||
    fail "changelog does not begin with $version"
# The page that tests/data/documentation_test.sh checks against --help.
zcat "$share/man/man1/tavrelune.1.gz" | cmp -s - "$source/data/tavrelune.1" || fail "man page differs"
cmp -s "$share/bash-completion/completions/tavrelune" "$source/data/tavrelune.bash-completion" ||
    fail "bash completion differs"
echo "$(basename "$deb"): $(du -k "$deb" | cut -f1) kB, Depends: $(field Depends)"
