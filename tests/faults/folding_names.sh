#!/usr/bin/env bash
# Imports into an album on a disk for which small and capital letters are one. Names that would become one file are
# refused, both named, before anything is written; titles are kept whatever the text is called.
#
#   folding_names.sh <directory of the programs>
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"

card=$place/card
disk=$place/disk
album=$disk/album
import=("$bin/talomake" album --shrink-size 160,120 --progress never "$card" "$album")

on_folding_disk() {
    FOLDED_DIRECTORY=$disk LD_PRELOAD=$bin/folding_names.so \
        ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 "$@"
}

start_afresh() {
    rm -rf "$card" "$disk"
    mkdir "$card" "$disk"
    cp "$place/photograph" "$card/IMG.JPG"
}

#   is_refused <path in the album> <path in the album> [<name>...]
is_refused() {
    local before
    before=$(ls -AR "$disk")
    ends_with 1 on_folding_disk "${import[@]}" "${@:3}"
    check grep -qxF "$album/$1, $2: one file for the album's disk; rename one before the import." "$place/errors"
    [ "$before" = "$(ls -AR "$disk")" ] || fail "something was written: $(ls -AR "$disk")"
}

"$bin/make_samples" "$place/samples" 2
cp "$place/samples/IMG_0001.JPG" "$place/photograph"

for pair in IMG.JPG/img.jpg 'Ä.JPG/ä.jpg' "$(printf 'A%.0s' {1..210}).JPG/$(printf 'a%.0s' {1..210}).JPG"; do
    start_afresh
    for name in "${pair%/*}" "${pair#*/}"; do
        cp "$place/photograph" "$card/$name"
    done
    ends_with 0 "${import[@]}"
    rm -r "$album"
    if [[ $pair != Ä* ]]; then # the preloaded library folds plain letters alone
        is_refused "original/${pair%/*}" "original/${pair#*/}"
    else
        ends_with 0 on_folding_disk "${import[@]}"
    fi
done

start_afresh
touch "$card/a.txt" "$card/A.TXT"
is_refused txt/A.TXT txt/a.txt
start_afresh
printf 'Dunes\nDunes\n' >"$card/HEAD.TXT"
is_refused txt/HEAD.TXT txt/head.txt HEAD.TXT
ends_with 0 on_folding_disk "${import[@]}" # the card's texts become the album's own
check grep -q "Dunes" "$album/index.html"
rm -r "$album"
touch "$card/head.txt" # another file is read, where the card tells them apart
is_refused txt/HEAD.TXT txt/head.txt

start_afresh
ends_with 0 on_folding_disk "${import[@]}"
mv "$card/IMG.JPG" "$card/img.jpg"
is_refused original/IMG.JPG original/img.jpg
mv "$card/img.jpg" "$card/IMG.JPG"
mv "$album/txt/head.txt" "$album/txt/HEAD.TXT"
ends_with 0 on_folding_disk "${import[@]}" --title "By the sea"
check grep -q "By the sea" "$album/txt/HEAD.TXT"
check grep -q "By the sea" "$album/index.html"
[ ! -e "$album/txt/head.txt" ] || fail "two texts where the disk has one name"
echo "names that fold together are refused, and titles are kept"
