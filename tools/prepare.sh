# What ./run and ./test share: installing what a bare Debian lacks, and building. Sourced, never run.
# shellcheck shell=bash disable=SC2034

say() { printf '== %s\n' "$*"; }
fail() {
    printf '!! %s\n' "$*" >&2
    exit 1
}

BUILD_PACKAGES=(g++ cmake ninja-build pkg-config qt6-base-dev libsqlitecpp-dev libsqlite3-dev libgtest-dev
    libcups2-dev)
PROGRAM_PACKAGES=(qt6-translations-l10n fonts-noto-cjk)
DISPLAY_PACKAGES=(xvfb)
TEST_PACKAGES=(sqlite3 poppler-utils cups-daemon desktop-file-utils appstream man-db)

# Installs those of the named Debian packages that dpkg does not know as installed.
install_missing() {
    command -v dpkg-query >/dev/null ||
        fail "This is no Debian: there is no dpkg. Please install these packages' counterparts by hand: $*"
    local missing=() package
    for package in "$@"; do
        [[ $(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null) == installed ]] || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null ||
            fail "These packages are missing, and installing them needs root or sudo: ${missing[*]}"
        as_root=(sudo)
    fi
    say "Installing: ${missing[*]}"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q ||
        fail "apt-get update failed (see above). Is there a network, and may you install packages?"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}" ||
        fail "apt-get could not install: ${missing[*]} (see above)"
}

# build PRESET [TARGET...]: configures where needed and builds; no target means all.
build() {
    local preset=$1 targets=()
    shift
    (($#)) && targets=(--target "$@")
    say "Building ($preset)"
    cmake --preset "$preset" >/dev/null || fail "The build could not be configured (see above)."
    cmake --build --preset "$preset" "${targets[@]}" || fail "The build failed (see above)."
}

# Japanese file names need a UTF-8 locale; a bare system runs in the C locale.
use_utf8() {
    [[ $(locale charmap 2>/dev/null) == UTF-8 ]] || export LC_ALL=C.UTF-8
}
