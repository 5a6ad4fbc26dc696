# What the scripts share; read with `source`. Leaves the shell in the project's root folder.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
root=$PWD

# Ends the script with status 2 and one line that says why.
wrong_usage() {
  echo "$(basename "$0"): $1 (try --help)" >&2
  exit 2
}

# Prints the comment at the head of the calling script.
print_help() {
  sed -n '2,/^[^#]/{s/^# \{0,1\}//p;}' "$root/scripts/$(basename "$0")"
}

# Answers --help as the first argument, and ends the script then.
answer_help() {
  case "${1:-}" in -h | --help)
    print_help
    exit 0
    ;;
  esac
}

# Configures preset $1 and builds the targets that follow, or everything.
build_preset() {
  local preset=$1
  shift
  cmake --preset "$preset" --log-level=NOTICE
  cmake --build --preset "$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}

# Runs a command with addresses that do not vary, where the system lets us: the sanitizers' fixed
# shadow memory collides with the wide address randomisation of newer kernels.
at_fixed_addresses() {
  if setarch -R true 2>/dev/null; then
    setarch -R "$@"
  else
    "$@"
  fi
}

# Prints the project's own files that match one of the patterns, each ended by a zero byte.
project_sources() {
  local folders=() names=() folder pattern
  for folder in zentavo adapters tools examples tests bench fuzz; do
    [[ ! -d $folder ]] || folders+=("$folder")
  done
  for pattern in "$@"; do
    names+=(-o -name "$pattern")
  done
  find "${folders[@]}" -type f \( "${names[@]:1}" \) -print0
}
