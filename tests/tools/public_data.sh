#!/usr/bin/env bash
# What the photographs of a published copy tell, as a reader of EXIF data finds it that is not ours: orientation, artist,
# copyright and colour profile, and nothing else. Over made photographs, into which that program writes a place, serial
# numbers and owners, and over the real ones where they are.
#
#   public_data.sh <directory of the programs>
set -euo pipefail

# shellcheck source=tests/faults/albums.sh
source "$(dirname "${BASH_SOURCE[0]}")/../faults/albums.sh"
command -v exiftool >/dev/null || skip "exiftool is missing, see the package libimage-exiftool-perl"
photographs=${TALORAM_PHOTOS:-$(dirname "${BASH_SOURCE[0]}")/../../../shared/photos}

# One line for each thing that is told beside the picture, its group in front.
told() {
    # It ends with 1 where a file is damaged.
    { exiftool -r -ext jpg -ee -a -u -G1 -s "$1" 2>/dev/null || true; } |
        sed -n 's/^\[\([^]]*\)\] *\([^ ]*\) *: .*/\1 \2/p' |
        grep -vE '^(System|ExifTool|Composite|Adobe|ICC[^ ]*|JFIF) |^File (File|MIME|Exif|Image|Encoding|Bits|Color|YCbCr)' |
        sort -u
}

mkdir -p "$place/book/txt"
printf 'Book\r\nBook\r\n' >"$place/book/txt/head.txt"
"$bin/make_samples" "$place/card" 14
exiftool -q -overwrite_original -GPSLatitude=48.1 -GPSLatitudeRef=N -GPSLongitude=11.5 -GPSLongitudeRef=E \
    -EXIF:SerialNumber=secret1 -EXIF:OwnerName=secret2 -EXIF:LensSerialNumber=secret3 -EXIF:ImageUniqueID=secret4 \
    -XMP:Location=secret5 -XMP:PersonInImage=secret6 -IPTC:City=secret7 -Comment=secret8 -EXIF:UserComment=secret9 \
    -EXIF:Artist='Anna Author' -EXIF:Copyright='(C) Anna' "$place"/card/*.JPG
ends_with 0 "$bin/talomake" album --shrink-size 160,120 --rotate IMG_0002.JPG=90 "$place/card" "$place/book/made"
if [ -d "$photographs" ]; then
    mkdir "$place/real"
    number=0
    while read -r photograph; do
        number=$((number + 1))
        cp "$photograph" "$place/real/$number.jpg"
    done < <(find "$photographs" -iname '*.jpg' -size -4M | sort)
    # Some of them are damaged on purpose.
    "$bin/talomake" album --keep-going "$place/real" "$place/book/real" >/dev/null 2>&1 || true
fi
told "$place/book" >"$place/album"
for tag in 'GPS GPSLatitude' 'ExifIFD SerialNumber' 'ExifIFD OwnerName' 'IPTC City' 'File Comment'; do
    check grep -qx "$tag" "$place/album" # else the comparison below would prove nothing
done

"$bin/talomake" publish "$place/book" "$place/copy" >/dev/null 2>"$place/errors" || [ -d "$place/book/real" ] ||
    fail "a copy of made photographs"
check [ "$(find "$place/copy/made" -iname '*.jpg' | wc -l)" -ge 14 ]
[ "$(told "$place/copy")" = $'IFD0 Artist\nIFD0 Copyright\nIFD0 Orientation' ] ||
    fail "a copy tells: $(told "$place/copy")"
if grep -rlaE 'secret[1-9]' "$place/copy/made" --include='*.JPG'; then
    fail "these hold what they are not to tell"
fi
check [ "$(exiftool -s3 -Artist "$place/copy/made/size0/IMG_0003.JPG")" = "Anna Author" ]
echo "$(find "$place/copy" -iname '*.jpg' | wc -l) photographs tell no more than they are to"
