#!/usr/bin/env bash
# Runs talomake twice on one album, the second at a random moment after the first: imports of two cards, an import beside
# an update, imports of two albums of one book, cards that have another photograph under one name. Both have to end as
# they would have alone, one after the other. A program that is killed while it writes keeps nobody waiting.
#
#   two_programs.sh <directory of the programs> [<pairs of each kind> [<photographs> [<seed>]]]
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
pairs=${2:-20}
photographs=${3:-12}
seed=${4:-$RANDOM}
RANDOM=$seed
echo "seed $seed"

one=$place/one
two=$place/two
book=$place/book
reference=$place/reference
options=(--shrink-size 160,120 --progress never --jobs 2)
waits=0

import() {
    "$bin/talomake" album "${options[@]}" --verify "$@"
}

update() {
    "$bin/talomake" update "${options[@]}" "$@"
}

start_afresh() {
    rm -rf "$book"
    mkdir -p "$book/txt"
}

# Runs two commands (functions with their words) at a random distance; their statuses are in $first and $second.
#   run_pair "<command>" "<command>"
run_pair() {
    local job
    first=0 second=0
    $1 >"$place/output" 2>"$place/first" &
    job=$!
    sleep "0.$(printf '%03d' $((RANDOM % longest)))"
    $2 >"$place/output" 2>"$place/errors" || second=$?
    wait $job || first=$?
    cat "$place/first" >>"$place/errors"
    if grep -q 'another program writes there; waiting' "$place/errors"; then
        waits=$((waits + 1))
    fi
}

# Whoever comes first decides about the album's texts.
both_end_well() {
    [ "$first $second" = "0 0" ] || fail "status $first and $second of: $*"
    [ -z "$(differences "$place/reversed" "$book")" ] || is_same "$reference" "$book"
}

# $longest becomes the milliseconds that an import takes, at most 999.
measure() {
    local start
    start=$(date +%s%3N)
    import "$one" "$book/album" >/dev/null
    longest=$(($(date +%s%3N) - start))
    longest=$((longest > 999 ? 999 : longest))
}

"$bin/make_samples" "$one" "$photographs"
"$bin/make_samples" "$two" "$photographs" 1000
for file in "$two"/*; do
    mv "$file" "$two/B_$(basename "$file")"
done

start_afresh
measure
import "$two" "$book/album" >/dev/null
import "$two" "$book/other" >/dev/null
mv "$book" "$reference"
start_afresh
import "$two" "$book/album" >/dev/null
import "$one" "$book/album" >/dev/null
import "$two" "$book/other" >/dev/null
mv "$book" "$place/reversed"

for ((pair = 1; pair <= pairs; ++pair)); do
    start_afresh
    if [ $((pair % 2)) -eq 0 ]; then
        import "$two" "$book/other" >/dev/null
        run_pair "import $one $book/album" "import $two $book/album"
    else
        run_pair "import $two $book/other" "import $one $book/album"
        both=$first$second
        [ "$both" = 00 ] || fail "status $first and $second of imports into two albums"
        run_pair "import $two $book/album" "update $book"
    fi
    both_end_well "pair $pair"
    ends_with 0 "$bin/talomake" verify "$book"
done
echo "$pairs pairs lost nothing; $waits times one waited"

# Of two photographs with one name the first stays, and whoever comes second is told.
mkdir "$place/three"
cp "$two/B_IMG_0001.JPG" "$place/three/IMG_0001.JPG"
for ((pair = 1; pair <= (pairs + 1) / 2; ++pair)); do
    start_afresh
    run_pair "import $one $book/album IMG_0001.JPG" "import $place/three $book/album"
    case "$first $second" in
        "0 1") winner=$one ;;
        "1 0") winner=$place/three ;;
        *) fail "status $first and $second of imports of different photographs with one name" ;;
    esac
    check cmp "$winner/IMG_0001.JPG" "$book/album/original/IMG_0001.JPG"
    check grep -q 'IMG_0001.JPG: there already, with other contents.$' "$place/errors"
done
echo "photographs with one name: the first stays"

flock "$book/album" sleep 1 &
sleep 0.2
ends_with 0 "$bin/talomake" update "${options[@]}" "$book/album"
check grep -qxF "$book/album: another program writes there; waiting for its end." "$place/errors"
wait
echo "one program waits for another and tells so"

for ((kill = 1; kill <= pairs; ++kill)); do
    # No function, whose shell would be killed instead.
    "$bin/talomake" album "${options[@]}" --verify "$one" "$book/album" --replace >/dev/null 2>&1 &
    job=$!
    sleep "0.$(printf '%03d' $((RANDOM % longest)))"
    kill -KILL $job 2>/dev/null || true
    { wait $job || true; } 2>/dev/null
    ends_with 0 timeout 60 "$bin/talomake" update "${options[@]}" "$book"
    # A worker may take a moment to end with its program.
    check [ -z "$(grep -v 'another program writes there; waiting' "$place/errors")" ]
done
echo "$pairs kills kept nobody waiting"
