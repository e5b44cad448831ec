#!/bin/bash
# Tests packaging/bahnito, with a stand-in for the program where only the launcher matters.
#
# Usage: launcher.sh RUN-FOLDER    (the folder of the built program)
# shellcheck disable=SC1111,SC2016 # German quotation marks, and programs that are written down here
set -euo pipefail
# shellcheck source=tests/package/lib.sh
source "$(dirname "${BASH_SOURCE[0]}")/lib.sh"

run_folder=$(realpath -- "$1")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd -P)
prefix=$work/usr
launcher=$prefix/bin/bahnito
export HOME=$work/home XDG_RUNTIME_DIR=$work/run
export QT_QPA_PLATFORM=offscreen
unset DISPLAY WAYLAND_DISPLAY

mkdir -p "$prefix/bin" "$prefix/lib" "$prefix/share/bahnito" "$HOME" "$XDG_RUNTIME_DIR"
cp "$root/packaging/bahnito" "$launcher"
cp -r "$root/images" "$root/images/Lok.ico" "$prefix/share/bahnito/"

use_real_program() {
    rm -rf "$prefix/lib/bahnito"
    ln -s "$run_folder" "$prefix/lib/bahnito"
}

# use_program TEXT: a shell script in place of the program.
use_program() {
    rm -rf "$prefix/lib/bahnito"
    mkdir "$prefix/lib/bahnito"
    printf '#!/bin/sh\n%s\n' "$1" >"$prefix/lib/bahnito/bahnito"
    chmod +x "$prefix/lib/bahnito/bahnito"
}

# launch [ARGUMENT...]: runs it to its end; sets "status", "said" and what stood on the standard output.
launch() {
    status=0
    timeout 20 "$launcher" "$@" >"$work/out" 2>"$work/said" </dev/null || status=$?
    said=$(<"$work/said")
}

# open FOLDER: with a program that stays until the file "go on" appears.
open() {
    "$launcher" "$1" >/dev/null 2>&1 &
    started+=($!)
    opened=$!
    eventually test -e "$1/started"
}

waiting_program='touch started; while [ ! -e "go on" ]; do sleep 0.05; done; rm -f started "go on"'

firstStartMakesTheCatalogue() {
    use_real_program
    "$launcher" >/dev/null 2>&1 &
    started+=($!)
    check "the first start makes ~/Bahnito with the five tables" eventually has_five_tables "$HOME/Bahnito"
    check "the images are linked" test "$HOME/Bahnito/images" -ef "$prefix/share/bahnito/images"
    check "the icon is linked" test "$HOME/Bahnito/Lok.ico" -ef "$prefix/share/bahnito/Lok.ico"
    local process
    process=$(pids_of "$run_folder/bahnito" | while read -r pid; do
        [[ $(readlink "/proc/$pid/cwd") != "$HOME/Bahnito" ]] || echo "$pid"
    done)
    check "the program runs in the catalogue's folder" test -n "$process"
    kill "$process"
    wait "${started[-1]}" || true
}

whatTheUserHasStays() {
    use_program 'true'
    local folder="$work/my 'own' folder"
    mkdir -p "$folder/Data" "$folder/images" "$work/elsewhere"
    echo mine >"$folder/Lok.ico"
    echo mine >"$folder/images/dog.png"
    echo rows >"$folder/Data/bahnakte.dat"
    launch "$folder"
    check "the program's exit code is handed on" test "$status" -eq 0
    check "a file of the user's stays" grep -qx mine "$folder/Lok.ico"
    check "a folder of the user's stays" grep -qx mine "$folder/images/dog.png"
    check "a catalogue stays as it is" grep -qx rows "$folder/Data/bahnakte.dat"
    rm -r "$folder/images"
    ln -s "$work/elsewhere" "$folder/images"
    launch "$folder"
    check "a link that leads somewhere stays" test "$folder/images" -ef "$work/elsewhere"
    rmdir "$work/elsewhere"
    launch "$folder"
    check "a link that leads nowhere is made anew" test "$folder/images" -ef "$prefix/share/bahnito/images"
}

secondStartIsExplained() {
    use_program "$waiting_program"
    local folder=$work/one
    open "$folder"
    launch "$folder"
    check "a second start ends" test "$status" -eq 1
    check "a second start says why" grep -q "„$folder“ ist schon geöffnet" <<<"$said"
    ln -s "$folder" "$work/other way"
    launch "$work/other way"
    check "another way to the same folder is found out" test "$status" -eq 1
    open "$work/two"
    local second=$opened
    check "another folder opens meanwhile" kill -0 "$second"
    touch "$folder/go on" "$work/two/go on"
    wait "$second"
    eventually test ! -e "$folder/started"
    use_program 'exit 7'
    sleep 0.2
    launch "$folder"
    check "after its end the folder opens again" test "$status" -eq 7
    check "no lock lies in the catalogue" test -z "$(find "$folder" -name '*lock*')"
}

aViewerLeftOpenHoldsNoLock() {
    use_program 'sleep 30 & echo $! >viewer'
    local folder=$work/viewer
    launch "$folder"
    started+=("$(<"$folder/viewer")")
    launch "$folder"
    check "a picture viewer that stays open does not keep the folder locked" test "$status" -eq 0
    started+=("$(<"$folder/viewer")")
}

wrongUseIsExplained() {
    use_program 'touch started'
    launch --help
    check "--help succeeds" test "$status" -eq 0
    check "--help shows the usage" grep -q '^Aufruf:  bahnito \[ORDNER\]' "$work/out"
    launch --colour
    check "an unknown option is refused" test "$status" -eq 2
    launch "$work/a" "$work/b"
    check "two folders are refused" test "$status" -eq 2
    check "nothing was made for it" test ! -e "$work/a"
    (cd "$work" && launch -- -odd && test "$status" -eq 0) || die "a folder with a hyphen after --"
    check "after -- a folder may begin with a hyphen" test -e "$work/-odd/started"
    : >"$work/file"
    launch "$work/file"
    check "a file in place of a folder is explained" grep -q "konnte nicht angelegt werden" <<<"$said"
}

withoutATerminalABoxAppears() {
    use_program 'true'
    mkdir -p "$work/desktop"
    printf '#!/bin/sh\nprintf "%%s\\n" "$@" >"%s/box"\n' "$work" >"$work/desktop/zenity"
    chmod +x "$work/desktop/zenity"
    PATH=$work/desktop:$PATH DISPLAY=:none launch "$work/file"
    check "the box is one for errors" grep -qx -- --error "$work/box"
    check "the box tells what is wrong" grep -q "„$work/file“ konnte nicht angelegt werden" "$work/box"
    check "the box takes no text for markup" grep -qx -- --no-markup "$work/box"
}

# Nobody's rights, because root may write everywhere.
protectedFoldersAreExplained() {
    use_program 'touch "$XDG_RUNTIME_DIR/opened"'
    local as=()
    if ((EUID == 0)); then
        as=(setpriv --reuid=65534 --clear-groups)
        chmod 755 "$work"
    fi
    mkdir -p "$work/shelf/Data" "$work/nobody"
    chmod 777 "$work/nobody"
    chmod 555 "$work/shelf"
    status=0
    said=$(XDG_RUNTIME_DIR=$work/nobody "${as[@]}" "$launcher" "$work/shelf" 2>&1) || status=$?
    check "a folder that cannot be written is refused" test "$status" -eq 1
    check "it says why" grep -q "darf nicht geschrieben werden" <<<"$said"
    chmod 755 "$work/shelf"
    echo rows >"$work/shelf/Data/bahnakte.dat"
    chmod 444 "$work/shelf/Data/bahnakte.dat"
    chmod 555 "$work/shelf/Data" "$work/shelf"
    said=$(XDG_RUNTIME_DIR=$work/nobody "${as[@]}" "$launcher" "$work/shelf" 2>&1)
    check "a protected catalogue is announced" grep -q "schreibgeschützt" <<<"$said"
    check "and opened to look at" test -e "$work/nobody/opened"
    chmod 755 "$work/shelf/Data" "$work/shelf"
}

firstStartMakesTheCatalogue
whatTheUserHasStays
secondStartIsExplained
aViewerLeftOpenHoldsNoLock
wrongUseIsExplained
withoutATerminalABoxAppears
protectedFoldersAreExplained
