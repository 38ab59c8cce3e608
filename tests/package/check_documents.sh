#!/usr/bin/env bash
# What lies beside the installed programs is well-formed and tells the same version and options as they do.
#
#   check_documents.sh <prefix>     the directory that holds bin/ and share/
set -euo pipefail

prefix=$(cd "$1" && pwd)
share=$prefix/share
status=0

fail() {
    echo "failed: $*" >&2
    status=1
}

#   has_tool <tool> <package>
has_tool() {
    command -v "$1" >/dev/null || {
        echo "skipped: $1 is missing, see the package $2"
        return 1
    }
}

check_desktop() {
    if has_tool desktop-file-validate desktop-file-utils; then
        desktop-file-validate "$share"/applications/*.desktop || fail "desktop entries"
    fi
    if has_tool appstreamcli appstream; then
        appstreamcli validate --no-net "$share"/metainfo/*.xml || fail "metadata"
    fi
    local entry icon
    for entry in "$share"/applications/*.desktop; do
        icon=$(sed -n 's/^Icon=//p' "$entry")
        test -s "$share/icons/hicolor/scalable/apps/$icon.svg" || fail "$entry has no icon"
        test -x "$prefix/bin/$(sed -n 's/^Exec=\([^ ]*\).*/\1/p' "$entry")" || fail "$entry starts no program"
    done
}

# The link beside the programs leads to the page, and the page to its pictures and to its own headings.
check_guide() {
    local guide pictures picture
    guide=$(realpath "$prefix/lib/taloram/guide.html")
    test -s "$guide" || {
        echo "skipped: no guide.html, see the package lowdown"
        return 0
    }
    pictures=$(grep -oE '(src|rel="stylesheet" href)="[^"]*"' "$guide" | sed 's/.*="//; s/"//')
    [ "$(wc -l <<<"$pictures")" -ge 10 ] || fail "$guide has no pictures"
    for picture in $pictures; do
        test -s "${guide%/*}/$picture" || fail "$guide lacks $picture"
    done
    for picture in $(grep -oE 'href="#[^"]*"' "$guide" | sed 's/.*#//; s/"//'); do
        grep -qF "id=\"$picture\"" "$guide" || fail "$guide has no heading $picture"
    done
}

check_manuals() {
    has_tool man man-db || return 0
    local page warnings
    for page in "$share"/man/man*/*; do
        warnings=$(LC_ALL=C.UTF-8 MANROFFSEQ='' MANWIDTH=80 man --warnings -E UTF-8 -l -Tutf8 -Z "$page" 2>&1 >/dev/null)
        [ -z "$warnings" ] || fail "$page: $warnings"
    done
    local program
    for program in "$prefix"/bin/*; do
        test -e "$share/man/man1/${program##*/}.1.gz" || fail "$program has no manual page"
    done
}

check_version() {
    local version others
    version=$("$prefix/bin/talomake" --version)
    others="$(sed -n 's/.*<release version="\([^"]*\)".*/\1/p' "$share/metainfo/"*.xml | head -n 1)
$(gzip -dc "$share/doc/taloram/changelog.gz" | sed -n '1s/.*(\(.*\)).*/\1/p')"
    [ "$others" = "${version##* }"$'\n'"${version##* }" ] || fail "$version, but metadata and changelog: $others"
}

# What the completion offers for a line that ends with the word to be completed, in a user's shell.
offered() {
    set +eu
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    _talomake "$1" 2>/dev/null
    echo "${COMPREPLY[*]}"
}

check_completion() {
    # shellcheck source=data/completion/talomake
    source "$share/bash-completion/completions/talomake"
    local program=$prefix/bin/talomake
    [[ "$(offered "$program" "")" == album*exif*look* ]] || fail "completion of commands"
    [[ "$(offered "$program" album --)" == *"--title"*"--rotate"*"--progress"* ]] || fail "completion of options"
    [ "$(offered "$program" exif --)" = "--help --html" ] || fail "completion of the options of exif"
    [ "$(offered "$program" album --progress a)" = "auto always" ] || fail "completion of values"
    [ "$(offered "$program" look --set "")" = "bare gallery plain" ] || fail "completion of looks"
    [ "$(offered "$program" album --title x "$share/doc/tal")" = "$share/doc/taloram" ] || fail "completion of paths"
    [ "$(offered "$program" album "$share/metainfo" new "")" = org.taloram.taloram.metainfo.xml ] || fail "completion of names"
}

# Every command and option of the command line stands in the manual page.
check_manual_page() {
    local page command word
    page=$(gzip -dc "$share/man/man1/talomake.1.gz" | tr -d '\\')
    # shellcheck disable=SC2046
    for command in $(offered "$prefix/bin/talomake" ""); do
        for word in "$command" $(offered "$prefix/bin/talomake" "$command" --); do
            grep -qE -- "^\.BI?( .*)? $word( |$)" <<<"$page" || fail "talomake(1) lacks $word of $command"
        done
    done
}

check_desktop
check_guide
check_manuals
check_version
check_completion
check_manual_page
exit $status
