# Sourced by ./run and ./check: finds what a build needs, installs it where that is possible, else says what is missing.
# usage: needs NAME...   with names of tools and libraries as listed here.
package_of() {
    case "$1" in
    g++) echo g++ ;;
    cmake) echo cmake ;;
    ninja) echo ninja-build ;;
    python3) echo python3 ;;
    gtest) echo libgtest-dev ;;
    benchmark) echo libbenchmark-dev ;;
    esac
}

has() {
    case "$1" in
    gtest) [ -e /usr/include/gtest/gtest.h ] || [ -e /usr/local/include/gtest/gtest.h ] ;;
    benchmark) [ -e /usr/include/benchmark/benchmark.h ] || [ -e /usr/local/include/benchmark/benchmark.h ] ;;
    *) command -v "$1" >/dev/null 2>&1 ;;
    esac
}

needs() {
    local missing="" packages="" name sudo=""
    for name in "$@"; do
        has "$name" || { missing="$missing $name"; packages="$packages $(package_of "$name")"; }
    done
    [ -z "$missing" ] && return 0
    [ "$(id -u)" = 0 ] || sudo="sudo -n"
    if command -v apt-get >/dev/null 2>&1 && { [ -z "$sudo" ] || $sudo true 2>/dev/null; }; then
        echo "Installing:$packages" >&2
        $sudo apt-get update -qq >&2 && DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq $packages >&2
    fi
    for name in "$@"; do
        has "$name" || {
            echo "Missing: $name. On Debian: apt-get install$packages" >&2
            return 1
        }
    done
}
