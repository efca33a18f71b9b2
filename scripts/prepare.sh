# Sourced by ./run, ./test and ./bench: installs missing packages, configures and builds.
# Says what it does on standard error; stops the caller when something fails.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '== %s\n' "$*" >&2; }
die() { printf 'error: %s\n' "$*" >&2; exit 1; }

# listed FILE...: the package names in the lists, without comments.
listed() { sed -e 's/#.*//' -e '/^[[:space:]]*$/d' "$@"; }

# missing FILE...: those of the listed packages that are not installed.
missing() {
    local name
    local -A installed=()
    while read -r name; do
        installed[$name]=1
    done < <(dpkg-query -W -f='${db:Status-Abbrev}${Package}\n' 2>/dev/null | sed -n 's/^ii //p')
    for name in $(listed "$@"); do
        [[ ${installed[$name]-} ]] || printf '%s\n' "$name"
    done
}

# install_packages FILE...: installs what is missing from the lists.
install_packages() {
    if ! command -v apt-get >/dev/null || ! command -v dpkg-query >/dev/null; then
        say "No apt here. Needed, by their Debian names: $(listed "$@" | tr '\n' ' ')"
        say "Carrying on with what the build finds."
        return 0
    fi
    local wanted root=()
    wanted=$(missing "$@")
    [[ $wanted ]] || return 0
    if [[ $(id -u) != 0 ]]; then
        command -v sudo >/dev/null || die "to install $(tr '\n' ' ' <<<"$wanted") run this as root or install sudo"
        root=(sudo)
    fi
    say "Installing $(tr '\n' ' ' <<<"$wanted")"
    # shellcheck disable=SC2086
    if ! "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends $wanted >&2; then
        say "Updating the package lists first"
        "${root[@]}" apt-get update -q >&2
        # shellcheck disable=SC2086
        "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install -y -q --no-install-recommends $wanted >&2 ||
            die "could not install $(tr '\n' ' ' <<<"$wanted")"
    fi
}

# build PRESET [CMAKE-ARGUMENT...]: configures (when something changed) and builds the targets named
# in $targets (all unless set). The arguments are remembered, so that a second call with the same
# ones goes straight to the build.
build() {
    local preset=$1 folder=build/$1 wanted
    shift
    wanted="$preset $*"
    if [[ ! -f $folder/build.ninja || $(cat "$folder/configured-with" 2>/dev/null) != "$wanted" ]]; then
        say "Configuring $folder"
        cmake --preset "$preset" "$@" >&2 || die "configuring failed; see the messages above"
        printf '%s' "$wanted" >"$folder/configured-with"
    fi
    say "Building $folder"
    cmake --build "$folder" ${targets:+--target $targets} >&2 || die "the build failed; see the messages above"
}

# on_display COMMAND...: runs with a virtual display, on which widgets and OpenGL work without a
# screen, a window manager or a graphics card.
on_display() {
    command -v xvfb-run >/dev/null || die "xvfb-run is missing (Debian package xvfb)"
    if [[ ! ${XDG_RUNTIME_DIR-} ]]; then # Qt wants one, and private
        XDG_RUNTIME_DIR=$(mktemp -d)
        export XDG_RUNTIME_DIR
        trap 'rm -rf "$XDG_RUNTIME_DIR"' EXIT
    fi
    xvfb-run -a -s "-screen 0 2560x1600x24 -nolisten tcp" \
        env QT_QPA_PLATFORM=offscreen LP_NUM_THREADS=0 "$@"
}
