#!/usr/bin/env bash
# Runs a program beside a PostgreSQL server that is there for it alone: on_postgresql.sh PROGRAM [ARGUMENT...]
# The program finds it by MORVANE_TEST_LEDGER. Where no server is installed, it says so and ends with 77, which
# counts as skipped.
set -euo pipefail

if ! command -v pg_virtualenv >/dev/null || ! compgen -G '/usr/lib/postgresql/*/bin/initdb' >/dev/null; then
    echo "no PostgreSQL server is installed here"
    exit 77
fi
export LC_ALL=C.UTF-8
# With syncs, which it would leave out: what a commit promises is a part of what is tested.
# shellcheck disable=SC2016
exec pg_virtualenv -t -o fsync=on bash -c '
    set -euo pipefail
    umask 077
    passwords=$(mktemp)
    trap "rm -f $passwords" EXIT
    echo "*:*:*:*:$PGPASSWORD" >"$passwords"
    export MORVANE_TEST_LEDGER="postgresql://$PGUSER@$PGHOST:$PGPORT/$PGDATABASE?passfile=$passwords"
    "$@"' "$0" "$@"
