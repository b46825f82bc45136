#!/usr/bin/env bash
# Proves the package: installs a build tree under a temporary prefix, moves it, builds the consumer against it through
# find_package and through pkg-config, runs both, and compiles every installed header on its own terms.
# Usage: run.sh BUILD_DIR COMPILER [FLAGS...], where FLAGS are what the library was built with and its users must repeat.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
build=$1 compiler=$2
shift 2
flags=("$@")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

expect_linked() {
    local printed
    printed=$("$1")
    [[ $printed == "linked: Tavo" ]] || { echo "$1 printed: $printed" >&2; exit 1; }
}

# Installed in one place, used from another: nothing in the package may name where it was made.
cmake --install "$build" --prefix "$work/staged" >"$work/install.log" || { cat "$work/install.log" >&2; exit 1; }
mv "$work/staged" "$work/prefix"

echo "find_package"
cmake -S "$here" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/prefix" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="${flags[*]}" >/dev/null
cmake --build "$work/consumer" >/dev/null
expect_linked "$work/consumer/consumer"

echo "pkg-config"
PKG_CONFIG_PATH=$(dirname "$(find "$work/prefix" -name tavo.pc)")
export PKG_CONFIG_PATH
read -ra cflags < <(pkg-config --cflags tavo)
read -ra libs < <(pkg-config --libs tavo)
"$compiler" "${flags[@]}" "${cflags[@]}" "$here/main.cpp" -o "$work/plain" "${libs[@]}" \
    "-Wl,-rpath,$(pkg-config --variable=libdir tavo)"
expect_linked "$work/plain"

echo "installed headers"
(cd "$work/prefix/include" && find . -name '*.h' -printf '#include <%P>\n') | sort >"$work/headers.cpp"
"$compiler" "${cflags[@]}" -fsyntax-only "$work/headers.cpp"

if [[ -x $work/prefix/bin/tavo ]]; then
    echo "host"
    "$work/prefix/bin/tavo" --help >/dev/null
fi
