#!/usr/bin/env bash
# Draws the pictures of docs/trajectories.md: by the page's own commands, and stick figures from what they sampled. The
# same host gives the same bytes.
# Usage: docs_pictures.sh HOST [--check]; --check compares with what is there. Exit codes: 0 done or the same, 1
# different, or the page has other commands by now; 77 there is no host.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
host=${1:-build/release/bin/tavo}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

scripts/check_readme_session.py --host "$host" --page docs/trajectories.md --keep "$work" || exit $?
[[ -x $host ]] || exit 77
figures() { # TABLE TITLE
    scripts/stick_figures.py --every 12 --title "$2" -o "$work/figures-$1.svg" <"$work/$1.csv"
}
figures walk "The walk as it came"
figures feel "Around a corner, keeping feel"
figures constraints "Around a corner, keeping constraints"

if [[ ${2:-} != --check ]]; then
    cp "$work"/*.svg docs/pictures
    exit
fi
for picture in "$work"/*.svg; do
    cmp "$picture" "docs/pictures/$(basename "$picture")" || {
        echo "\`make docs-pictures\` draws it as it is now"
        exit 1
    }
done
