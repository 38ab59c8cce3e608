#!/usr/bin/env bash
# Lets system calls fail as they do on broken disks. What can't be read to its end is never taken for all there is.
#
#   broken_disks.sh <directory of the programs>
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"

card=$place/card
album=$place/album
reference=$place/reference
sizes=(--shrink-size 160,120 --progress never)
import=("$bin/talomake" album "${sizes[@]}" "$card" "$album")
update=("$bin/talomake" update "${sizes[@]}" "$album")

# What breaks off a listing or a text, the status, and the command; the album stays as it was, or stays away. What has
# lost an original would be pruned.
break_reading_off() {
    local rule status command
    while read -r rule status command; do
        local -n words=$command
        rm -rf "$album"
        [ "$command" = import ] || cp -a "$place/verified" "$album"
        ends_with "$status" failing "$rule" "${words[@]}"
        [ -s "$place/errors" ] || fail "no line on standard error: $rule"
        if [ "$command" = import ]; then
            [ ! -e "$album" ] || fail "something was imported from half a listing"
        else
            is_same "$place/verified" "$album"
        fi
    done <<'EOL'
readdir:EIO:4:/card 2 import
readdir:EIO:4:/album/original 1 update
readdir:EIO:4:/album/original 1 prune
readdir:EIO:4:/album/size1 1 prune
readdir:EIO:4:/album/thumb 1 prune
readdir:EIO:4:/album/html 1 prune
readdir:EIO:4:/album/original 1 verify
readdir:EIO:4:/album/movie 1 verify
readdir:EIO:4:/album/thumb 1 update
read:EIO:0:/album/txt/head.txt 1 update
read:EIO:0:/album/txt/last.txt 1 update
read:EIO:0:/album/txt/IMG_0001.JPG.txt 1 update
EOL
    echo "listings and texts that break off"
}

# Calls that fail for an import over an album of other photographs: their files and all that was made of them stay.
fail_copies() {
    local calls
    for calls in close:EDQUOT:0:/album/original write:EIO:0:/album/original rename:EIO:0:/album/original \
        linkat:EIO:0:/album/original; do
        rm -rf "$album"
        cp -a "$place/other" "$album"
        ends_with 1 failing "$calls" "${import[@]}" --replace IMG_0001.JPG
        check grep -qx "$album/original/IMG_0001.JPG: file copy failed." "$place/errors"
        is_same "$place/other" "$album"
    done
    # A date that can't be set costs no line when the file can be replaced.
    rm -rf "$album"
    cp -a "$reference" "$album"
    touch -d "2001-01-01" "$album/movie/MVI_9999.MOV"
    ends_with 0 failing utimensat:EPERM:0:/album/movie "${import[@]}"
    check cmp "$place/errors" /dev/null
    check [ "$(stat -c %Y "$album/movie/MVI_9999.MOV")" = "$(stat -c %Y "$card/MVI_9999.MOV")" ]
    is_same "$reference" "$album"
    echo "copies that fail"
}

# Above the directories of an album nothing may be written, or there is another file system.
stage_beside() {
    local error way
    for error in EXDEV EACCES EPERM EROFS; do
        for way in "" "$bin/restricted --no-unnamed-files"; do
            rm -rf "$album"
            cp -a "$reference" "$album"
            # shellcheck disable=SC2086
            ends_with 0 failing "linkat:$error:0:/../.taloram-new-;open:$error:0:/../.taloram-new-" $way \
                "$bin/talomake" album "${sizes[@]}" --replace "$place/other-card" "$album"
            is_same "$place/other" "$album"
        done
    done
    echo "files staged beside their names"
}

# File systems without locks cost one line.
refuse_locks() {
    local error
    for error in EOPNOTSUPP ENOLCK; do
        rm -rf "$album"
        ends_with 0 failing "flock:$error:0:" "${import[@]}"
        check grep -q "^$album: can't be locked, .*; let no other program write there meanwhile.\$" "$place/errors"
        check [ "$(wc -l <"$place/errors")" -eq 1 ]
        is_same "$reference" "$album"
    done
    echo "file systems without locks"
}

# What may be a book becomes no album.
hide_what_is_there() {
    rm -rf "$album"
    mkdir -p "$album/below/original"
    ends_with 2 "${import[@]}"
    ends_with 2 failing "readdir:EIO:0:/album" "${import[@]}"
    check grep -qx "talomake: $album: can't be read." "$place/errors"
    check [ "$(ls -A "$album" "$album/below/original")" = "$(printf '%s:\nbelow\n\n%s:' "$album" "$album/below/original")" ]
    echo "directories that can't be listed"
}

# A turn that can't be written turns nothing, and nothing of it stays.
fail_turns() {
    local calls
    cp -a "$reference" "$place/unturned"
    for calls in write:ENOSPC:0:/.taloram-turning- write:ENOSPC:3:/.taloram-turning- \
        fsync:EIO:0:/.taloram-turning- rename:EIO:0:/.taloram-turned-; do
        rm -rf "$album"
        cp -a "$place/unturned" "$album"
        ends_with 1 failing "$calls" "$bin/talomake" turn "$album" 90 IMG_0001.JPG IMG_0002.JPG
        check [ -s "$place/errors" ]
        is_same "$place/unturned" "$album"
    done
    echo "turns that fail"
}

# A size on another disk is copied there; what it is copied from stays until the copy is on the disk.
flush_turned_copies() {
    local copied=$album/size1/IMG_0001.JPG
    rm -rf "$album"
    cp -a "$place/unturned" "$album"
    ends_with 0 failing "rename:EXDEV:1:/.taloram-turned-;fsync:NOTE:0:$copied;unlink:NOTE:0:/.taloram-turned-" \
        "$bin/talomake" turn "$album" 90 IMG_0001.JPG
    check grep -qx "fsync $copied" "$place/errors"
    sed -n "/^unlink .*size1/,\$p" "$place/errors" | grep -qx "fsync $copied" && fail "removed before it was flushed"
    echo "turned files on another disk"
}

# What can't be removed is named.
fail_removals() {
    local part
    for part in /album/size1/IMG_0002 /album/html/IMG_0002; do
        rm -rf "$album"
        cp -a "$place/verified" "$album"
        ends_with 1 failing "unlink:EIO:0:$part" "${prune[@]}"
        check grep -q "$part.*: can't be removed, Input/output error" "$place/errors"
        [ ! -e "$album/thumb/IMG_0002.JPG" ] || fail "the others were not removed: $part"
    done
    echo "removals that fail"
}

# What a verified import reads back comes from the disk, where it was brought before, and so are the names in the end.
note_flushes() {
    local file directory
    rm -rf "$album"
    ends_with 0 failing "fsync:NOTE:0:/album;posix_fadvise:NOTE:0:/album" "${import[@]}" --verify
    for file in original/IMG_000{1,2,3,4}.JPG movie/MVI_9999.MOV; do
        check grep -qx "fsync $album/$file" "$place/errors"
        sed "1,\\|^fsync $album/$file\$|d" "$place/errors" | grep -qx "posix_fadvise $album/$file" ||
            fail "not read from the disk: $file"
    done
    for directory in "$album"{,/original,/movie,/txt}; do
        tac "$place/errors" | sed "/^posix_fadvise/,\$d" | grep -Eqx "fsync $directory(/\.)?" || fail "not flushed last: $directory"
    done
    ends_with 0 failing "posix_fadvise:NOTE:0:/album" "$bin/talomake" verify "$album"
    check [ "$(grep -c ^posix_fadvise "$place/errors")" -eq 5 ]
    echo "verified copies"
}

"$bin/make_samples" "$card" 4
ends_with 0 "${import[@]}"
mv "$album" "$reference"
"$bin/make_samples" "$place/other-card" 4 1000
ends_with 0 "$bin/talomake" album "${sizes[@]}" --title "$(head -n 1 "$reference/txt/head.txt" | tr -d '\r')" \
    "$place/other-card" "$album"
mv "$album" "$place/other"
ends_with 0 "${import[@]}" --verify
mv "$album" "$place/verified"
rm "$place/verified/original/IMG_0002.JPG"
echo words >"$place/verified/txt/IMG_0001.JPG.txt"
prune=("${update[@]}" --prune)
verify=("$bin/talomake" verify "$album")
break_reading_off
fail_copies
stage_beside
refuse_locks
hide_what_is_there
fail_turns
flush_turned_copies
fail_removals
note_flushes
