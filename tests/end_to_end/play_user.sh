# shellcheck shell=bash
# Plays a user of taloram with real keys and clicks; sourced by the end-to-end test and by scripts/screenshots.
# All waiting is for something seen on the screen or on the disk.

# Name of the last window that wait_window found in front.
window=

start_desktop() {
    home=$1
    mkdir -p "$home/.config/gtk-3.0"
    # What places are clicked at depends on the font; a blinking cursor and fading menus make pictures differ.
    cat >"$home/.config/gtk-3.0/settings.ini" <<'EOF'
[Settings]
gtk-font-name=DejaVu Sans 10
gtk-enable-animations=0
gtk-cursor-blink=0
gtk-recent-files-enabled=0
EOF
    export HOME=$home LC_ALL=C.UTF-8 GTK_THEME=Adwaita GDK_BACKEND=x11 GDK_SCALE=1
    export NO_AT_BRIDGE=1 GSETTINGS_BACKEND=memory GIO_USE_VFS=local
    export ASAN_OPTIONS=${ASAN_OPTIONS:-detect_leaks=0}
    unset XDG_CONFIG_HOME
    openbox >"$home/openbox.log" 2>&1 &
    openbox=$!
    wait_for 30 "a window manager" xdotool get_desktop
}

# taloram's process becomes $taloram; its output goes to taloram.log.
start_taloram() {
    "$@" >"$HOME/taloram.log" 2>&1 &
    taloram=$!
}

stop_desktop() {
    kill ${taloram:+"$taloram"} ${openbox:+"$openbox"} 2>/dev/null || true
    wait 2>/dev/null || true
}

#   wait_for <seconds> <what for> <command>...
wait_for() {
    local deadline=$((SECONDS + $1)) what=$2
    shift 2
    until "$@" >/dev/null 2>&1; do
        [ $SECONDS -lt $deadline ] || fail "$what did not come."
        sleep 0.1
    done
}

is_in_front() {
    window=$(xdotool getactivewindow 2>/dev/null) && [ "$window" != "$2" ] &&
        [ "$(xdotool getwindowname "$window" 2>/dev/null)" = "$1" ]
}

#   wait_window <title> [<id of the window of the same title that is on its way out>]
wait_window() {
    wait_for 60 "The window \"$1\"" is_in_front "$1" "${2-}"
}

is_at_least() {
    local size
    size=$(xdotool getwindowgeometry "$window" | sed -n 's/.*Geometry: //p')
    [ "${size%x*}" -ge "$1" ] && [ "${size#*x}" -ge "$2" ]
}

# A window grows when its list is filled.
#   wait_size <width> <height>
wait_size() {
    wait_for 60 "The list of the window" is_at_least "$1" "$2"
}

# State and processor time of the program; see proc(5), /proc/[pid]/stat.
activity() {
    local fields
    read -ra fields <"/proc/$taloram/stat"
    echo "${fields[@]:2:1} ${fields[@]:13:2}"
}

# The toolkit takes all events that wait before it gives new rows their places, and where Tab leads depends on those as
# much as what a click hits. So, as a user does, wait until nothing happens any more: the program sleeps.
settle() {
    local before="" now quiet=0 deadline=$((SECONDS + 60))
    while [ $quiet -lt 4 ]; do
        [ $SECONDS -lt $deadline ] || fail "The program never rests."
        sleep 0.02
        xdotool getmouselocation >/dev/null # the display has then served everybody
        now=$(activity 2>/dev/null) || fail "The program is gone."
        if [ "$now" = "$before" ] && [[ $now == S* ]]; then
            quiet=$((quiet + 1))
        else
            quiet=0
        fi
        before=$now
    done
}

press() {
    settle
    xdotool key --clearmodifiers --delay 30 "$@"
    # A button that a letter presses stays down for a quarter of a second and acts then; the next key would let it go.
    case $* in alt+?) sleep 0.3 ;; esac
}

write() {
    xdotool type --clearmodifiers --delay 15 "$1"
}

# Replaces the text of the field that has the focus.
fill() {
    press ctrl+a
    write "$1"
}

#   press_times <count> <key>
press_times() {
    local i
    for ((i = 0; i < $1; ++i)); do
        press "$2"
    done
}

# The first button's click would turn a spinner on and on, as if it were held down, while a busy machine lets the
# program wait between press and release.
#   click_at <x> <y> [<button>]   pixels from the window's left upper corner
click_at() {
    settle
    xdotool mousemove --sync --window "$window" "$1" "$2" click "${3:-1}" || fail "The window to click at is gone."
}
