#!/usr/bin/env bash
# Draws the pictures of a page: by the page's own commands, and stick figures from what they sampled. The same host
# gives the same bytes.
# Usage: docs_pictures.sh HOST PAGE [--check]; PAGE is the name of a page in docs, without its ending; --check compares
# with what is there. Exit codes: 0 done or the same, 1 different, or the page has other commands by now; 2 there are no
# pictures on that page; 77 there is no host.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
host=${1:-build/release/bin/tavo} page=${2:-trajectories}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

scripts/check_readme_session.py --host "$host" --page "docs/$page.md" --keep "$work" || exit $?
[[ -x $host ]] || exit 77
figures() { # TABLE TITLE OPTION...; other tables by their names
    (cd "$work" && "$OLDPWD/scripts/stick_figures.py" --title "$2" -o "figures-$1.svg" "${@:3}" <"$1.csv")
}
case $page in
    trajectories)
        figures walk "The walk as it came" --every 12
        figures feel "Around a corner, keeping feel" --every 12
        figures constraints "Around a corner, keeping constraints" --every 12
        ;;
    inverse_kinematics)
        figures reach "A hand reaches a point, both feet stay" --before stride.csv --mark 0.2,1.3,2.1
        figures crouch "The same hand to the floor" --before stride.csv --mark 0.1,0.1,1.8
        figures far "A point out of reach" --before stride.csv --mark 0.2,1.4,2.8
        ;;
    retargeting)
        figures walker "A walk, and who takes it over" --every 24 --beside figure.csv
        ;;
    *)
        echo "docs/$page.md has no pictures" >&2
        exit 2
        ;;
esac

if [[ ${3:-} != --check ]]; then
    cp "$work"/*.svg docs/pictures
    exit
fi
for picture in "$work"/*.svg; do
    cmp "$picture" "docs/pictures/$(basename "$picture")" || {
        echo "\`make docs-pictures\` draws it as it is now"
        exit 1
    }
done
