#!/bin/bash
# Unpacks the Debian package and tries what a user gets: the files, the launcher, the first start.
# Starts the program on DISPLAY, or without a screen when QT_QPA_PLATFORM says so.
#
# Usage: package.sh FILE.deb
#        package.sh --build BUILD-FOLDER    packs a tree that is built already
set -euo pipefail
# shellcheck source=tests/package/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

if [[ $1 == --build ]]; then
    (cd "$work" && cpack --config "$2/CPackConfig.cmake" -B "$work" >"$work/log" 2>&1) || {
        cat "$work/log" >&2
        die "cpack makes a package"
    }
    package=$(find "$work" -maxdepth 1 -name 'bahnito_*.deb')
else
    package=$(realpath -- "$1")
fi
root=$work/root
program=$root/usr/lib/bahnito/bahnito

field() {
    dpkg-deb --field "$package" "$1"
}

everythingIsThere() {
    local file
    for file in bin/bahnito lib/bahnito/bahnito share/bahnito/images/more.png share/bahnito/Lok.ico \
        share/applications/de.bahnito.bahnito.desktop share/metainfo/de.bahnito.bahnito.metainfo.xml \
        share/icons/hicolor/{16x16,22x22,24x24,32x32,48x48,64x64,128x128,256x256,512x512}/apps/de.bahnito.bahnito.png \
        share/icons/hicolor/scalable/apps/de.bahnito.bahnito.svg share/man/man1/bahnito.1.gz \
        share/man/de/man1/bahnito.1.gz share/doc/bahnito/{copyright,changelog.gz} share/doc/bahnito/html/index.html; do
        [[ -s $root/usr/$file ]] || die "the package holds /usr/$file"
    done
    check "the package holds the sample maker nowhere" test -z "$(find "$root" -name '*sample*')"
    check "everything lies under /usr" test "$(ls "$root")" = usr
    [[ $(zcat "$root/usr/share/doc/bahnito/changelog.gz" | head -n1) == "bahnito ($(field Version)) "* ]] ||
        die "the changelog begins with the version of the package"
    check "the metainfo knows the version" \
        grep -q "<release version=\"$(field Version)\"" "$root/usr/share/metainfo/de.bahnito.bahnito.metainfo.xml"
}

nothingOfThePackageIsLoadedFromElsewhere() {
    local html=$root/usr/share/doc/bahnito/html picture
    check "the manual loads nothing from elsewhere" test -z "$(grep -oE '(src|href)="(https?:)?//[^"]*' "$html/index.html")"
    while read -r picture; do
        [[ -s $html/$picture ]] || die "the manual's picture $picture is there"
    done < <(grep -oE 'src="[^"]+' "$html/index.html" | cut -c6-)
}

dependenciesAreNamed() {
    local name
    for name in libqt6widgets6 libqt6sql6 libqt6gui6 libqt6sql6-sqlite fonts-open-sans libc6; do
        grep -qE "(^|, )$name( |,|\$)" <<<"$(field Depends)" || die "the package depends on $name"
    done
    check "the package depends on nothing that speaks to a network" \
        test -z "$(field Depends | grep -oiE 'network|curl|ssl|webengine')"
}

# The unpacked tree lacks what the package depends on; a link stands in for it.
unpackedProgramStarts() {
    check "the plug-ins are linked beside the program" \
        test "$(readlink "$root/usr/lib/bahnito/plugins")" = "../$(dpkg-architecture -qDEB_HOST_MULTIARCH)/qt6/plugins"
    ln -s "/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)" "$root/usr/lib/"
    export HOME=$work/home XDG_RUNTIME_DIR=$work/run
    mkdir -p "$HOME"
    mkdir -m 700 "$XDG_RUNTIME_DIR"
    "$root/usr/bin/bahnito" >/dev/null 2>"$work/messages" &
    started+=($!)
    check "the first start makes a catalogue with the five tables" eventually has_five_tables "$HOME/Bahnito"
    sleep 2
    check "the program goes on running" runs "$program"
    # Without a screen Qt itself has one thing to say.
    check "it says nothing on the terminal" test -z "$(grep -v 'does not support propagateSizeHints' "$work/messages")"
    check "its images are found" test -s "$HOME/Bahnito/images/more.png"
    end "$program"
}

check "the package can be unpacked" dpkg-deb --extract "$package" "$root"
everythingIsThere
nothingOfThePackageIsLoadedFromElsewhere
dependenciesAreNamed
unpackedProgramStarts
