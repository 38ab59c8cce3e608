#!/usr/bin/env bash
# Kills `talomake turn` at each system call that may change files, and looks at the album: after the next update the
# photographs are as they were or turned once, all their sizes, and after the same command again turned once. Then it
# fills small disks under it.
#
#   killed_turns.sh <directory of the programs> [<1: at each call; n: at each n-th>]
set -euo pipefail

step=${2:-1}
if [ -z "${KILLED_TURNS_INSIDE-}" ]; then
    for inside in "unshare --mount" "unshare --map-root-user --mount"; do
        if $inside true 2>/dev/null; then
            KILLED_TURNS_INSIDE=1 exec $inside "$0" "$@"
        fi
    done
fi
# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
# One process does all, so that every call is seen.
export TALORAM_JOBS=1

album=$place/album
unturned=$place/unturned
turned=$place/turned
turn=(turn "$album" 90 IMG_0001.JPG IMG_0002.JPG)
update=(update --shrink-size 160,120 "$album")

prepare() {
    printf 'shrink_size=160,120\r\n' >"$HOME/.taloram"
    "$bin/make_samples" "$place/card" 3
    ends_with 0 "$bin/talomake" album --shrink-size 160,120 "$place/card" "$album"
    cp -a "$album" "$unturned"
    ends_with 0 "$bin/talomake" "${turn[@]}"
    [ -n "$(differences "$unturned/thumb" "$album/thumb")" ] || fail "nothing was turned"
    mv "$album" "$turned"
}

start_afresh() {
    rm -rf "$album"
    cp -a "$1" "$album"
}

# Nothing is hidden in the album.
is_clean() {
    [ -z "$(find "$album" -name '.taloram*')" ] || fail "left behind: $(find "$album" -name '.taloram*')"
}

kill_everywhere() {
    local call status kills=0 ended=0
    for ((call = 1 + RANDOM % step; ; call += step)); do
        start_afresh "$unturned"
        status=0
        # What is traced can't look for its leaks.
        ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0 "$bin/killed_at" "$call" "$bin/talomake" "${turn[@]}" >"$place/output" 2>"$place/errors" || status=$?
        case $status in
            0) break ;;
            77) skip "nobody may trace here" ;;
            137) ;;
            *) fail "status $status in spite of the kill at call $call" ;;
        esac
        kills=$((kills + 1))
        cp -a "$album" "$place/killed"
        ends_with 0 "$bin/talomake" "${update[@]}"
        is_clean
        [ -z "$(differences "$unturned" "$album")" ] || is_same "$turned" "$album"
        rm -rf "$album"
        mv "$place/killed" "$album"
        if [ -z "$(find "$album" -name '.taloram-turned-*')" ] &&
            [ -z "$(differences "$turned" "$album" | grep -v ': \.taloram-turning-')" ]; then
            ended=$((ended + 1)) # the same command would turn once more, and be right
            continue
        fi
        ends_with 0 "$bin/talomake" "${turn[@]}"
        is_clean
        is_same "$turned" "$album"
    done
    [ $kills -gt 20 ] || [ "$step" -gt 10 ] || fail "only $kills kills"
    echo "$kills kills survived, $ended of them after the end"
}

# On a disk that has no room for the turned files nothing is turned, and nothing stays.
fill_disks() {
    local size used status=0 refused=0 done=0
    mkdir "$album"
    mount -t tmpfs tmpfs "$album" 2>/dev/null || {
        echo "skipped: small file systems, which nobody may mount here"
        return
    }
    cp -a "$unturned/." "$album"
    used=$(df --output=used "$album" | tail -n 1)
    for ((size = used; done < 2; size += 8 * step)); do
        rm -r "${album:?}"/*
        cp -a "$unturned/." "$album"
        mount -o remount,size="${size}k" "$album"
        status=0
        "$bin/talomake" "${turn[@]}" >"$place/output" 2>"$place/errors" || status=$?
        mount -o remount,size=64m "$album"
        is_clean
        case $status in
            0)
                done=$((done + 1))
                is_same "$turned" "$album"
                ;;
            1)
                check test -s "$place/errors"
                if [ -n "$(differences "$turned/size0" "$album/size0")" ]; then
                    refused=$((refused + 1))
                    is_same "$unturned" "$album"
                fi
                ;;
            *) fail "status $status on a disk of $size KiB" ;;
        esac
    done
    umount "$album"
    rmdir "$album"
    [ $refused -gt 0 ] || fail "no disk was too small"
    echo "$refused disks too small, nothing turned"
}

prepare
kill_everywhere
rm -rf "$album"
fill_disks
