#!/usr/bin/env bash
# Installs what is missing, builds, and runs the workbench on its built-in example song,
# printing the note list each synthesiser received. Extra arguments go to the workbench.
set -euo pipefail
root="$(cd "$(dirname "$0")/.." && pwd)"
build="${CANTORELA_BUILD_DIR:-$root/build}"

bash "$root/scripts/install-deps.sh"
bash "$root/scripts/build.sh"

"$build/workbench/cli/workbench" "$@"
