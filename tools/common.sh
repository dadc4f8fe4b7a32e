# What play, check and .ci/run share. Sourced with Root set to the top of the checkout.

# What a build needs: compilers, tools and the libraries that the program links.
BuildPackages=(g++ cmake ninja-build ccache pkg-config libsdl1.2-dev libglew-dev libglu1-mesa-dev libdevil-dev
               libbullet-dev libassimp-dev libopenal-dev libalut-dev libvorbis-dev libogg-dev libfreetype-dev
               fonts-dejavu-core)
# What runs the program on a machine without a display: virtual screen, window manager, software GL, keys, pictures.
DisplayPackages=(xvfb openbox xdotool imagemagick libgl1-mesa-dri)

Say() {
    printf '%s: %s\n' "$(basename "$0")" "$*"
}

Stop() {
    Say "$*" >&2
    exit 1
}

IsInstalled() {
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# InstallMissing PACKAGE...: installs what is not there. Touches neither network nor package lists if nothing is missing.
InstallMissing() {
    command -v dpkg-query >/dev/null || { Say "no Debian packages on this machine; trusting that these are there: $*"; return; }
    local Missing=() Package AsRoot=()
    for Package in "$@"; do
        IsInstalled "$Package" || Missing+=("$Package")
    done
    if [ ${#Missing[@]} -eq 0 ]; then
        Say "all $# packages are installed"
        return
    fi
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || Stop "cannot install as $(id -un) without sudo; please install: ${Missing[*]}"
        AsRoot=(sudo)
    fi
    Say "installing ${Missing[*]}"
    "${AsRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq ||
        Say "the package lists could not be renewed; trying with the old ones"
    "${AsRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${Missing[@]}" \
        >/dev/null || Stop "apt-get could not install: ${Missing[*]}"
}

# Build PRESET TARGET [WITH_TESTS]: configures where needed and builds. A tree that was configured with tests keeps them.
# Says what failed and returns it.
Build() {
    local Preset=$1 Target=$2 WithTests=${3:-OFF} Cache="$Root/build/$1/CMakeCache.txt"
    if [ ! -f "$Root/build/$Preset/build.ninja" ] ||
        { [ "$WithTests" = ON ] && ! grep -q '^SLOPERUSH_TESTS:BOOL=ON' "$Cache"; }; then
        Say "configuring build/$Preset"
        (cd "$Root" && cmake --preset "$Preset" -DSLOPERUSH_TESTS="$WithTests" >/dev/null) || {
            Say "build/$Preset could not be configured" >&2
            return 1
        }
    fi
    Say "building build/$Preset"
    cmake --build "$Root/build/$Preset" --target "$Target" || {
        Say "build/$Preset does not build" >&2
        return 1
    }
}

# StartDisplay: a virtual display that outlives its clients, with a window manager, software GL and silent sound for
# everything that follows. StopDisplay ends it; a script that starts one traps its exit with it.
StartDisplay() {
    DisplayFolder=$(mktemp -d)
    Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$DisplayFolder/number" 2>"$DisplayFolder/xvfb.log" &
    DisplayServer=$!
    local Tries
    for ((Tries = 0; Tries < 100; ++Tries)); do
        [ -s "$DisplayFolder/number" ] && break
        sleep 0.1
    done
    [ -s "$DisplayFolder/number" ] || Stop "the virtual display did not start: $(cat "$DisplayFolder/xvfb.log")"
    DISPLAY=:$(cat "$DisplayFolder/number")
    export DISPLAY LIBGL_ALWAYS_SOFTWARE=1 ALSOFT_DRIVERS=null
    # The program sees no key without a window manager, and its window cannot be closed in order.
    openbox >"$DisplayFolder/openbox.log" 2>&1 &
    WindowManager=$!
    for ((Tries = 0; Tries < 100; ++Tries)); do
        xdotool get_num_desktops >/dev/null 2>&1 && return
        sleep 0.1
    done
    Stop "the window manager did not start: $(cat "$DisplayFolder/openbox.log")"
}

StopDisplay() {
    [ -n "${WindowManager:-}" ] && kill "$WindowManager" 2>/dev/null
    [ -n "${DisplayServer:-}" ] && kill "$DisplayServer" 2>/dev/null && wait "$DisplayServer" 2>/dev/null
    [ -n "${DisplayFolder:-}" ] && rm -rf "$DisplayFolder"
    return 0
}
