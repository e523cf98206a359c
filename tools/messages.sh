# shellcheck shell=bash
# Messages of the scripts. Sourced. They go to stderr, so that stdout holds results only.

say() { printf '%s\n' "$*" >&2; }

fail() {
  printf 'error: %s\n' "$*" >&2
  exit 1
}

usage_error() {
  printf 'error: %s\nTry: ./dev help\n' "$*" >&2
  exit 2
}

expect_no_arguments() { # <command> <its arguments...>
  [ $# -le 1 ] || usage_error "$1: takes no arguments, but was given: ${*:2}"
}

# Runs a command that needs root, through sudo unless this is root already.
as_root() {
  if [ "$(id -u)" = 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    fail "This needs root, and there is no sudo. As root run: $*"
  fi
}
