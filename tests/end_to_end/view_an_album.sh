#!/usr/bin/env bash
# Looks at an album with the viewer, started by the main window's button, by real keys and the wheel; and what the
# viewer's script does where things are not as usual.
#
#   view_an_album.sh <directory of the programs>     under a display without a window manager
set -euo pipefail

for tool in xvfb-run openbox xdotool; do
    if ! command -v "$tool" >/dev/null; then
        echo "skipped: $tool is missing, see scripts/install-dependencies"
        exit 77
    fi
done
# shellcheck source=tests/end_to_end/play_user.sh
source "$(dirname "${BASH_SOURCE[0]}")/play_user.sh"
bin=$(cd "$1" && pwd)
failed_picture=$PWD/view_an_album-failed.png
place=$(mktemp -d)
album="$place/our albums/seaside"
trap 'stop_desktop; rm -rf "$place"' EXIT

fail() {
    echo "failed: $*" >&2
    echo "in front: $(xdotool getactivewindow getwindowname 2>&1)" >&2
    cat "$HOME/taloram.log" >&2 || true
    if command -v import >/dev/null && import -window root "$failed_picture"; then
        echo "the screen: $failed_picture" >&2
    fi
    exit 1
}

check() {
    "$@" || fail "this does not hold: $*"
}

make_album() {
    mkdir -p "$place/our albums/txt"
    "$bin/make_samples" "$place/card"
    "$bin/talomake" album "$place/card" "$album" >"$place/talomake.log"
    cp -r "$album" "$place/before"
    printf 'from=%s\nalbum=%s\n' "$place/card" "$place/our albums" >"$HOME/.taloram"
}

#   try_arguments <status> <pattern of the output> <argument>...
try_arguments() {
    local status=0 wanted=$1 pattern=$2 output
    shift 2
    output=$(env -u DISPLAY -u WAYLAND_DISPLAY "$bin/talovue3" "$@" 2>&1) || status=$?
    # shellcheck disable=SC2053 # a pattern
    [ "$status" = "$wanted" ] && [[ $output == $pattern ]] || fail "talovue3 $* ends with $status: $output"
    [ "$status" = 0 ] || check test "$(wc -l <<<"$output")" = 1
}

# The command line is looked at before there is a display.
try_command_line() {
    try_arguments 0 '*--slideshow SECONDS*' --help
    try_arguments 0 'talovue3 [0-9]*' --version
    try_arguments 2 'talovue3: path is required'
    try_arguments 2 'talovue3: --wrong: no such option.' --wrong "$album"
    for seconds in soon 0 -1 nan 1e9 5s; do
        try_arguments 2 'talovue3: --slideshow: must be a number of seconds*' --slideshow=$seconds "$album"
    done
    try_arguments 2 'talovue3: a\?b: no such file or directory.' $'a\nb'
    try_arguments 2 'talovue3: \[a,b\]: no such file or directory.' "$album" '[a,b]'
    try_arguments 1 "talovue3: can't open a display; windows need one." --fullscreen "$album"
}

# The script's own ways, with a viewer that stays until it is told to go.
try_script() {
    local programs="$place/my programs"
    mkdir -p "$programs/link"
    cp "$bin/talovue3.mac" "$programs"
    ln -s ../talovue3.mac "$programs/link/once"
    ln -s "$programs/link/once" "$place/twice"
    local status=0
    "$place/twice" x 2>"$place/message" || status=$?
    check test "$status" = 127
    check test "$(cat "$place/message")" = "talovue3.mac: there is no program $programs/talovue3."
    mkfifo "$place/go"
    cat >"$programs/talovue3" <<EOF
#!/bin/sh
printf '[%s]' "\$@" >"$place/arguments.new"
mv "$place/arguments.new" "$place/arguments"
read -r line <"$place/go"
EOF
    chmod +x "$programs/talovue3"
    check test "$("$place/twice" --fullscreen 'a b' "\$x" 2>&1)" = ""
    wait_for 30 "The viewer" test -e "$place/arguments"
    check test "$(cat "$place/arguments")" = '[--fullscreen][a b][$x]'
    echo >"$place/go"
}

start_from_main_window() {
    start_taloram "$bin/taloram"
    wait_window "taloram - Photo Albums"
    press Tab space # from the button that opens the album to the viewer's
    wait_title "IMG_0001.JPG - 1 / $pictures - "
    viewer=$window
}

starts_with() {
    case $(xdotool getwindowname "$(xdotool getactivewindow)") in "$1"*) window=$(xdotool getactivewindow) ;; *) false ;; esac
}

#   wait_title <beginning of the title of the window in front>
wait_title() {
    wait_for 60 "The title \"$1...\"" starts_with "$1"
}

has_screen_size() {
    test "$(xdotool getwindowgeometry "$viewer" | sed -n 's/.*Geometry: //p')" = "$(xdotool getdisplaygeometry | tr ' ' x)"
}

lacks_screen_size() {
    ! has_screen_size
}

look_around() {
    local first last
    first=$(xdotool getwindowname "$viewer")
    press Right
    wait_title "IMG_0002.JPG - 2 / $pictures - "
    press End
    last=$(basename "$(printf '%s\n' "$album/thumb"/*.JPG | tail -n 1)")
    wait_title "$last - $pictures / $pictures - "
    press Home
    wait_title "$first"
    press 1
    wait_for 30 "Full size" ends_with " - 100 %"
    xdotool mousemove --window "$viewer" 200 200 click 4
    wait_for 30 "The wheel's zoom" ends_with " - 125 %"
    press 0
    wait_title "$first"
    press f
    wait_for 30 "The full screen" has_screen_size
    press i r s
    wait_for 30 "The slide show" ends_with " - Slide Show"
    press s Escape
    wait_for 30 "The window" lacks_screen_size
}

ends_with() {
    case $(xdotool getwindowname "$viewer") in *"$1") ;; *) false ;; esac
}

is_gone() {
    ! xdotool getwindowname "$1"
}

# The viewer stays when the program that started it goes, and has changed nothing.
close_all() {
    kill "$taloram"
    wait "$taloram" || true
    taloram=$(xdotool getwindowpid "$viewer") # who is played from here on
    xdotool windowactivate --sync "$viewer"
    press Right
    wait_title "IMG_0002.JPG - 2 / $pictures - "
    press ctrl+q
    wait_for 30 "The viewer's end" is_gone "$viewer"
    check diff -r "$place/before" "$album"
}

mkdir "$place/home"
start_desktop "$place/home"
make_album
# All of them, also those that are too small for the size that the button starts it on.
pictures=$(find "$album/thumb" -name '*.JPG' | wc -l)
for step in try_command_line try_script start_from_main_window look_around close_all; do
    echo "$step"
    "$step"
done
