#!/usr/bin/env bash
# Installs what is missing, builds, and runs the workbench on its built-in example song,
# printing the note list each synthesiser received. Extra arguments go to the workbench.
# The installation and the build speak only when they fail: their output goes to
# build/run-workbench.log (the folder of CANTORELA_BUILD_DIR), and standard output
# holds the workbench's report alone.
set -euo pipefail
root="$(cd -P "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"
mkdir -p "$build"
log="$build/run-workbench.log"

echo "run-workbench: installing what is missing and building into $build (log: $log) ..." >&2
if ! { bash "$root/scripts/install-deps.sh" && bash "$root/scripts/build.sh"; } > "$log" 2>&1; then
  tail -n 30 "$log" >&2
  echo "run-workbench: the build failed; the whole log is in $log" >&2
  exit 1
fi

exec "$build/workbench/cli/workbench" "$@"
