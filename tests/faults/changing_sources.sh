#!/usr/bin/env bash
# Takes files away, cuts them off or exchanges them while talomake is at work, and takes away the rights that it needs.
# It has to end with clear lines and the right status, never with a signal; what it copied is what the source held
# before or after the change, whole; and with everything back in its place the same command completes the album.
#
#   changing_sources.sh <directory of the programs> [<files cut off> [<seed>]]
set -euo pipefail

# The superuser may read and write everything, unless he goes without that power.
if [ "$(id -u)" -eq 0 ] && [ -z "${WITHOUT_POWER-}" ]; then
    WITHOUT_POWER=1 exec setpriv --bounding-set=-all --inh-caps=-all "$0" "$@"
fi
# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
cuts=${2:-20}
seed=${3:-$RANDOM}
RANDOM=$seed
echo "seed $seed"

card=$place/card
album=$place/album
reference=$place/reference
victim=IMG_0003.JPG
sizes=(--shrink-size 160,120 --progress never)
# The movie comes first: copying it leaves the time to change a photograph.
import=("$bin/talomake" album "${sizes[@]}" "$card" "$album" MVI_9999.MOV IMG_000{1,2,3,4}.JPG)
update=("$bin/talomake" update "${sizes[@]}" "$album")

has_line() {
    grep -qxF -- "$1" "$place/errors" || fail "no such line on standard error: $1"
}

complete() {
    ends_with 0 "$@"
    is_same "$reference" "$album"
}

# Files that the import has not finished: copies wait for their names until some dozens are on the disk.
copies_open() {
    find "/proc/$job/fd" -lname '* (deleted)' 2>/dev/null | wc -l
}

# Starts an import and stops it before it comes to the victim.
start_import() {
    local attempt
    for ((attempt = 0; attempt < 50; ++attempt)); do
        rm -rf "$album"
        "${import[@]}" >"$place/output" 2>"$place/errors" &
        job=$!
        until [ -e "$album/movie" ] || ! kill -0 $job 2>/dev/null; do
            :
        done
        kill -STOP $job 2>/dev/null || true
        if [ ! -e "$album/original/IMG_0001.JPG" ] && [ "$(copies_open)" -lt 4 ]; then
            return 0
        fi
        kill -KILL $job 2>/dev/null || true
        { wait $job || true; } 2>/dev/null
    done
    fail "the import was never caught while it copied"
}

# How a source changes, the status, and a line that tells.
change_sources() {
    local change status line
    while IFS='|' read -r change status line; do
        start_import
        cp -a "$card" "$place/kept"
        (cd "$card" && eval "$change")
        kill -CONT $job
        local ended=0
        wait $job || ended=$?
        [ $ended -eq "$status" ] || fail "status $ended instead of $status after: $change"
        [ -z "$line" ] || has_line "${line//ALBUM/$album}"
        local copied=$album/original/$victim
        if [ -e "$copied" ]; then
            cmp -s "$copied" "$card/$victim" || fail "neither the old nor the new file after: $change"
        fi
        chmod -R u+rwx "$card"
        rm -r "$card"
        mv "$place/kept" "$card"
        if [ ! -e "$copied" ]; then
            complete "${import[@]}"
        fi
    done <<EOL
rm $victim|1|ALBUM/original/$victim: file copy failed.
rm $victim|1|copyfiles() failed.
chmod 000 $victim|1|ALBUM/original/$victim: file copy failed.
rm $victim; mkdir $victim|1|ALBUM/original/$victim: file copy failed.
rm $victim; ln -s $victim $victim|1|ALBUM/original/$victim: file copy failed.
chmod 000 .|1|copyfiles() failed.
truncate -s 0 $victim|1|shrink() failed.
truncate -s 2000 $victim|1|shrink() failed.
cp IMG_0001.JPG new; mv new $victim|0|
EOL
    echo "sources that change while others are copied"
}

# Cuts a file off at a random moment of a command's work on it.
#   cut_off <file> <command>...
cut_off() {
    local file=$1 status=0 job
    shift
    "$@" >"$place/output" 2>"$place/errors" &
    job=$!
    sleep "0.$(printf '%03d' $((RANDOM % 250)))"
    truncate -s $((RANDOM * 16 % $(stat -c %s "$file"))) "$file"
    wait $job || status=$?
    [ $status -le 1 ] || fail "status $status after $file was cut off"
    [ $status -eq 0 ] || [ -s "$place/errors" ] || fail "no line on standard error"
    failures=$((failures + status))
}

cut_sources_off() {
    local i failures=0
    mkdir "$place/large"
    for ((i = 0; i < cuts; ++i)); do
        rm -rf "$album"
        cp "$place/sample/IMG_0001.JPG" "$place/large/IMG_0001.JPG"
        cut_off "$place/large/IMG_0001.JPG" "$bin/talomake" album --rotate IMG_0001.JPG=90 "$place/large" "$album"
        for whole in "$place"/{sample,large}/IMG_0001.JPG; do
            ! cmp -s "$whole" "$album/original/IMG_0001.JPG" || continue 2
        done
        [ ! -e "$album/original/IMG_0001.JPG" ] || fail "neither the whole nor the shorter file was copied"
    done
    rm -rf "$album"
    ends_with 0 "$bin/talomake" album "$place/sample" "$album" IMG_0001.JPG
    rm "$album/size1/IMG_0001.JPG"
    mv "$album" "$place/unfinished"
    for ((i = 0; i < cuts; ++i)); do
        for directory in original size0; do
            rm -rf "$album"
            cp -a "$place/unfinished" "$album"
            cut_off "$album/$directory/IMG_0001.JPG" "$bin/talomake" update "$album"
        done
    done
    echo "photographs cut off at work: $((3 * cuts)), $failures of them with a failure"
}

# What loses a right, which right, the command, its status, and how its first line begins.
take_rights() {
    local what right name status line
    while read -r what right name status line; do
        local -n command=$name
        rm -rf "$album"
        cp -a "$reference" "$album"
        rm "$album"/{size1,thumb,html}/IMG_0001* "$album"/{original,size0}/IMG_0002.JPG "$album"/txt/count.txt
        [ "$name" = import ] || cp -a "$reference/original" "$album"
        chmod "$right" "$place/$what"
        ends_with "$status" "${command[@]}"
        chmod u+rw "$place/$what"
        grep -qF -- "${line//PLACE/$place}" "$place/errors" || fail "no line on standard error with: $line"
        has_whole_files "$album" "$reference"
        complete "${command[@]}"
    done <<'EOL'
card a-r import 2 talomake: PLACE/card: can't be read.
card/head.txt a-r import 1 PLACE/card/head.txt: comment text load failed, Permission denied
card/IMG_0001.JPG a-r import 1 PLACE/album/original/IMG_0001.JPG: file copy failed.
album a-w import 1 PLACE/album/index.html: open error, Permission denied
album/txt a-w import 1 PLACE/album/txt/head.txt: file
album/txt/head.txt a-r import 1 PLACE/album/txt/head.txt: comment text load failed, Permission denied
album/txt/last.txt a-r import 1 PLACE/album/txt/last.txt: comment text load failed, Permission denied
album/original a-w import 1 PLACE/album/original/IMG_0002.JPG: file copy failed.
album/size0 a-w import 1 PLACE/album/original/
album/thumb a-w import 1 PLACE/album/original/
album/html a-w import 1 PLACE/album/html/IMG_0001_1.html: write open error.
album a-w update 1 PLACE/album/index.html: open error, Permission denied
album/txt a-w update 1 PLACE/album/txt/count.txt: open error, Permission denied
album/size0 a-w update 1 PLACE/album/size0/IMG_0002.JPG: jpegdata save() failed.
album/size1 a-w update 1 PLACE/album/size1/IMG_0001.JPGsvjdata save() failed.
album/thumb a-w update 1 PLACE/album/thumb/IMG_0001.JPG: thumbnail save failed, Permission denied
album/html a-w update 1 PLACE/album/html/IMG_0001_1.html: write open error.
album/original a-r update 1 PLACE/album/original: getfiles failed, Permission denied
album/original/IMG_0001.JPG a-r update 1 IMG_0001.JPG: jpegdata load() failed.
EOL
    echo "rights that were taken away"
}

# A book with what nobody may look into: named once, and no failure; but an album that can't be listed is one.
close_directories() {
    local book=$place/book command
    mkdir -p "$book/txt" "$book/lost+found"
    cp -a "$reference" "$book/whole"
    printf 'A book\r\nA book\r\n' >"$book/txt/head.txt"
    chmod 000 "$book/lost+found"
    for command in update book; do
        ends_with 0 "$bin/talomake" $command "$book"
        check [ "$(cat "$place/errors")" = "$book/lost+found: passed over, Permission denied" ]
    done
    check grep -q whole/index.html "$book/index.html"
    chmod a-r "$book/whole/txt/head.txt"
    for command in update book; do
        ends_with 1 "$bin/talomake" $command "$book"
        has_line "$book/whole/txt/head.txt: comment text load failed, Permission denied"
        check grep -q whole/index.html "$book/index.html"
    done
    chmod -R u+rwx "$book"
    echo "directories that are closed"
}

"$bin/make_samples" "$place/sample"
"$bin/make_samples" "$card" 4
truncate -s 20M "$card/MVI_9999.MOV"
printf 'Of the card\r\nOf the card\r\n' >"$card/head.txt"
ends_with 0 "${import[@]}"
mv "$album" "$reference"
change_sources
cut_sources_off
take_rights
close_directories
