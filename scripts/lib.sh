# Shared by the scripts of this folder; sourced, never run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# Another clone's objects serve as well: the same sources give the same objects wherever they stand.
export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1

say() { printf '\n== %s\n' "$*"; }

# What the repository needs, by purpose.
build_packages="g++ cmake ninja-build ccache libfmt-dev nlohmann-json3-dev libcli11-dev libcsv-dev libxxhash-dev
    libgtest-dev libgmock-dev libsqlite3-dev libsimpleini-dev libpugixml-dev libexpat1-dev libcurl4-openssl-dev python3-minimal python3"
office_packages="libreoffice-calc libreoffice-dev python3-uno python3-openpyxl fonts-liberation poppler-utils
    xvfb imagemagick"
style_packages="clang clang-format-16 clang-tidy"
windows_packages="g++-mingw-w64-x86-64 g++-mingw-w64-i686 mingw-w64-tools libwine-dev wine wine64
    xvfb imagemagick fonts-dejavu-core fonts-dejavu-extra fonts-wine" # the second line for dialogs on a screen
command -v npm >/dev/null || windows_packages+=" npm" # SQLite's source for the Windows build comes through it
server_packages="openjdk-17-jre-headless libmondrian-java libjetty9-java libservlet-api-java liblog4j1.2-java
    libcommons-io-java libcommons-collections3-java libhsqldb-java"
fuzz_packages="clang libclang-rt-14-dev"

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        echo "$0: these packages are missing and can be installed only by root or through sudo: ${missing[*]}" >&2
        exit 1
    fi
}

# ensure_packages NAME...: installs the Debian packages that are not there yet; quick and silent when all are.
ensure_packages() {
    local package
    missing=()
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "Installing ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# build PRESET [TARGET...]: configures and builds one preset, printing little unless something fails.
build() {
    local preset=$1 log=build/configure.log
    shift
    say "Building preset $preset"
    mkdir -p build
    cmake --preset "$preset" >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
