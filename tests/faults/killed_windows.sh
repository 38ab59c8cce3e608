#!/usr/bin/env bash
# Kills taloram while it makes an album that a user ordered in its window, verified, over another album half of the
# time. After each kill no process of it goes on, what bears a final name is complete, and the same order, given again
# in the window or to talomake, ends with the album that it would have made at first.
#
#   killed_windows.sh <directory of the programs> [<kills> [<photographs> [<seed>]]]
#                                                              under a display without a window manager
set -euo pipefail

for tool in openbox xdotool; do
    if ! command -v "$tool" >/dev/null || [ -z "${DISPLAY-}" ]; then
        echo "skipped: $tool or a display is missing, see scripts/install-dependencies"
        exit 77
    fi
done
# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
# shellcheck source=tests/end_to_end/play_user.sh
source "$(dirname "${BASH_SOURCE[0]}")/../end_to_end/play_user.sh"
kills=${2:-3}
photographs=${3:-150}
seed=${4:-$RANDOM}
RANDOM=$seed
echo "seed $seed"
trap 'stop_desktop; rm -rf "$place" 2>/dev/null' EXIT

card=$place/card
albums=$place/albums
album=$albums/day
command=(album --verify --title Day "$card" "$album")

prepare() {
    "$bin/make_samples" "$card" "$photographs" 1000
    rm -f "$card"/*.txt
    mkdir -p "$albums/txt" "$HOME/.config/taloram"
    printf 'Albums\r\nAlbums\r\n' >"$albums/txt/head.txt"
    ends_with 0 "$bin/talomake" "${command[@]}"
    mv "$album" "$place/older"
    rm -r "$card"
    "$bin/make_samples" "$card" "$photographs"
    rm -f "$card"/*.txt
    ends_with 0 "$bin/talomake" "${command[@]}"
    mv "$album" "$place/wanted"
    cp -a "$place/older" "$album"
    ends_with 0 "$bin/talomake" "${command[@]}" --replace
    mv "$album" "$place/replaced"
    printf 'from=%s\r\nalbum=%s\r\n' "$card" "$albums" >"$HOME/.taloram"
    printf '[album maker]\nverify_copies=true\n' >"$HOME/.config/taloram/window.conf"
}

# All of the card into the album, up to the question whether to add to one that is there.
order() {
    start_taloram "$bin/taloram"
    wait_window "taloram - Photo Albums"
    press alt+e
    wait_window "Edit Book - albums"
    press alt+e
    wait_window "New Album"
    wait_size 900 600
    press alt+i # all photographs: the choice turned round
    press alt+a
    fill day
    press alt+t
    fill Day
    press alt+o
    if [ -d "$album" ]; then
        wait_window "Message" # adds to the album
        local first=$window
        press alt+y
        wait_window "Message" "$first" # replaces files
        press alt+y
    fi
}

# The page of the book is written last.
is_over() {
    grep -q day/index.html "$albums/index.html"
}

# Nobody may hold the album's lock any more.
is_free() {
    [ ! -d "$album" ] || flock -n "$album" true
}

start_album() {
    rm -rf "$album"
    [ -z "$start" ] || cp -a "$place/$start" "$album"
}

prepare
start_desktop "$place/home"
for ((done_kills = 0; done_kills < kills; done_kills++)); do
    start="" goal=wanted
    if [ $((done_kills % 2)) -eq 1 ]; then
        start=older goal=replaced
    fi
    start_album
    order
    wait_for 30 "the import" test -d "$album/original"
    sleep "$((RANDOM % 2)).$((RANDOM % 10))$((RANDOM % 10))"
    kill -KILL "$taloram"
    wait "$taloram" 2>/dev/null || true
    wait_for 5 "the end of what the program had started" is_free
    has_whole_files "$album" "$place/$goal" ${start:+"$place/$start"}
    echo "kill $((done_kills + 1)): $(find "$album/original" "$album/movie" -type f 2>/dev/null | wc -l) copies, $(
        find "$album/thumb" -type f 2>/dev/null | wc -l) thumbnails"
    ends_with 0 "$bin/talomake" "${command[@]}" --replace
    is_same "$place/$goal" "$album"
done
start="" goal=wanted
start_album
rm -f "$albums/index.html"
order
wait_for 120 "the end of the import" is_over
kill "$taloram"
is_same "$place/$goal" "$album"
