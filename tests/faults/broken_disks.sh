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

# A directory whose listing breaks off, the status, and the command; the album stays as it was, or stays away.
break_listings_off() {
    local part status command
    while read -r part status command; do
        local -n words=$command
        rm -rf "$album"
        [ "$command" = import ] || cp -a "$reference" "$album"
        ends_with "$status" failing "readdir:EIO:4:$part" "${words[@]}"
        [ -s "$place/errors" ] || fail "no line on standard error: $part"
        if [ "$command" = import ]; then
            [ ! -e "$album" ] || fail "something was imported from half a listing"
        else
            is_same "$reference" "$album"
        fi
    done <<'EOL'
/card 2 import
/album/original 1 update
/album/original 1 prune
EOL
    echo "listings that break off"
}

"$bin/make_samples" "$card" 4
ends_with 0 "${import[@]}"
mv "$album" "$reference"
prune=("${update[@]}" --prune)
break_listings_off
