#!/usr/bin/env bash
# cmake/arm64-sysroot.sh DIRECTORY
#
# Makes a folder with the arm64 libraries that the cross build needs: headers and shared objects from
# the distribution's packages, downloaded through a package state of its own and unpacked. Nothing is
# installed, no foreign architecture is added, root is not needed.
#
#   DIRECTORY/packages   what it was made from; written last, so a folder without it is not complete
#   DIRECTORY.parts/     the package state and the downloads, kept when a run is cut short
#
# A complete folder made from today's list is left as it is, and then no network is needed.
set -euo pipefail
[ $# -eq 1 ] || { echo "usage: $0 DIRECTORY" >&2; exit 2; }

architecture=arm64
release=$(. /etc/os-release && echo "$ID ${VERSION_CODENAME:-}")
compiler=$(aarch64-linux-gnu-g++ -dumpversion)
packages="libc6-dev libstdc++-$compiler-dev libspdlog-dev libfmt-dev libgtest-dev libgmock-dev"
wanted="$architecture $release: $packages"

root=$1
mkdir -p "$(dirname "$root")"
root=$(realpath -m "$root")
parts=$root.parts
# Of two runs the second waits, and finds the folder complete.
exec 9>"$root.lock"
flock 9
if [ -f "$root/packages" ] && [ "$(cat "$root/packages")" = "$wanted" ]; then exit 0; fi

# Each kind of trouble ends with the same sentence, so that whoever reads a log finds the cause.
give_up() {
    tail -n 20 "$parts/log" >&2 || true
    echo "$root cannot be made: $1; the whole log is $parts/log" >&2
    exit 1
}

echo "making $root"
mkdir -p "$parts"/{lists/partial,cache/archives/partial,unpacked}
: >"$parts/status"
: >"$parts/log"
cat >"$parts/apt.conf" <<END
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Sandbox::User "root";
Dir::State "$parts";
Dir::State::status "$parts/status";
Dir::Cache "$parts/cache";
END
# The machine's own settings are read after this file: what they may say otherwise is repeated.
get() {
    APT_CONFIG=$parts/apt.conf apt-get -o APT::Update::Post-Invoke::= -o DPkg::Post-Invoke::= \
        -o Acquire::Retries=3 "$@" </dev/null >>"$parts/log" 2>&1
}
# A source without packages of this architecture is no reason to stop: the download decides.
get update || echo "some lists could not be read" >>"$parts/log"
# shellcheck disable=SC2086  # a list of package names
get install --yes --download-only --no-install-recommends $packages ||
    give_up "the packages cannot be downloaded"

rm -rf "$parts/unpacked" "$root"
mkdir "$parts/unpacked"
for archive in "$parts"/cache/archives/*.deb; do
    dpkg-deb -x "$archive" "$parts/unpacked" 2>>"$parts/log" ||
        { rm -f "$archive"; give_up "$(basename "$archive") is damaged and was removed: try again"; }
done
# Links from the top would leave the folder.
find "$parts/unpacked" -type l -lname '/*' -print0 | while IFS= read -r -d '' link; do
    ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" \
        "$parts/unpacked$(readlink "$link")")" "$link"
done
[ -e "$parts/unpacked/lib/ld-linux-aarch64.so.1" ] || give_up "there is no loader in it"
printf '%s\n' "$wanted" >"$parts/unpacked/packages"
mv "$parts/unpacked" "$root"
rm -rf "$parts"
