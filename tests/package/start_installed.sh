#!/usr/bin/env bash
# Starts the installed programs in every way that users start programs, each time in another language. Each must find
# its catalogue and the viewer's script, whatever the current directory is.
#
#   start_installed.sh <prefix> <directory with make_samples>     under a display without a window manager
set -euo pipefail

for tool in openbox xdotool; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: $tool is missing, see scripts/install-dependencies"
        exit 77
    fi
done
# shellcheck source=tests/end_to_end/play_user.sh
source "$(dirname "${BASH_SOURCE[0]}")/../end_to_end/play_user.sh"
prefix=$(cd "$1" && pwd)
make_samples=$(cd "$2" && pwd)/make_samples
place=$(mktemp -d)
trap 'stop_desktop; rm -rf "$place"' EXIT

fail() {
    echo "failed: $*" >&2
    cat "$HOME/taloram.log" >&2 || true
    exit 1
}

start_commands() {
    local version
    version=$(talomake --version)
    echo "$version"
    [[ "$(taloram -h)" == "usage: taloram "* ]] || fail "taloram -h"
    if [ -e "$prefix/bin/talovue3" ]; then
        [ "$(talovue3 --version)" = "talovue3 ${version##* }" ] || fail "talovue3 --version"
    else
        echo "skipped: talovue3 is not installed"
    fi
    "$make_samples" "$place/card"
    mkdir -p "$HOME/album/txt"
    printf 'B\r\nB\r\n' >"$HOME/album/txt/head.txt"
    (
        cd /
        LANG=de_AT.UTF-8 talomake album "$place/card" "$HOME/album/sea" IMG_0001.JPG IMG_0002.JPG >"$place/page"
    )
    test -s "$(cat "$place/page")" || fail "talomake made no album"
    grep -q Anzahl "$HOME/album/index.html" || fail "talomake did not find the German catalogue"
}

# The window's title is the catalogue's; the button of the album's row that comes after the focus starts the viewer.
#   start_window <how> <LANG> <end of the title> <command>...
start_window() {
    local how=$1 title=$3
    export LANG=$2
    echo "$how: $LANG"
    shift 3
    start_taloram "$@"
    wait_window "taloram - $title"
    local main=$window started=$taloram
    taloram=$(xdotool getwindowpid "$main") # the desktop's launcher has a process of its own
    if [ -e "$prefix/bin/talovue3" ]; then
        press Tab space
        wait_for 60 "The viewer" xdotool search --onlyvisible --class talovue3
        wait_for 60 "The viewer in front" is_not_in_front "$main"
        xdotool windowkill "$(xdotool getactivewindow)"
        wait_window "taloram - $title"
    fi
    xdotool windowkill "$main"
    wait_for 60 "The window's end" is_closed "$main"
    wait "$started" || true # it lost its display
    taloram=
}

is_not_in_front() {
    local front
    front=$(xdotool getactivewindow) && [ "$front" != "$1" ]
}

is_closed() {
    ! xdotool getwindowname "$1" 2>/dev/null
}

start_windows() {
    cd "$place"
    start_window "by PATH" de_DE.UTF-8 Fotoalben taloram
    # The catalogue in the current directory comes first; what lies beside the program is found all the same.
    (
        cd "$prefix/lib"
        start_window "by PATH, below the prefix" de_AT.UTF-8 Fotoalben taloram
    )
    start_window "by an absolute path" fr_CA.utf8 "Albums photo" "$prefix/bin/taloram"
    start_window "by a relative path" es_MX.UTF-8 "Álbumes de fotos" "$(realpath --relative-to=. "$prefix")/bin/taloram"
    start_window "in a locale that is mostly missing" es_BO.UTF-8 "Álbumes de fotos" env -u LC_ALL "$prefix/bin/taloram"
    ln -s "$prefix/bin/taloram" "$place/taloram"
    start_window "by a link" zh_CN.UTF-8 相册 "$place/taloram"
    if command -v gio >/dev/null; then
        export XDG_DATA_DIRS=$prefix/share:/usr/local/share:/usr/share
        start_window "by the desktop entry" ja_JP.utf8 写真アルバム gio launch "$prefix/share/applications/taloram.desktop"
        start_window "for a card" ja_JP.UTF-8 写真アルバム gio launch "$prefix/share/applications/taloram-card.desktop" "$place"
    else
        echo "skipped: gio is missing, see the package libglib2.0-bin"
    fi
    start_window "without a language" C "Photo Albums" "$prefix/lib/taloram/taloram"
}

# By itself, and by PATH; without its catalogue it says so.
start_viewer() {
    [ -e "$prefix/bin/talovue3" ] || return 0
    echo "talovue3: $LANG"
    start_taloram talovue3 "$place/card"
    wait_for 60 "The viewer" xdotool search --onlyvisible --class talovue3
    ! grep . "$HOME/taloram.log" || fail "talovue3 complains"
}

start_desktop "$place/home"
PATH=$prefix/bin:$PATH
printf 'from=%s\r\nalbum=%s\r\n' "$place/card" "$HOME/album" >"$HOME/.taloram"
start_commands
start_windows
start_viewer
