# shellcheck shell=bash
# Sourced by ./run and ./test: installing what is missing and building what has changed. Both stay silent when
# there is nothing to do. Expects $project, the folder of the sources; builds in $build.

# shellcheck disable=SC2154  # set by whoever sources this
build="$project/build/release"

say() { printf '%s\n' "$*" >&2; }

# packages_of GROUP...: the packages of these groups of packages.txt, one a line.
packages_of() {
    awk -v wanted=" $* " '
        /^\[.*\]$/ { group = substr($0, 2, length($0) - 2); next }
        /^[^#]/ && index(wanted, " " group " ") { print $1 }
    ' "$project/tools/packages.txt" | sort -u
}

# missing_packages GROUP...: those of them that aren't installed.
missing_packages() {
    local wanted installed
    wanted=$(packages_of "$@")
    # shellcheck disable=SC2086  # one argument for each package
    installed=$(dpkg-query -W -f='${Package} ${db:Status-Abbrev}\n' $wanted 2>/dev/null | awk '$2 == "ii" { print $1 }' | sort -u)
    comm -23 <(printf '%s\n' "$wanted") <(printf '%s\n' "$installed")
}

# apt_install PACKAGE...: as root, without questions.
apt_install() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive LC_ALL=C apt-get \
        -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 -qq -y --no-install-recommends install "$@"
}

# ensure_packages GROUP...: installs what is missing, or says what to do and fails.
ensure_packages() {
    if ! command -v dpkg-query >/dev/null; then
        say "This is no Debian, so what tools/packages.txt lists has to be installed by hand."
        return 0
    fi
    local missing
    missing=$(missing_packages "$@")
    [ -n "$missing" ] || return 0

    as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            say "These packages are missing, and installing them needs root or sudo:"
            say "  apt-get install --no-install-recommends ${missing//$'\n'/ }"
            return 1
        fi
        as_root=(sudo)
    fi
    say "Installing $(wc -l <<<"$missing") packages ..."
    local log
    log=$(mktemp)
    # The lists of a fresh system are empty or old: fetch them once when a package isn't found.
    # shellcheck disable=SC2086  # one argument for each package
    if ! apt_install $missing >"$log" 2>&1 &&
        ! { "${as_root[@]}" apt-get -o DPkg::Lock::Timeout=300 -qq update && apt_install $missing; } >>"$log" 2>&1; then
        cat "$log" >&2
        rm -f "$log"
        say "The packages could not be installed; the lines above say why."
        return 1
    fi
    rm -f "$log"
}

# ensure_whisper: the Whisper library, from the distribution where it has one, else in a private folder. Where
# neither can be had, says so once a day; the program builds and runs without.
ensure_whisper() {
    local private="$project/build/whisper" state="$project/build/whisper.state" why
    mkdir -p "$project/build"
    if [ -e "$private/lib/libwhisper.so" ] || pkg-config --exists whisper ggml 2>/dev/null; then
        [ "$(cat "$state" 2>/dev/null)" = there ] || echo there >"$state"
        return 0
    fi
    if [ -n "$(find "$state" -mmin -1440 2>/dev/null)" ]; then
        return 0
    fi
    if command -v apt-cache >/dev/null && [ -n "$(apt-cache show libwhisper-dev 2>/dev/null)" ] &&
        { [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null; }; then
        as_root=()
        [ "$(id -u)" -eq 0 ] || as_root=(sudo)
        say "Installing the Whisper library ..."
        apt_install libwhisper-dev >/dev/null 2>&1 || true
        apt_install libggml0-backend-vulkan >/dev/null 2>&1 || true # for a graphics card
    fi
    if pkg-config --exists whisper ggml 2>/dev/null; then
        echo there >"$state"
        return 0
    fi
    say "Fetching the Whisper library into build/whisper ..."
    if why=$("$project/tools/whisper-library" "$private" 2>&1); then
        echo there >"$state"
    else
        echo missing >"$state"
        say "Built without Whisper, so only languages of PocketSphinx can be transcribed: ${why##*$'\n'}."
    fi
}

# configure [OPTION...]: prepares the build folder if it isn't yet, or anew when options are given.
configure() {
    if [ $# -eq 0 ] && [ -f "$build/build.ninja" ]; then
        return 0
    fi
    local log="$build/configure.log"
    if ! cmake -S "$project" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@" >"$log" 2>&1; then
        cat "$log" >&2
        return 1
    fi
}

# build_targets TARGET...: brings them up to date. Silent unless something has to be done, or fails.
build_targets() {
    local log="$build/build.log"
    if ninja -C "$build" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
        return 0
    fi
    say "Building ..."
    if [ -t 2 ] || [ -n "${CI:-}" ]; then
        ninja -C "$build" "$@" >&2
    elif ! ninja -C "$build" "$@" >"$log" 2>&1; then
        grep -v '^\[' "$log" >&2
        return 1
    fi
}

# one_at_a_time: waits until no other ./run or ./test installs or builds here. Released by done_building.
one_at_a_time() {
    mkdir -p "$build"
    exec 9>"$build/.lock"
    flock 9
}
done_building() { exec 9>&-; }
