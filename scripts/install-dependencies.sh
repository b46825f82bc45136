#!/usr/bin/env bash
# Installs what building Tavo needs on Debian 12 (and its kin). Asks nothing; when all is there it touches nothing, the
# network included. Usage: install-dependencies.sh [--with-fuzz]
set -euo pipefail

packages=(
    build-essential cmake ninja-build ccache pkg-config  # the build
    libwxgtk3.2-dev                                      # wxBase, which has no development package of its own
    libexpat1-dev                                        # XML
    liblua5.4-dev                                        # scripts, in Lua's C++ build
    libcli11-dev libfmt-dev libedit-dev                  # the command-line host
    libgtest-dev libgmock-dev libbenchmark-dev           # tests and benchmarks
    clang-format python3                                 # checks of the sources and the documentation
)
[[ ${1:-} == --with-fuzz ]] && packages+=(clang libclang-rt-14-dev)

if ! command -v dpkg-query >/dev/null; then
    echo "Not a Debian system: please see to it that there is the like of: ${packages[*]}" >&2
    exit 0
fi

missing=()
for package in "${packages[@]}"; do
    status=$(dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null || true)
    [[ $status == installed ]] || missing+=("$package")
done
[[ ${#missing[@]} -eq 0 ]] && exit 0

as_root=()
if [[ $EUID -ne 0 ]]; then
    command -v sudo >/dev/null || { echo "Neither root nor sudo; please install: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
fi
echo "Installing: ${missing[*]}"
"${as_root[@]}" apt-get update -q
"${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
