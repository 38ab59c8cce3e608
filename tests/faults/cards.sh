#!/usr/bin/env bash
# Kills `talomake card` at random moments, and lets cards vanish and calls fail under it. The line that a card may be
# cleared must never come then; undisturbed, the same command has to end with the book that it would have made at once.
#
#   cards.sh <directory of the programs> [<kills> [<photographs> [<seed>]]]
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
kills=${2:-6}
photographs=${3:-20}
seed=${4:-$RANDOM}
RANDOM=$seed
echo "seed $seed"

card=$place/card
book=$place/book
reference=$place/reference
import=("$bin/talomake" card --shrink-size 160,120 --progress never "$card" "$place/second" "$book")
check=("${import[@]:0:2}" --check "${import[@]:2}")
cleared="Every file of the card is in the book: it may be cleared."

is_cleared() {
    grep -qxF "$cleared" "$place/output"
}

make_cards() {
    local i
    mkdir -p "$card/DCIM" "$place/second" "$book"
    "$bin/make_samples" "$card/DCIM/100" "$photographs"
    "$bin/make_samples" "$card/DCIM/101" $((photographs / 2)) 1000
    for ((i = 1; i <= photographs; i += 3)); do
        cp -p "$card/DCIM/100/IMG_$(printf %04d $i).JPG" "$place/second/COPY_$i.JPG"
    done
    : >"$card/DCIM/100/EMPTY.JPG"
}

complete() {
    ends_with 0 "${import[@]}"
    is_cleared || fail "nothing is missing, and the card may not be cleared"
    is_same "$reference" "$book"
}

start_afresh() {
    rm -rf "$book"
    mkdir "$book"
}

# Copies under final names are whole: of each file of the book's originals and movies the card has the sum.
has_whole_copies() {
    find "$book" \( -path '*/original/*' -o -path '*/movie/*' \) -type f ! -name '.*' -exec sha256sum {} + |
        while read -r sum file; do
            grep -q "^$sum" "$place/sums" || fail "no file of the card: $file"
        done
}

kill_often() {
    local done_kills=0 in_a_row=0 start span job status moment
    start=$(date +%s%6N)
    "${import[@]}" >/dev/null 2>&1
    span=$(($(date +%s%6N) - start))
    start_afresh
    while [ $done_kills -lt "$kills" ]; do
        status=0
        "${import[@]}" >"$place/output" 2>"$place/errors" &
        job=$!
        moment=$(((RANDOM * 32768 + RANDOM) % span))
        sleep "$((moment / 1000000)).$(printf %06d $((moment % 1000000)))"
        kill -KILL $job 2>/dev/null || true
        { wait $job || status=$?; } 2>/dev/null
        [ $status -eq 137 ] || {
            [ $status -eq 0 ] || fail "status $status"
            complete
            start_afresh
            continue
        }
        ! is_cleared || fail "killed before the end, and the card may be cleared"
        has_whole_copies
        done_kills=$((done_kills + 1))
        in_a_row=$((in_a_row + 1))
        if [ $((RANDOM % 3)) -eq 0 ] || [ $in_a_row -eq 3 ]; then
            complete
            start_afresh
            in_a_row=0
        fi
    done
    complete
    echo "kills: $done_kills"
}

#   fails_under <calls that fail> <command>...
fails_under() {
    ends_with 1 failing "$@"
    ! is_cleared || fail "the card may be cleared in spite of $1"
    grep -q 'Keep the card' "$place/errors" || fail "nothing says so: $1"
}

# How often a command makes a call on the card.
count_calls() {
    failing "$1:NOTE:0:$card/" "${@:2}" 2>&1 >/dev/null | grep -c "^$1 "
}

# The card goes after some of the calls that read it, for good; in the import, or only in the proof.
vanish() {
    local call count step
    for call in open readdir; do
        start_afresh
        count=$(count_calls $call "${import[@]}")
        for step in 0 1 3 5 7; do
            start_afresh
            fails_under "$call:EIO:$((count * step / 8)):$card/" "${import[@]}"
            has_whole_copies
        done
        complete
    done
    for call in open readdir pread; do
        count=$(count_calls $call "${check[@]}")
        for step in 0 1 2 3; do
            fails_under "$call:EIO:$(((count - 1) * step / 3)):$card/" "${check[@]}"
        done
        is_same "$reference" "$book"
    done
    echo "cards that vanish"
}

# What of the book can't be read proves nothing.
break_book() {
    local calls
    for calls in "readdir:EIO:3:$book/" "pread:EIO:9:$book/" "fsync:EIO:5:$book/" "open:EACCES:30:$book/"; do
        fails_under "$calls" "${check[@]}"
    done
    is_same "$reference" "$book"
    echo "books that can't be read"
}

# What is compared comes from the disk: written, dropped from memory, then read to its end.
look_at_order() {
    local copy
    copy=$(find "$book" -path '*/original/IMG_0001.JPG' | head -n 1)
    failing "fsync:NOTE:0:$copy;posix_fadvise:NOTE:0:$copy;pread:NOTE:0:$copy" "${check[@]}" >"$place/output" 2>"$place/calls"
    check is_cleared
    check grep -qE '(pread )+fsync posix_fadvise (pread )+$' < <(cut -d ' ' -f 1 "$place/calls" | tr '\n' ' ')
    echo "the proof reads from the disk"
}

make_cards
find "$card" "$place/second" -type f -exec sha256sum {} + >"$place/sums"
ends_with 0 "${import[@]}"
cp -a "$book" "$reference"
complete
kill_often
vanish
break_book
look_at_order
