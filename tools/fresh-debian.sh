#!/bin/sh
# Does on a system that nobody prepared what the README promises: makes a Debian 12 with nothing but
# git, clones the current commit into it, and runs the README's commands there, each twice, as root;
# then the tests as a user without rights, in a clone of their own. What this machine has, and
# changes that are not committed, do not count. Half an hour at most; for releases, not for every
# change.
#
#   fresh-debian.sh [--mirror URL]
#
#   --mirror URL  where the distribution's main archive is; without it where this machine's apt has
#                 it from, or else what debootstrap takes
#
# Prints a line for each step. build/fresh-debian keeps the new system as an archive, and the packages
# that were installed into it, so that the next run is quick: without that folder everything is
# fetched again. Logs are in build/logs. Needs root, for chroot and mounts, which end with the script,
# and the Debian package debootstrap. Exit codes: 0 when all is well; 1 when a step fails; 2 for wrong
# arguments.
set -eu
cd "$(dirname "$0")/.."
. tools/steps.sh

release=bookworm

fail() {
    code=$1
    shift
    echo "fresh-debian.sh: $*" >&2
    exit "$code"
}

mirror=""
while [ $# -gt 0 ]; do
    case $1 in
    --mirror)
        [ $# -ge 2 ] || fail 2 "$1 needs a value"
        mirror=$2
        shift
        ;;
    *) fail 2 "unknown argument $1" ;;
    esac
    shift
done
[ "$(id -u)" = 0 ] || fail 1 "needs root, for chroot and mounts"
command -v debootstrap >/dev/null || fail 1 "debootstrap is missing: apt-get install debootstrap"
[ -n "$mirror" ] || mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Identifier: Packages' \
    "Release: $release" 'Component: main' 'Origin: Debian' 2>/dev/null | head -n 1)

# The README decides what is run.
commands=$(sed -n '/^On a fresh Debian 12 /,/^```$/ s,^\(\./[a-z]*\.sh\)  *#.*,\1,p' README.md)
[ "$(echo "$commands" | wc -w)" = 2 ] || fail 1 "the README does not name two commands"

kept=$PWD/build/fresh-debian
mkdir -p "$kept/packages"
exec 9>"$kept/lock"
flock -n 9 || fail 1 "another run is using $kept"
rm -rf "$kept"/root.* # of a run that was killed
root=$(mktemp -d "$kept/root.XXXXXX")
running=""
# The processes in the new system end with the one that keeps its mounts.
clean_up() {
    [ -z "$running" ] || kill -KILL "$running" 2>/dev/null || true
    wait
    rm -rf "$root"
}
trap clean_up EXIT
trap 'exit 1' HUP INT TERM

# interruptible COMMAND...: a signal is not left waiting for the end of it
interruptible() {
    "$@" &
    running=$!
    wait "$running" && status=0 || status=$?
    running=""
    return "$status"
}

# With git and nothing more than a system needs.
make_system() {
    if [ ! -e "$kept/$release.tar" ]; then
        # shellcheck disable=SC2086  # a mirror, or none
        interruptible debootstrap --variant=minbase --include=git --force-check-gpg "$release" \
            "$root" $mirror || return 1
        interruptible tar -C "$root" -cf "$kept/$release.tar.new" . || return 1
        mv "$kept/$release.tar.new" "$kept/$release.tar"
    else
        interruptible tar -C "$root" -xf "$kept/$release.tar" || return 1
    fi
    cp -L /etc/resolv.conf /etc/hosts "$root/etc/" && chmod 755 "$root"
}

# in_system COMMAND...: with an environment of its own. Mounts and processes end with the command.
in_system() {
    # shellcheck disable=SC2016  # for the inner shell
    interruptible unshare --mount --pid --fork --kill-child sh -euc '
        root=$1 packages=$2
        shift 2
        mount -t proc proc "$root/proc"
        mount --rbind /dev "$root/dev"
        mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
        mount --bind "$packages" "$root/var/cache/apt/archives"
        exec env -i HOME=/root LANG=C.UTF-8 PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
            ${http_proxy+"http_proxy=$http_proxy"} chroot "$root" "$@"
    ' sh "$root" "$kept/packages" "$@"
}

# As a user would: clones, and goes into the folder. root cannot read the clone of somebody else.
# in_clone USER COMMAND...
in_clone() {
    user=$1
    shift
    # shellcheck disable=SC2016  # for the inner shell
    in_system runuser -u "$user" -- sh -euc '
        export HOME="$(getent passwd "$(id -un)" | cut -d: -f6)"
        cd
        [ -e launcher ] || git clone -q -c advice.detachedHead=false /var/tmp/launcher.bundle launcher
        cd launcher
        exec "$@"
    ' sh "$@"
}

bundle() {
    git bundle create "$root/var/tmp/launcher.bundle" HEAD && chmod 644 "$root/var/tmp/launcher.bundle"
}
add_user() { in_system useradd -m visitor; }

echo "commit  $(git rev-parse --short HEAD)"
step "new system" make_system
step "current commit" bundle
for command in $commands; do
    step "${command#./}" in_clone root "$command"
    step "${command#./}, again" in_clone root "$command"
done
step "new user" add_user
step "test.sh, as a user" in_clone visitor ./test.sh
