#!/usr/bin/env bash
# A walk through the command-line host: motion in, a look at it, playback, pictures, a corner, motion out.
# Usage: demo.sh [HOST]; leaves its files in build/demo.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
host=${1:-build/release/bin/tavo}
out=build/demo
mkdir -p "$out"

show() {
    printf '\n$ tavo %s\n' "$*"
    "$host" "$@"
}

show import examples/walk.bvh -o "$out/walk.tavo"
show info "$out/walk.tavo"
show play "$out/walk.tavo" --seconds 2 --as-fast-as-possible
show plot "$out/walk.tavo" Hips.TranslationX Hips.TranslationY Hips.TranslationZ -o "$out/hips.svg"
show trajectory generate "$out/walk.tavo" Hips --connect -o "$out/path.tavo"
show trajectory edit "$out/path.tavo" Hips --bend 90 --keys 60 --range 1.2 --keep feel --report -o "$out/corner.tavo"
show plot "$out/corner.tavo" --trajectory Hips --before "$out/path.tavo" -o "$out/corner.svg"
show export "$out/walk.tavo" -o "$out/walk.bvh"
printf '\nThe scenes, the plots and the exported motion are in %s:\n' "$out"
ls -l "$out"
