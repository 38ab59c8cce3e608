#!/usr/bin/env bash
# A first evening with taloram, from the first start to a cleared-up book, by real keys and clicks. What every step
# leaves on the disk is checked, and the album must be the one that talomake makes.
#
#   make_an_album.sh <directory of the programs>     under a display without a window manager
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
failed_picture=$PWD/make_an_album-failed.png
place=$(mktemp -d)
card=$place/card
albums=$place/albums
trap 'stop_desktop; rm -rf "$place"' EXIT

fail() {
    echo "failed: $*" >&2
    if has_ended 2>/dev/null; then
        local status=0
        wait "$taloram" || status=$?
        echo "taloram has ended with status $status" >&2
    fi
    cat "$HOME/taloram.log" >&2 || true
    if command -v import >/dev/null && import -window root "$failed_picture"; then
        echo "the screen: $failed_picture" >&2
    fi
    exit 1
}

check() {
    "$@" || fail "this does not hold: $*"
}

#   has <text> <file>
has() {
    wait_for 120 "\"$1\" in $2" grep -qF -- "$1" "$2"
}

differ() {
    ! cmp -s "$1" "$2"
}

lacks() {
    ! grep -qF -- "$1" "$2"
}

is_gone() {
    [ ! -e "$1" ]
}

has_ended() {
    ! kill -0 "$taloram"
}

first_start() {
    start_taloram "$bin/taloram"
    wait_window "Options"
    check is_gone "$HOME/.taloram"
    press alt+a # camera directory
    fill "$card"
    press alt+l # album directory
    fill "$albums"
    press Return
    wait_window "taloram - Photo Albums"
    has "from=$card" "$HOME/.taloram"
    has "album=$albums" "$HOME/.taloram"
    check test -d "$albums"
}

make_book() {
    press alt+e
    wait_window "Edit Book - albums"
    editor=$window
    fill "Our albums"
    press alt+n
    wait_window "New Book"
    fill "travel"
    press alt+t
    fill "Travels"
    press Return
    has "Travels" "$albums/travel/index.html"
    wait_window "Edit Book - albums" "$editor"
    editor=$window
}

make_album() {
    press alt+e
    wait_window "New Album"
    wait_size 900 700
    press alt+a
    fill "summer"
    press alt+t
    fill "Summer at the sea"
    click_at 474 200 # the third photograph, whose column becomes narrower when it is turned
    click_at 541 305 3 # its "+": as far as it goes
    click_at 110 200 # the first
    click_at 190 305 3
    press alt+o
    has "IMG_0003.JPG" "$albums/summer/index.html"
    has "summer/index.html" "$albums/index.html"
    wait_window "Edit Book - albums" "$editor"
    editor=$window
    check test "$(ls "$albums/summer/original")" = $'IMG_0001.JPG\nIMG_0003.JPG'
    for photograph in IMG_0001.JPG IMG_0003.JPG; do
        check cmp "$card/$photograph" "$albums/summer/original/$photograph"
        check differ "$card/$photograph" "$albums/summer/size0/$photograph"
    done
}

#   order_album <source directory> <name>    of the first photograph alone, under the name as its title
order_album() {
    press alt+e
    wait_window "New Album"
    fill "$1"
    press Return # lists it
    press alt+a
    fill "$2"
    press alt+t
    fill "$2"
    click_at 110 200
    press alt+o
}

# A photograph that no decoder reads ends the import with a box; with a good one the same album can be ended.
repair_album() {
    mkdir "$place/stick"
    echo "not a photograph" >"$place/stick/IMG_0009.JPG"
    order_album "$place/stick" "later"
    wait_window "Message"
    press Return
    wait_window "Edit Book - albums" "$editor"
    editor=$window
    check grep -qF "later/original/IMG_0009.JPG: error detected." "$HOME/taloram.log"
    check is_gone "$albums/later/index.html"
    cp "$card/IMG_0002.JPG" "$place/stick/IMG_0009.JPG"
    order_album "$place/stick" "later"
    wait_window "Message"
    local question=$window
    press alt+y # adds to it
    wait_window "Message" "$question"
    press alt+y # replaces the copy of the broken one
    has "IMG_0009.JPG" "$albums/later/index.html"
    wait_window "Edit Book - albums" "$editor"
    editor=$window
}

# All files of a directory, their copies verified; the box about the broken one offers to go on without it.
verify_album() {
    mkdir "$place/reader"
    cp "$card/IMG_0002.JPG" "$place/reader"
    echo "not a photograph" >"$place/reader/IMG_0010.JPG"
    press alt+e
    wait_window "New Album"
    fill "$place/reader"
    press Return
    press alt+i
    press alt+v
    press alt+a
    fill "checked"
    press alt+t
    fill "Checked"
    press alt+o
    wait_window "Message"
    press alt+l
    has "IMG_0002.JPG" "$albums/checked/index.html"
    wait_window "Edit Book - albums" "$editor"
    editor=$window
    check is_gone "$albums/checked/original/IMG_0010.JPG"
    check lacks "IMG_0010" "$albums/checked/SHA256SUMS"
    (cd "$albums/checked" && sha256sum --check --strict --quiet SHA256SUMS) || fail "The sums are not those of the files."
    has "verify_copies=true" "$HOME/.config/taloram/window.conf"
}

# Pages tell when they were made.
without_time() {
    cp -r "$1" "$2"
    find "$2" -name '*.html' -exec env LC_ALL=C sed -i '/^HTML Generated: /d' {} +
}

compare_with_talomake() {
    mkdir "$place/other"
    "$bin/talomake" album --title "Summer at the sea" --rotate IMG_0001.JPG=270 --rotate IMG_0003.JPG=270 \
        "$card" "$place/other/summer" IMG_0001.JPG IMG_0003.JPG >"$place/talomake.log"
    without_time "$albums/summer" "$place/window"
    without_time "$place/other/summer" "$place/command"
    check diff -r "$place/window" "$place/command"
    check test "$(find "$place/window" -type f | wc -l)" -ge 12
}

# The rows come behind title and opening text: name, open, remove. The book is the first one, as names go backwards.
go_to_row() {
    press alt+t
    press_times $((2 + 3 * ($1 - 1))) Tab
}

write_comment() {
    go_to_row 2
    press Tab space
    wait_window "Edit Book - summer"
    press alt+t
    press_times 2 Tab
    press space
    wait_window "IMG_0001.JPG"
    write "The first boat"
    press alt+o
    has "The first boat" "$albums/summer/txt/IMG_0001.JPG.txt"
    wait_window "Edit Book - summer"
    press alt+o
    has "The first boat" "$albums/summer/index.html"
    wait_window "Edit Book - albums"
}

rename_album() {
    go_to_row 2
    fill "sommer"
    press alt+a
    has "sommer/index.html" "$albums/index.html"
    check is_gone "$albums/summer"
    check test -f "$albums/sommer/original/IMG_0003.JPG"
    wait_window "Edit Book - albums" "$editor"
}

remove_book() {
    go_to_row 1
    press Tab Tab space
    wait_window "Remove"
    press Escape
    wait_window "Edit Book - albums"
    check test -d "$albums/travel"
    press space
    wait_window "Remove"
    press alt+o
    wait_for 60 "The book's removal" is_gone "$albums/travel"
    wait_window "Edit Book - albums"
    check test -f "$albums/sommer/index.html"
}

close_all() {
    press alt+o
    wait_window "taloram - Photo Albums"
    has "Our albums" "$albums/index.html"
    check lacks "travel" "$albums/index.html"
    press alt+c
    wait_for 30 "The program's end" has_ended
    check wait "$taloram"
}

lists_flaws() {
    is_at_least 600 300 # a list; that all is well is a line
}

lists_none() {
    ! lists_flaws
}

# With sums that another program noted; then one byte changes on the disk.
check_originals() {
    (cd "$albums/sommer" && sha256sum original/* >SHA256SUMS)
    start_taloram "$bin/taloram"
    wait_window "taloram - Photo Albums"
    press space
    for verdict in lists_none lists_flaws; do
        wait_window "Summer at the sea"
        press alt+h
        wait_window "Check Originals - sommer"
        settle
        check "$verdict"
        press Escape
        printf x | dd of="$albums/sommer/original/IMG_0003.JPG" bs=1 seek=2000 conv=notrunc status=none
    done
    wait_window "Summer at the sea"
    press ctrl+q
    wait_for 30 "The program's end" has_ended
    check wait "$taloram"
}

# A closed stream must not lend its number to the connection with the display.
start_without_streams() {
    "$bin/taloram" >&- 2>&- &
    taloram=$!
    wait_window "taloram - Photo Albums"
    check test "$(readlink "/proc/$taloram/fd/1")" = /dev/null
    check test "$(readlink "/proc/$taloram/fd/2")" = /dev/null
    press alt+c
    wait_for 30 "The program's end" has_ended
}

mkdir "$place/home"
"$bin/make_samples" "$card"
start_desktop "$place/home"
for step in first_start make_book make_album repair_album verify_album compare_with_talomake write_comment rename_album remove_book close_all \
    check_originals start_without_streams; do
    echo "$step"
    "$step"
done
