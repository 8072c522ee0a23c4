# Shared by the scripts of this folder; sourced, never run.
set -euo pipefail

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
cd "$root"

# Another clone's objects serve as well: the same sources give the same objects wherever they stand. The compiler's list
# of included files is enough to know an object again; without a preprocessor run of its own a first build is shorter.
export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1 CCACHE_DEPEND=1

say() { printf '\n== %s\n' "$*"; }

# What the repository needs, by purpose.
build_packages="g++ cmake ninja-build ccache libfmt-dev nlohmann-json3-dev libcli11-dev libcsv-dev libxxhash-dev
    libsqlite3-dev unixodbc-dev libsimpleini-dev libpugixml-dev libexpat1-dev libcurl4-openssl-dev zlib1g-dev python3"
test_packages="libgtest-dev libgmock-dev man-db zsh"
office_packages="libreoffice-calc libreoffice-dev python3-uno python3-openpyxl fonts-liberation poppler-utils"
office_test_packages="xvfb imagemagick openbox xdotool"
picture_packages="libreoffice-l10n-he locales nsis" # of a Hebrew office and a Hebrew Windows
style_packages="clang clang-format-16 clang-tidy git"
windows_packages="g++-mingw-w64-x86-64 g++-mingw-w64-i686 mingw-w64-tools libwine-dev dpkg-dev python3"
wine_packages="wine wine64 xvfb imagemagick fonts-dejavu-core fonts-dejavu-extra fonts-wine" # a screen for the dialogs
wine32_packages="wine wine32:i386" # of a room with packages of i386
command -v npm >/dev/null || windows_packages+=" npm" # SQLite's source for the Windows build comes through it
package_packages="dpkg-dev nsis python3-markdown git"
server_packages="openjdk-17-jre-headless libmondrian-java libjetty9-java libservlet-api-java liblog4j1.2-java
    libcommons-io-java libcommons-collections3-java libhsqldb-java postgresql odbc-postgresql libpostgresql-jdbc-java libsqliteodbc"
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
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# build PRESET [-DOPTION=VALUE...] [TARGET...]: configures and builds one preset, printing little unless something fails.
build() {
    local preset=$1 log=build/configure.log options=()
    shift
    while [[ ${1:-} == -D* ]]; do options+=("$1"); shift; done
    say "Building preset $preset"
    mkdir -p build
    cmake --preset "$preset" "${options[@]}" >"$log" 2>&1 || { cat "$log"; exit 1; }
    cmake --build --preset "$preset" ${1:+--target "$@"}
}

# Everything that build/native can hold.
native_options="-DQEL_TESTS=ON -DQEL_OFFICE=ON -DQEL_SERVER_TESTS=ON"

# duration SECONDS: in words.
duration() { [ "$1" -lt 60 ] && echo "$1 s" || echo "$(($1 / 60)) min $(($1 % 60)) s"; }

# took START: tells how long something took that began at $SECONDS = START, and the whole script so far.
took() {
    printf -- '-- took %s; %s since the start\n' "$(duration $((SECONDS - $1)))" "$(duration "$SECONDS")"
}

# timed COMMAND...: runs it and tells how long it took; not for use in a condition.
timed() {
    local start=$SECONDS
    "$@"
    took "$start"
}

passed_checks=0
failed_checks=0

# check NAME COMMAND...: runs a check, counts it and tells how long it took.
check() {
    local start=$SECONDS
    say "Checking: $1"
    if "${@:2}"; then
        passed_checks=$((passed_checks + 1))
    else
        failed_checks=$((failed_checks + 1))
        echo "FAILED: $1"
    fi
    took "$start"
}

# The last line of a script that ran checks, and its status.
sum_up_checks() {
    say "Summary"
    echo "$passed_checks passed, $failed_checks failed"
    [ "$failed_checks" -eq 0 ]
}
