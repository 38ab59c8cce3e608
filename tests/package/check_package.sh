#!/usr/bin/env bash
# A Debian package keeps the rules of packages, can be installed here, and its programs start from a directory that
# holds nothing else.
#
#   check_package.sh <package> <directory with make_samples>
set -euo pipefail

here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
package=$1
bin=$2
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT

if command -v lintian >/dev/null; then
    lintian --allow-root --fail-on error,warning "$package"
else
    echo "skipped: lintian is missing"
fi
dpkg --dry-run --install "$package" >/dev/null
dpkg-deb --extract "$package" "$root"
"$here/check_documents.sh" "$root/usr"
if command -v xvfb-run >/dev/null; then
    result=0
    xvfb-run -a -s "-screen 0 1280x800x24" "$here/start_installed.sh" "$root/usr" "$bin" || result=$?
    [ $result -eq 0 ] || [ $result -eq 77 ] || exit $result
else
    echo "skipped: xvfb-run is missing"
fi
