#!/bin/sh
# Runs a command in a user and mount namespace of its own, with an empty debug directory on a tmpfs over /mnt:
# tests use the real paths, need no root, leave nothing behind and can run side by side.
# With KEST_TEST_NAMESPACE=none the command runs as it is: for a build with a debug directory of its own.
set -eu
case "${KEST_TEST_NAMESPACE:-}" in
  none) exec "$@" ;;
  1) ;;
  *)
    # Inside, nobody has the right to run threads round robin; a limit that may be raised out here gives it.
    ulimit -r 40 2>/dev/null || true
    KEST_TEST_NAMESPACE=1 exec unshare --user --map-root-user --mount "$0" "$@"
    ;;
esac
mount -t tmpfs kest-test /mnt
mkdir -p /mnt/vendor/tmp/kest
exec "$@"
