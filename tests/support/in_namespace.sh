#!/bin/sh
# Runs a command in a user and mount namespace of its own, with an empty debug directory on a tmpfs over /mnt:
# tests use the real paths, need no root, leave nothing behind and can run side by side.
set -eu
if [ "${KEST_TEST_NAMESPACE:-}" != 1 ]; then
  KEST_TEST_NAMESPACE=1 exec unshare --user --map-root-user --mount "$0" "$@"
fi
mount -t tmpfs kest-test /mnt
mkdir -p /mnt/vendor/tmp/kest
exec "$@"
