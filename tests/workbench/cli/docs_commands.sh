#!/usr/bin/env bash
# Every command in the ```sh blocks of README.md and docs/*.md, run as written from the top of a
# tree made of links to this one, with build/ standing for the tree under test; each must succeed.
# Files the commands write land in the linked tree, which goes at the end. The few commands that
# must not run here are listed, with the reason, in commands-not-run.txt beside this script.
#   docs_commands.sh SOURCE_ROOT BUILD_DIR
set -uo pipefail
root="$(cd "$1" && pwd -P)"
build="$(cd "$2" && pwd -P)"
skip="$(dirname "$0")/commands-not-run.txt"

work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
for entry in "$root"/* "$root"/.[!.]*; do
  name="$(basename "$entry")"
  case "$name" in build | build-* | .[!.]*.swp) continue ;; esac
  ln -s "$entry" "$work/$name"
done
ln -s "$build" "$work/build"

# The commands, one a line as "FILE:LINE<TAB>COMMAND"; a line ending in \ goes on on the next.
commands="$(cd "$root" && awk '
  FNR == 1 { block = 0; cont = "" }
  /^```sh[[:space:]]*$/ { block = 1; next }
  /^```/ { block = 0; next }
  block {
    line = $0
    if (cont == "") { where = FILENAME ":" FNR }
    if (line ~ /\\$/) { cont = cont substr(line, 1, length(line) - 1) " "; next }
    cmd = cont line; cont = ""
    if (cmd ~ /^[[:space:]]*(#.*)?$/) next
    print where "\t" cmd
  }' README.md docs/*.md)"

patterns=()
while IFS= read -r p; do
  [[ -z "$p" || "$p" == \#* ]] || patterns+=("$p")
done < "$skip"

failures=0
declare -A used
while IFS=$'\t' read -r where cmd; do
  [ -n "$cmd" ] || continue
  skipped=""
  for p in "${patterns[@]}"; do
    if [[ "$cmd" == *"$p"* ]]; then skipped="$p"; used["$p"]=1; fi
  done
  if [ -n "$skipped" ]; then
    echo "not run  $where: $cmd"
    continue
  fi
  start=$SECONDS
  (cd "$work" && CANTORELA_BUILD_DIR="$build" timeout 900 bash -c "set -o pipefail; $cmd" \
     > "$work/.stdout" 2> "$work/.stderr" < /dev/null)
  status=$?
  if [ $status -ne 0 ]; then
    echo "FAILED   $where (exit $status): $cmd"
    tail -n 20 "$work/.stderr" | sed 's/^/         /'
    failures=$((failures + 1))
    continue
  fi
  # The front page's first command promises the song's table on standard output, not a build log.
  if [[ "$cmd" == "bash scripts/run-workbench.sh"* ]] && ! head -n 1 "$work/.stdout" | grep -q '^Morning Song\|^[a-z0-9]*\.mid  '; then
    echo "FAILED   $where: standard output does not begin with the song's table:"
    head -n 5 "$work/.stdout" | sed 's/^/         /'
    failures=$((failures + 1))
    continue
  fi
  echo "ok       $where ($((SECONDS - start)) s): $cmd"
done <<< "$commands"

for p in "${patterns[@]}"; do
  if [ -z "${used[$p]:-}" ]; then
    echo "FAILED   commands-not-run.txt: \"$p\" matches no command any more; take it out"
    failures=$((failures + 1))
  fi
done
[ $failures -eq 0 ] || { echo "$failures command(s) failed"; exit 1; }
