#!/usr/bin/env bash
# Runs a test program with its workspaces on a poor file system:
#   on_poor_file_system.sh POOR-FILE-SYSTEM PROGRAM [ARGUMENT...]
# Where nothing can be mounted, it says so and ends with 77, which counts as skipped.
set -euo pipefail

system=$1
shift
place=$(mktemp -d)
mkdir "$place/behind" "$place/mount"
cleanup() {
    fusermount3 -u "$place/mount" 2>/dev/null || umount "$place/mount" 2>/dev/null || true
    rm -rf "$place"
}
trap cleanup EXIT

if [ ! -w /dev/fuse ]; then
    echo "no file system can be mounted here"
    exit 77
fi
"$system" "$place/behind" "$place/mount" &
for ((tries = 0; tries < 600; ++tries)); do
    mountpoint -q "$place/mount" && break
    kill -0 $! 2>/dev/null || break
    sleep 0.1
done
if ! mountpoint -q "$place/mount"; then
    echo "no file system can be mounted here"
    exit 77
fi
TMPDIR=$place/mount MORVANE_POOR_FILES=1 "$@"
