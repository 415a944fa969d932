# Sourced by ./try and ./check: installs the Debian packages a step needs, when one is missing.

halden_build_packages="g++ cmake ninja-build pkg-config libspdlog-dev libfmt-dev libcli11-dev nlohmann-json3-dev libpcap-dev"
halden_test_packages="libgtest-dev libgmock-dev binutils clang-14 clang-format-16 clang-tidy-16 libclang-rt-14-dev"
halden_bench_packages="libbenchmark-dev libabsl-dev libdpdk-dev libisal-dev"

halden_install() {
    missing=""
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing="$missing $package"
    done
    [ -n "$missing" ] || return 0
    echo "installing:$missing"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    # shellcheck disable=SC2086  # a list of package names
    # An installation that was cut short leaves packages unconfigured, and every later one refuses.
    { $sudo dpkg --configure -a && $sudo apt-get update &&
        DEBIAN_FRONTEND=noninteractive $sudo apt-get -o DPkg::Lock::Timeout=300 install -y \
            --no-install-recommends $missing; } </dev/null >build/packages.log 2>&1 || {
        tail -n 20 build/packages.log >&2
        echo "the packages could not be installed; the whole log is build/packages.log" >&2
        return 1
    }
}

# The cross compiler, the emulator and the libraries of `./check --arm64`.
halden_install_arm64() {
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    dpkg --print-foreign-architectures | grep -qx arm64 || $sudo dpkg --add-architecture arm64
    halden_install g++-aarch64-linux-gnu qemu-user libc6:arm64 libstdc++6:arm64 \
        libspdlog-dev:arm64 libfmt-dev:arm64 libgtest-dev:arm64 libgmock-dev:arm64
}
