#!/usr/bin/env bash
# Kills talomake at random moments of imports, updates and publishing, and looks at the album each time: what bears a final name is
# complete. After one to three kills the same command, undisturbed, has to end with the album that it would have made
# had there been none. Half of the kills happen without files that have no name.
#
#   killed.sh <directory of the programs> [<kills of each job> [<photographs> [<seed>]]]
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/albums.sh"
kills=${2:-6}
photographs=${3:-60}
seed=${4:-$RANDOM}
RANDOM=$seed
echo "seed $seed"

card=$place/card
album=$place/album
imported=$place/imported
older=$place/older
published=$place/published
published_older=$place/published-older
published_again=$place/published-again
broken=$place/broken
updated=$place/updated
replaced=$place/replaced
sizes=(--shrink-size 160,120 --progress always)
turned=(--rotate IMG_0002.JPG=90 --rotate IMG_0004.JPG=180)
import=(album "${sizes[@]}" "${turned[@]}" "$card" "$album")
replace=("${import[@]}" --replace --verify --title "A day by the sea")
update=(update "${sizes[@]}" "$album")
publish=(publish "$imported" "$album")
publish_again=(publish --prune "$replaced" "$album")
declare -A killed_in

# Sizes, thumbnails and pages of an album that lost about half of them; of a turned photograph, level 0 alone.
damage() {
    local file
    while read -r file; do
        if [ $((RANDOM % 2)) -eq 0 ] && [[ $file != */IMG_000[24].JPG ]]; then
            rm "$file"
        fi
    done < <(find "$1"/size* "$1/thumb" "$1"/*.html "$1/html" -type f | sort)
    rm "$1/size0/IMG_0002.JPG"
}

prepare_references() {
    "$bin/make_samples" "$card" "$photographs"
    ends_with 0 "$bin/talomake" "${import[@]}"
    mv "$album" "$imported"
    check diff -rq -x head.txt -x last.txt -x '*.MOV' -x '*.txt' "$card" "$imported/original"
    check cmp "$card/MVI_9999.MOV" "$imported/movie/MVI_9999.MOV"

    cp -a "$imported" "$broken"
    damage "$broken"
    cp -a "$broken" "$album"
    ends_with 0 "$bin/talomake" "${update[@]}"
    mv "$album" "$updated"

    mv "$card" "$place/new-card"
    "$bin/make_samples" "$card" "$photographs" 1000
    ends_with 0 "$bin/talomake" "${import[@]}" --verify --title Older
    cp -a "$album" "$older"
    rm -r "$card"
    mv "$place/new-card" "$card"
    ends_with 0 "$bin/talomake" "${replace[@]}"
    mv "$album" "$replaced"

    ends_with 0 "$bin/talomake" "${publish[@]}"
    mv "$album" "$published"
    ends_with 0 "$bin/talomake" "${publish_again[@]}"
    mv "$album" "$published_again"
    ends_with 0 "$bin/talomake" publish "$older" "$published_older"
}

now() {
    date +%s%6N # microseconds
}

# $span becomes the time that a job takes undisturbed, in microseconds.
measure() {
    local start
    start=$(now)
    "$@" >/dev/null 2>&1
    span=$(($(now) - start))
}

# Every second kill comes early: copying is quick, and half of the time would seldom hit it.
random_moment() {
    local moment=$(((RANDOM * 32768 + RANDOM) % span))
    if [ $((RANDOM % 2)) -eq 0 ]; then
        moment=$((moment / 5))
    fi
    printf '%d.%06d' $((moment / 1000000)) $((moment % 1000000))
}

# False when the job was done before the kill came.
killed() {
    local job status=0
    "${command[@]}" >"$place/output" 2>"$place/errors" &
    job=$!
    sleep "$(random_moment)"
    kill -KILL $job 2>/dev/null || true
    { wait $job || status=$?; } 2>/dev/null
    case $status in
        0) return 1 ;;
        137) ;;
        *) fail "status $status in spite of kill $done_kills of $name" ;;
    esac
    local stage
    stage=$(tr '\r' '\n' <"$place/errors" | sed -n 's/^\([A-Z][a-z ]*[a-z]\)  *\[.*/\1/p' | tail -n 1)
    stage=${stage:-Beginning}
    killed_in[$stage]=$((${killed_in[$stage]:-0} + 1))
}

start_afresh() {
    rm -rf "$album"
    [ -z "$start" ] || cp -a "$start" "$album"
}

# Completes the album, undisturbed, and holds it against the reference.
complete() {
    "${command[@]}" >"$place/output" 2>"$place/errors" || fail "$name, run again after kill $done_kills, failed"
    is_same "$goal" "$album"
    start_afresh
}

#   kill_often <name> <album at the start, or ""> <album at the end> <talomake's arguments>...
kill_often() {
    name=$1 start=$2 goal=$3
    local in_a_row=0
    command=("${restricted[@]}" "$bin/talomake" "${@:4}")
    killed_in=()
    start_afresh
    measure "${command[@]}"
    start_afresh
    for ((done_kills = 0; done_kills < kills / 2; )); do
        if ! killed; then
            is_same "$goal" "$album"
            start_afresh
            continue
        fi
        done_kills=$((done_kills + 1))
        has_whole_files "$album" "$goal" ${start:+"$start"}
        in_a_row=$((in_a_row + 1))
        if [ $((RANDOM % 3)) -eq 0 ] || [ $in_a_row -eq 3 ]; then
            complete
            in_a_row=0
        fi
    done
    complete
    echo "$name: $done_kills kills survived"
    for stage in "${!killed_in[@]}"; do
        echo "    ${killed_in[$stage]} $stage"
    done
}

prepare_references
for restricted in "" "$bin/restricted --no-unnamed-files"; do
    read -ra restricted <<<"$restricted"
    if ! "${restricted[@]}" true; then
        echo "skipped: ${restricted[*]}"
        continue
    fi
    how=${restricted[*]:+ without unnamed files}
    kill_often "import$how" "" "$imported" "${import[@]}"
    kill_often "update$how" "$broken" "$updated" "${update[@]}"
    kill_often "readers' copy$how" "" "$published" "${publish[@]}"
    kill_often "readers' copy over another$how" "$published_older" "$published_again" "${publish_again[@]}"
    kill_often "verified import over another album$how" "$older" "$replaced" "${replace[@]}"
done
