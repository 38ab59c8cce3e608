#!/usr/bin/env bash
# Fills the disk at every stage of imports and updates, with ever larger small file systems, with ever more names that
# one has room for, and with limits on the size of a file. talomake has to fail with a line and a status, without half
# a file under a final name; with room made, the same command has to complete the album.
#
#   full_disk.sh <directory of the programs> [<sizes for each job>]     0: every page of memory
set -euo pipefail

steps=${2:-8}
# Mounts need a superuser, if only one of a namespace of his own.
if [ -z "${FULL_DISK_INSIDE-}" ]; then
    for inside in "unshare --mount" "unshare --map-root-user --mount"; do
        if $inside true 2>/dev/null; then
            FULL_DISK_INSIDE=1 exec $inside "$0" "$@"
        fi
    done
fi
# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"

page=4       # KiB
last_ones=13 # pages and such are small and come last
card=$place/card
disk=$place/disk # a book
album=$disk/album
mkdir "$disk"
sizes=(--shrink-size 160,120)
import=(album "${sizes[@]}" --title "At the sea" "$card" "$album")
update=(update "${sizes[@]}" "$album")
# The check before an import would not let it come to a full disk.
restricted=("$bin/restricted" --no-free-space-query)
"${restricted[@]}" true || skip "the disk can't be filled: ${restricted[*]}"
declare -A met

#   mount_disk <size, KiB> <names>
mount_disk() {
    mount -t tmpfs -o "size=$1k,nr_inodes=$2" tmpfs "$disk"
}

# What the last command failed at.
stage() {
    case $(head -n 1 "$place/errors") in
        */head.txt:* | */last.txt:*) echo "comments" ;;
        *": file copy failed."*) echo "copy" ;;
        */size0/*) echo "level 0" ;;
        */size[1-9]/*) echo "reduced sizes" ;;
        */thumb/*) echo "thumbnails" ;;
        "$album/index.html:"*) echo "index page" ;;
        */list.html:*) echo "list page" ;;
        */count.txt:*) echo "count.txt" ;;
        */html/*) echo "zoom pages" ;;
        "$disk/index.html:"*) echo "book's page" ;;
        "") fail "no line on standard error" ;;
        *) echo "other: $(head -n 1 "$place/errors")" ;;
    esac
}

# Standard error goes through a pipe: limits do not hold there.
run() {
    local status=0
    "${restricted[@]}" "$bin/talomake" "$@" 2>&1 >/dev/null | cat >"$place/errors" || status=$?
    return $status
}

# Runs the job on what is a full disk for it, or a large enough one, and again after `make_room`.
#   survive <with what> <start> <goal> <talomake's arguments>...
survive() {
    local with=$1 start=$2 goal=$3 status=0
    run "${@:4}" || status=$?
    has_whole_files "$disk" "$goal" "$start"
    case $status in
        0) ;;
        1) met[$(stage)]+=" $with" ;;
        *) fail "status $status with $with: ${*:4}" ;;
    esac
    make_room
    run "${@:4}" || fail "with room made after $with: ${*:4}"
    is_same "$goal" "$disk"
}

#   tell <name> <stage that must have been met>...
tell() {
    echo "$1"
    local wanted
    for wanted in "${!met[@]}"; do
        echo "    $wanted:${met[$wanted]}"
    done
    for wanted in "${@:2}"; do
        [ -n "${met[$wanted]-}" ] || fail "$1 never ended at stage: $wanted"
    done
    met=()
}

# Values from a first to a last one, some or all of them, and each of the last ones.
#   values <first> <last> <distance of two> <last ones>
values() {
    local step=$((($2 - $1) / (steps > 0 ? steps : 1) / $3 * $3))
    [ $steps -gt 0 ] && [ $step -gt 0 ] || step=$3
    { seq "$1" "$step" "$2" && seq $(($2 - $4 * $3 > $1 ? $2 - $4 * $3 : $1)) "$3" "$2"; } | sort -nu
}

make_room() {
    mount -o remount,size=64m,nr_inodes=10000 "$disk"
}

#   used <column of df> <directory>   what its copy takes
used() {
    mount_disk 65536 10000
    cp -a "$2/." "$disk"
    df --output="$1" "$disk" | tail -n 1
    umount "$disk"
}

# A disk that is too small from the start is left alone, and one that may not be written too.
refuse_disks() {
    mount_disk 200 10000
    cp -a "$place/empty/." "$disk"
    ends_with 1 "$bin/talomake" "${import[@]}"
    grep -qx "$album: [0-9.]* KiB more free space is needed for this import." "$place/errors" || fail "no room was missed"
    is_same "$place/empty" "$disk"
    make_room
    ends_with 0 "$bin/talomake" "${import[@]}"
    is_same "$place/full" "$disk"

    local command
    for command in import update; do
        local -n arguments=$command
        rm -rf "${disk:?}"/*
        cp -a "$place/broken/." "$disk"
        mount -o remount,ro "$disk"
        ends_with 1 "$bin/talomake" "${arguments[@]}"
        check grep -q "^$album/[a-z0-9]*/.*: " "$place/errors"
        is_same "$place/broken" "$disk"
        mount -o remount,rw "$disk"
        ends_with 0 "$bin/talomake" "${arguments[@]}"
        is_same "$place/full" "$disk"
    done
    umount "$disk"
    echo "a disk that is too small, and one that may not be written: left alone"
}

#   fill_disks <name> <start> <goal> <arguments>...
fill_disks() {
    local name=$1 start=$2 goal=$3 value
    for value in $(values "$(used used "$start")" $(($(used used "$goal") + 2 * page)) $page $last_ones); do
        mount_disk "$value" 10000
        cp -a "$start/." "$disk"
        survive "$value" "$start" "$goal" "${@:4}"
        umount "$disk"
    done
    tell "$name, size of the disk in KiB" "${stages[@]}"
}

# The same with room for the bytes but not for the names.
fill_directories() {
    local name=$1 start=$2 goal=$3 value
    for value in $(values $(($(used iused "$start") + 1)) "$(used iused "$goal")" 1 $last_ones); do
        mount_disk 65536 "$value"
        cp -a "$start/." "$disk"
        survive "$value" "$start" "$goal" "${@:4}"
        umount "$disk"
    done
    tell "$name, names on the disk" "${stages[@]}"
}

# A book with an album that has comments, and no more.
prepare() {
    "$bin/make_samples" "$card" 3
    truncate -s 20K "$card/MVI_9999.MOV"
    mkdir -p "$place/empty/txt" "$place/empty/album/txt"
    printf '%s\r\n' Before Before "The old words." |
        tee "$place/empty"/{,album/}txt/{head,last}.txt >/dev/null

    cp -a "$place/empty/." "$disk"
    ends_with 0 "$bin/talomake" "${import[@]}"
    cp -a "$disk" "$place/full"
    cp -a "$disk" "$place/broken"
    rm "$place/broken/album"/{size*/*2.JPG,size1/*3.JPG,thumb/*1.JPG,*.html,html/*,txt/count.txt}
    rm -r "${disk:?}"/*
}

limit_files() {
    local name=$1 start=$2 goal=$3 largest value
    make_room() {
        restricted=()
    }
    largest=$(find "$goal" -type f -printf '%k\n' | sort -n | tail -n 1)
    for value in $(values 0 $((largest + 1)) 1 1); do
        rm -rf "${disk:?}"/*
        cp -a "$start/." "$disk"
        restricted=(prlimit --fsize=$((value * 1024)): --)
        survive "$value" "$start" "$goal" "${@:4}"
    done
    tell "$name, limit on the size of a file in KiB" "${stages[@]}"
}

prepare
if mount_disk 1024 100 2>/dev/null; then
    umount "$disk"
    refuse_disks
    stages=(comments copy "level 0" "reduced sizes" thumbnails "index page" "list page" count.txt "zoom pages" "book's page")
    fill_disks import "$place/empty" "$place/full" "${import[@]}"
    # Where there are names for the pages there is one for the book's page: that of the note of unflushed sizes.
    stages=(copy thumbnails "index page" "list page" count.txt "zoom pages")
    fill_directories import "$place/empty" "$place/full" "${import[@]}"
    stages=("reduced sizes" thumbnails "index page" "list page" count.txt "zoom pages")
    fill_disks update "$place/broken" "$place/full" "${update[@]}"
else
    echo "skipped: small file systems, which nobody may mount here"
fi
stages=(comments copy)
limit_files import "$place/empty" "$place/full" "${import[@]}"
stages=(thumbnails)
limit_files update "$place/broken" "$place/full" "${update[@]}"
