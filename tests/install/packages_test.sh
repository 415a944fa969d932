#!/usr/bin/env bash
# What ./check does with the machine's packages, with apt and dpkg played by scripts: a package for
# another architecture does not serve, nothing is removed, and the folder with arm64 libraries is
# made once, survives what is cut short, and needs no network afterwards.
# usage: packages_test.sh SOURCE WORK
set -euo pipefail
source=$1 work=$2
rm -rf "$work"
mkdir -p "$work/bin" "$work/build"
cd "$work"
calls=$work/calls

fail() { echo "packages_test: $1" >&2; cat "$calls" >&2 || true; exit 1; }
play() { # name; its text from standard input
    { echo '#!/bin/sh'; echo "echo \"$1 \$*\" >>$calls"; cat; } >"$work/bin/$1"
    chmod +x "$work/bin/$1"
}
: >"$calls"

# --- Packages of this machine: libalien-dev is there for arm64 alone, libboth-dev for both.
play dpkg-query <<'END'
for last; do :; done
case $last in
    libnative-dev) echo "amd64 installed" ;;
    libdata-dev) echo "all installed" ;;
    libalien-dev) echo "arm64 installed" ;;
    libboth-dev) printf 'arm64 installed\namd64 installed\n' ;;
    libgone-dev) echo "amd64 config-files" ;;
    *) exit 1 ;;
esac
END
play dpkg <<'END'
[ "$1" != --print-architecture ] || echo amd64
END
play apt-get <<'END'
END
play sudo <<'END'
exec "$@"
END
export PATH=$work/bin:$PATH

(. "$source/cmake/packages.sh"; halden_install libnative-dev libdata-dev libboth-dev) >"$work/out"
[ ! -s "$work/out" ] || fail "packages that are there are installed again"
grep -q apt-get "$calls" && fail "apt-get is called when nothing is missing"

(. "$source/cmake/packages.sh"
 halden_install libnative-dev libalien-dev libgone-dev libnew-dev) >"$work/out"
[ "$(cat "$work/out")" = "installing: libalien-dev libgone-dev libnew-dev" ] || fail "$(cat "$work/out")"
grep -q 'apt-get .*install -y --no-install-recommends libalien-dev libgone-dev libnew-dev$' "$calls" ||
    fail "the missing packages are not asked for"
grep -qE 'add-architecture|remove|purge' "$calls" && fail "the machine's packages are changed"

# --- The folder, from a package with a loader and a link from the top.
mkdir -p part/DEBIAN part/lib part/usr/lib
printf 'Package: part\nVersion: 1\nArchitecture: arm64\nMaintainer: nobody <nobody@example.org>\nDescription: part\n' \
    >part/DEBIAN/control
echo loader >part/lib/ld-linux-aarch64.so.1
ln -s /lib/ld-linux-aarch64.so.1 part/usr/lib/loader
dpkg-deb --root-owner-group -b part part.deb >/dev/null

play aarch64-linux-gnu-g++ <<'END'
echo 12
END
# The second kind of apt-get: fails as often as `trouble` says, then brings the package.
play apt-get <<END
case \$* in *install*) ;; *) exit 0 ;; esac
parts=\$(sed -n 's/^Dir::State "\(.*\)";/\1/p' "\$APT_CONFIG")
case \$(cat $work/trouble) in
    network) echo "no network"; exit 100 ;;
    cut) echo torn >"\$parts/cache/archives/part.deb" ;;
    *) cp $work/part.deb "\$parts/cache/archives/" ;;
esac
END
sysroot() { "$source/cmake/arm64-sysroot.sh" build/sysroot >out 2>&1; }
made() {
    [ "$(cat build/sysroot/lib/ld-linux-aarch64.so.1)" = loader ] &&
        [ "$(cat build/sysroot/usr/lib/loader)" = loader ] &&
        [ "$(readlink build/sysroot/usr/lib/loader)" = ../../lib/ld-linux-aarch64.so.1 ]
}

echo network >trouble
sysroot && fail "without network the folder is called made"
grep -q "build/sysroot cannot be made: the packages cannot be downloaded" out || fail "$(cat out)"
[ ! -e build/sysroot ] || fail "a folder is left that is not complete"

echo cut >trouble
sysroot && fail "a torn package is unpacked"
grep -q "part.deb is damaged and was removed: try again" out || fail "$(cat out)"
[ ! -e build/sysroot ] || fail "a folder is left that is not complete"

echo none >trouble
sysroot || fail "the folder is not made after trouble: $(cat out)"
made || fail "the folder does not hold what the package brought"
[ ! -e build/sysroot.parts ] || fail "the downloads are left"

# Complete: no network, no call.
echo network >trouble
: >"$calls"
sysroot || fail "a complete folder is not reused: $(cat out)"
grep -q apt-get "$calls" && fail "apt-get is called for a complete folder"

# Another list, and a folder that was cut short before its last line.
echo none >trouble
echo "arm64 yesterday: libold-dev" >build/sysroot/packages
touch build/sysroot/old
sysroot || fail "$(cat out)"
[ ! -e build/sysroot/old ] && made || fail "another list does not remake the folder"
rm build/sysroot/packages build/sysroot/lib/ld-linux-aarch64.so.1
sysroot || fail "$(cat out)"
made || fail "a folder without its list is taken for complete"
echo "packages_test: all passed"
