#!/bin/bash
# What README.md's `make demo` or `make check` downloads and takes on a fresh Debian 12, from a clone of the last commit:
#
#   tools/bare_machine.sh demo|check
#
# Needs root and debootstrap. A command that fails there fails here. The output is kept in build/bare-machine.
set -euo pipefail
cd "$(dirname "$0")/.."
. tools/bare_debian.sh

target=$1
grep -q "^make $target  *#" README.md || { echo "README.md has no make $target" >&2; exit 2; }
scratch=$PWD/build/bare-machine
bare=$scratch/$target
mkdir -p "$scratch"
exec 9> "$scratch/$target.lock"
flock --nonblock 9 || { echo "$0 $target runs already" >&2; exit 1; }
make_bare_debian "$bare"
git clone --quiet --depth 1 "file://$PWD" "$bare/root/project"

# When apt starts on a list or a download, when dpkg starts and ends, and the packages between.
cat > "$bare/etc/apt/apt.conf.d/90measure" << 'CONFIGURATION'
APT::Update::Pre-Invoke { "echo download $(date +%s) >> /root/times"; };
DPkg::Pre-Install-Pkgs { "cat >> /root/packages; echo install $(date +%s) >> /root/times"; };
DPkg::Post-Invoke { "echo work $(date +%s) >> /root/times"; };
CONFIGURATION

# What README.md takes for granted.
in_bare_debian "$bare" sh -c 'apt-get update -qq && apt-get install -qq --no-install-recommends make' \
    > "$scratch/$target.log" 2>&1
rm "$bare/root/times" "$bare/root/packages"

result=0
in_bare_debian "$bare" bash -c "cd /root/project; echo work \$(date +%s) > /root/times
    TIMEFORMAT='%R %U %S'; { time make $target > /root/output 2>&1 < /dev/null; } 2> /root/total" || result=$?
cp "$bare/root/output" "$scratch/$target.log"
if [ "$result" -ne 0 ]; then
    tail -n 60 "$scratch/$target.log"
    echo "make $target fails on a bare machine; its output is in $scratch/$target.log" >&2
    exit "$result"
fi

lists=$(awk '/^SHA256/ { sums = 1 } sums && $3 ~ /^main\/(binary-amd64\/Packages|i18n\/Translation-en)\.xz$/ { size += $2 }
    FNR == 1 { sums = 0 } END { print size }' "$bare"/var/lib/apt/lists/*InRelease)
packages=$(sort -u "$bare/root/packages" | wc -l)
bytes=$(sort -u "$bare/root/packages" | (cd "$bare_archives" && xargs -n1 basename | xargs stat -c %s) |
    awk '{ size += $1 } END { print size }')
read -r wall user system < "$bare/root/total"
awk -v target="$target" -v wall="$wall" -v user="$user" -v sys="$system" -v lists="$lists" -v packages="$packages" \
    -v bytes="$bytes" -v cores="$(nproc)" '
    since { spent[phase] += $2 - since }
    { phase = $1; since = $2 }
    END {
        printf "make %s in a bare Debian 12\n", target
        printf "  download   %4d s  %.1f MB of lists, %.1f MB in %d packages\n", spent["download"], lists / 1e6, bytes / 1e6, packages
        printf "  install    %4d s\n", spent["install"]
        printf "  work       %4d s\n", wall - spent["download"] - spent["install"]
        printf "  wall       %4d s, %d s beside the download\n", wall, wall - spent["download"]
        printf "  processor  %4d s, %d s on each of %d cores\n", user + sys, (user + sys) / cores, cores
    }' "$bare/root/times"
du -sh "$bare/root/project/build" | awk '{ print "  disk       " $1 " in build" }'
for cache in .npm .cache/pip; do
    [ ! -e "$bare/root/$cache" ] || du -sh "$bare/root/$cache"
done
rm -rf "$bare"
