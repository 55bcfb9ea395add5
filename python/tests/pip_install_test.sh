#!/usr/bin/env bash
# A new user's install: a fresh virtual environment of PYTHON, `pip install` of the source tree with
# no package index, then the README's example run by the installed package from another folder.
#   pip_install_test.sh PYTHON SOURCE_DIR WORK_DIR
set -euo pipefail
python=$1
source_dir=$2
work=$3

rm -rf "$work/venv" "$work/out"
mkdir -p "$work"
"$python" -m venv "$work/venv"
# The build folder lives in the work folder, so the source tree is left as it was.
BRIX_PYTHON_BUILD_DIR="$work/build" "$work/venv/bin/pip" install --no-index --quiet \
  --disable-pip-version-check "$source_dir"

cd "$work"
"$work/venv/bin/python" -c "import brixobjects4, sys; sys.exit(brixobjects4.__file__.startswith('$work/venv') is False)"
"$work/venv/bin/python" "$source_dir/python/examples/to_postgresql.py" "$source_dir/examples" out
grep -q '"Customers"."City" IN (\$1, \$2)' out/orders.sql
