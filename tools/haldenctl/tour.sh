#!/usr/bin/env bash
# tour.sh HALDENCTL: programs the example gateway, reads it back, decodes it and looks packets up. The
# adapter lives in a directory of its own, which is gone at the end.
set -euo pipefail
haldenctl=$(realpath "$1")
root=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$root"
export HALDEN_ADAPTER=$work/adapter

title() { printf '\n\033[1m== %s\033[0m\n' "$*"; }
[ -t 1 ] || title() { printf '\n== %s\n' "$*"; }
run() { # shows the command as it would be typed, then runs it
    printf '$ haldenctl'
    printf ' %s' "$@"
    printf '\n'
    "$haldenctl" "$@"
}
# For what is expected to miss: status 1, and no other.
run_miss() {
    local status=0
    run "$@" || status=$?
    [ $status -eq 1 ]
}

title "A gateway's tables, programmed: where each entry goes and which bits are written"
run write examples/edge-gateway.json >"$work/written"
head -n 12 "$work/written"
echo "  ..."
tail -n 1 "$work/written"

title "Read back, and written to a second adapter: both hold the same"
"$haldenctl" dump --all --json >"$work/first.json"
HALDEN_ADAPTER=$work/second "$haldenctl" write --quiet "$work/first.json"
HALDEN_ADAPTER=$work/second "$haldenctl" dump --all --json >"$work/second.json"
cmp "$work/first.json" "$work/second.json"
echo "$(($(wc -l <"$work/first.json") - 2)) entries read back, all equal (keyless tables have no bits to read)"

title "One entry of each kind, decoded"
sample() { run read "$@" | grep -v ' : 0x0*$'; }
sample flow proto=6 vni=5001 sip=10.1.0.5 dip=10.2.0.80 sport=49152 dport=443 ktype=1
sample vlan_mapping vlan_id=100 l2seg=1
sample registered_mac_otcam 0
sample flow_key_native 0
sample lif_mapping 17
sample nat_rewrite 1
echo "(lines of fields that are 0 are left out here)"

title "Where every bit of an entry lies"
run read lif_mapping 17 --raw | sed -n '1p;/^row/,$p'

title "What packets hit"
run lookup flow proto=6 vni=5001 sip=10.1.0.5 dip=10.2.0.80 sport=49152 dport=443 ktype=1 |
    grep -v '  0$'
run lookup vlan_mapping vlan_id=0xf05 l2seg=1

title "Why a lookup misses"
run_miss lookup tunnel_terminate_v4 vxlan_1_valid=1 ipv4_1_valid=1 ipv4_1_dstAddr=198.51.101.7
run_miss lookup vlan_mapping vlan_id=101 l2seg=1

title "Flows of real-looking traffic"
run flows generate 20000 "$work/traffic.pcap"
run flows import "$work/traffic.pcap"
run flows list --top 8
run flows find --proto tcp --src 192.0.2.8 --dst 10.1.1.71 --sport 5432 --dport 45847
run flows stats
run stats

title "Next"
cat <<NEXT
  $1 tables                the 48 tables
  $1 describe lif_mapping  one of them, drawn
  docs/tables/README.md    the same as pages
NEXT
