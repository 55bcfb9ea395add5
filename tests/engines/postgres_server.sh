#!/usr/bin/env bash
# A throwaway PostgreSQL server for the end-to-end tests.
#   postgres_server.sh start INFO_FILE SQL_FILE...  initdb into a new folder under /tmp, start the
#       server on a Unix socket in that folder (no TCP), load each SQL file into the database
#       "brix" and into "brix_legacy", and write the libpq connection string of "brix" to
#       INFO_FILE.
#   postgres_server.sh stop INFO_FILE  stop that server and remove its folder.
# The server refuses to run as root: under root, initdb and pg_ctl run as the "postgres" system
# user that Debian's package creates, in a folder that user owns.
set -euo pipefail

action=$1
info_file=$2
shift 2

bindir=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -n 1)
if [ -z "$bindir" ]; then
  echo "PostgreSQL is not installed: run scripts/ensure-packages" >&2
  exit 1
fi

as_server_user=()
[ "$(id -u)" -eq 0 ] && as_server_user=(runuser -u postgres --)

stop() {
  [ -f "$info_file" ] || return 0
  local folder
  folder=$(sed -n 's/^host=\([^ ]*\) .*/\1/p' "$info_file")
  if [ -n "$folder" ] && [ -d "$folder/data" ]; then
    "${as_server_user[@]}" "$bindir/pg_ctl" -D "$folder/data" -m immediate -w stop >/dev/null 2>&1 || true
  fi
  case "$folder" in /tmp/brix-postgres.*) rm -rf "$folder" ;; esac
  rm -f "$info_file"
}

if [ "$action" = stop ]; then
  stop
  exit 0
fi

stop  # a server left behind by an interrupted run
folder=$(mktemp -d /tmp/brix-postgres.XXXXXX)
[ "$(id -u)" -eq 0 ] && chown postgres: "$folder"
trap 'echo "server log:" >&2; cat "$folder/server.log" >&2 2>/dev/null || true
      "${as_server_user[@]}" "$bindir/pg_ctl" -D "$folder/data" -m immediate stop >/dev/null 2>&1 || true
      rm -rf "$folder"' ERR

"${as_server_user[@]}" "$bindir/initdb" -D "$folder/data" --auth=trust --username=brix \
  --encoding=UTF8 --locale=C >"$folder/initdb.log"
"${as_server_user[@]}" "$bindir/pg_ctl" -D "$folder/data" -l "$folder/server.log" -w \
  -o "-k $folder -c listen_addresses= -c fsync=off" start >/dev/null
# "brix_legacy" holds the same rows on a database whose string literals still read backslash
# escapes (standard_conforming_strings off), as old installations have it.
"$bindir/createdb" -h "$folder" -U brix brix
"$bindir/createdb" -h "$folder" -U brix brix_legacy
for database in brix brix_legacy; do
  for sql in "$@"; do
    "$bindir/psql" -h "$folder" -U brix -d "$database" -q -v ON_ERROR_STOP=1 <"$sql" >/dev/null
  done
done
# Set after loading, so the files' own literals read the same in both.
"$bindir/psql" -h "$folder" -U brix -d brix -q -v ON_ERROR_STOP=1 \
  -c "ALTER DATABASE brix_legacy SET standard_conforming_strings = off" >/dev/null
echo "host=$folder dbname=brix user=brix" >"$info_file"
