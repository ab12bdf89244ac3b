#!/bin/sh
# Installs the build into a scratch prefix and checks what a desktop needs, then builds the
# Debian package, unpacks it into a scratch root and runs the command line from there.
#   tkPackageTest.sh <build folder> <version>
set -eu
build=$1
version=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
id=com.tekamo.ChronoletPlus

cmake --install "$build" --prefix "$work/stage" > "$work/install.log"
cd "$work/stage"
for file in bin/chronolet bin/chronolet-plus share/man/man1/chronolet.1 \
    share/applications/$id.desktop share/metainfo/$id.metainfo.xml \
    share/icons/hicolor/scalable/apps/$id.svg; do
    test -f "$file" || { echo "not installed: $file"; exit 1; }
done
for size in 16 24 32 48 64 128 256; do
    png=share/icons/hicolor/${size}x$size/apps/$id.png
    # Width and height stand big-endian at bytes 16 to 23 of a PNG file.
    dimensions=$(od -An -tu1 -j16 -N8 "$png" 2>/dev/null | tr -s ' ' | sed 's/^ //')
    test "$dimensions" = "0 0 $((size / 256)) $((size % 256)) 0 0 $((size / 256)) $((size % 256))" ||
        { echo "no $size px icon: $dimensions"; exit 1; }
done
desktop-file-validate share/applications/$id.desktop
appstreamcli validate --no-net --pedantic share/metainfo/$id.metainfo.xml
grep -q "<release version=\"$version\"" share/metainfo/$id.metainfo.xml
grep -q '^\.TH CHRONOLET 1' share/man/man1/chronolet.1

cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/package" > "$work/cpack.log"
deb=$(ls "$work"/package/*.deb)
depends=$(dpkg-deb -f "$deb" Depends)
for needed in libc6 libstdc++6 libqt6widgets6 libqt6svg6; do
    echo "$depends" | grep -q "$needed" || { echo "Depends lacks $needed: $depends"; exit 1; }
done
dpkg -x "$deb" "$work/root"
said=$("$work/root/usr/bin/chronolet" --version)
test "$said" = "chronolet (Chronolet Plus) $version" || { echo "said: $said"; exit 1; }
echo "package $(basename "$deb") installs and runs"
