# Sourced by ./try and ./check: installs the Debian packages a step needs, when one is missing.

halden_build_packages="g++ cmake ninja-build pkg-config libspdlog-dev libfmt-dev libcli11-dev nlohmann-json3-dev libpcap-dev"
halden_test_packages="libgtest-dev libgmock-dev binutils abigail-tools clang-14 clang-format-16 clang-tidy-16 libclang-rt-14-dev qemu-user"
halden_coverage_packages="gcovr python3"
halden_bench_packages="libbenchmark-dev libabsl-dev libdpdk-dev libisal-dev"

# Whether a package is there for this machine's own architecture: one for another does not serve.
halden_has() {
    dpkg-query -W -f='${Architecture} ${db:Status-Status}\n' "$1" 2>/dev/null |
        grep -qxE "($(dpkg --print-architecture)|all) installed"
}

halden_install() {
    missing=""
    for package in "$@"; do
        halden_has "$package" || missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "installing:$missing"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    # shellcheck disable=SC2086  # a list of package names
    # An installation that was cut short leaves packages unconfigured, and every later one refuses.
    { $sudo dpkg --configure -a && $sudo apt-get update &&
        $sudo env DEBIAN_FRONTEND=noninteractive apt-get -o DPkg::Lock::Timeout=300 \
            install -y --no-install-recommends $missing; } </dev/null >build/packages.log 2>&1 || {
        tail -n 20 build/packages.log >&2
        echo "the packages could not be installed; the whole log is build/packages.log" >&2
        return 1
    }
}

# The cross compiler and the emulator of `./check --arm64`, and the folder with arm64 libraries.
halden_install_arm64() {
    halden_install g++-aarch64-linux-gnu qemu-user
    cmake/arm64-sysroot.sh build/arm64-sysroot
    # A build made before the folder remembers where things lay then.
    [ build/arm64/CMakeCache.txt -nt build/arm64-sysroot/packages ] || rm -rf build/arm64
}
