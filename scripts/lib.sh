# shellcheck shell=bash disable=SC2034
# What the scripts share; sourced, never run. It speaks German, because scripts/run is made for users.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd -P)

# Everything that a bare Debian 12 lacks, in one place.
build_packages=(g++ cmake ninja-build qt6-base-dev libsqlite3-dev qt6-translations-l10n)
# The database driver, the fonts that stand in for those of Windows, and what opens a photograph in its viewer.
run_packages=(libqt6sql6-sqlite fonts-open-sans fonts-liberation fonts-dejavu-core xdg-utils)
# What the test of the Debian package makes it with.
packaging_packages=(dpkg-dev file asciidoctor)
style_packages=(git clang-format clang-tidy)
# What the floors of scripts/bench are made of. bench/ is built only where these are there.
bench_packages=(libbenchmark-dev libturbojpeg0-dev)
# Whoever tests also compiles the measurements, so that they keep pace with the program.
test_packages=("${build_packages[@]}" "${run_packages[@]}" "${packaging_packages[@]}" "${bench_packages[@]}")

say() {
    printf 'Bahnito: %s\n' "$*"
}

# fail LINE...: the reason and what can be done about it, then the end.
fail() {
    printf 'Bahnito: %s\n' "$@" >&2
    exit 1
}

# missing_packages PACKAGE...: those that are not installed, one a line.
missing_packages() {
    local package
    for package in "$@"; do
        [[ $(dpkg-query --show --showformat='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] ||
            printf '%s\n' "$package"
    done
}

as_root() {
    if ((EUID == 0)); then
        env DEBIAN_FRONTEND=noninteractive "$@" </dev/null
    else
        sudo env DEBIAN_FRONTEND=noninteractive "$@" </dev/null
    fi
}

# ensure_packages PACKAGE...: touches apt only when something is missing, so that the second time is quick.
ensure_packages() {
    if ! command -v dpkg-query >/dev/null; then
        say "Kein Debian: Pakete werden nicht geprüft. Gebraucht werden (Namen wie in Debian 12): $*"
        return
    fi
    local missing
    mapfile -t missing < <(missing_packages "$@")
    ((${#missing[@]})) || return 0

    say "Es fehlen noch Pakete; sie werden jetzt installiert: ${missing[*]}"
    if ((EUID != 0)) && ! command -v sudo >/dev/null; then
        fail "Dafür sind Administratorrechte nötig, und sudo ist nicht installiert." \
            "Bitte als root ausführen:  apt-get install --no-install-recommends ${missing[*]}"
    fi
    as_root apt-get -q -o DPkg::Lock::Timeout=120 update || say "Die Paketlisten sind nicht ganz aktuell; weiter geht es."
    as_root apt-get -q -y -o DPkg::Lock::Timeout=120 -o Dpkg::Use-Pty=0 install --no-install-recommends \
        "${missing[@]}" ||
        fail "Die Pakete konnten nicht installiert werden." \
            "Besteht eine Verbindung zum Internet, und ist Platz auf der Platte? Die Meldungen darüber nennen den Grund." \
            "Von Hand geht es mit:  apt-get install --no-install-recommends ${missing[*]}"
}

# The build folder remembers where the sources were; after a move it has to be made anew.
is_configured() {
    local folder=$root/build/$1
    [[ -f $folder/build.ninja ]] && grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$folder/CMakeCache.txt"
}

# configure PRESET [OPTION...]
configure() {
    local fresh=()
    is_configured "$1" || fresh=(--fresh)
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=ccache
    fi
    (cd "$root" && cmake "${fresh[@]}" --preset "$@") ||
        fail "Der Bau konnte nicht vorbereitet werden; die Meldungen darüber nennen den Grund." \
            "Oft hilft es, den Ordner $root/build/$1 zu löschen und es noch einmal zu versuchen."
}

# build PRESET [OPTION...]
build() {
    (cd "$root" && cmake --build --preset "$@") ||
        fail "Das Programm ließ sich nicht übersetzen; die Meldungen darüber nennen den Grund."
}
