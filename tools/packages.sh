# shellcheck shell=bash
# shellcheck disable=SC2034  # the lists are read through the name of their purpose
# The Debian packages that each purpose needs, and their installation. Sourced. docs/dependencies.md says why.

build_packages=(g++ cmake ninja-build pkg-config qtbase5-dev libsqlite3-dev libudunits2-dev libudunits2-data
  libcli11-dev libyaml-cpp-dev nlohmann-json3-dev)
run_packages=("${build_packages[@]}" ngspice)
test_packages=("${run_packages[@]}" clang calculix-ccx mawk libgtest-dev libgmock-dev locales strace e2fsprogs mount)
asan_packages=("${test_packages[@]}" libclang-rt-dev llvm)
bench_packages=("${run_packages[@]}" libbenchmark-dev libmuparser-dev sqlite3)
fuzz_packages=("${build_packages[@]}" clang libclang-rt-dev llvm)
coverage_packages=("${test_packages[@]}" libclang-rt-dev llvm python3)
mutate_packages=("${test_packages[@]}" git python3 util-linux binutils)
lint_packages=("${build_packages[@]}" clang libgtest-dev libgmock-dev libbenchmark-dev libmuparser-dev git python3
  clang-format clang-tidy)
docs_packages=(doxygen)

install_missing() { # <purpose>
  local -n wanted="$1_packages"
  if ! command -v dpkg-query >/dev/null; then
    say "No Debian packages on this system: taking for granted what docs/dependencies.md lists."
    return
  fi
  local missing
  mapfile -t missing < <(missing_of "${wanted[@]}")
  [ ${#missing[@]} -gt 0 ] || return 0
  local line="apt-get update && apt-get install -y --no-install-recommends ${missing[*]}"
  if [ "$(id -u)" != 0 ] && ! command -v sudo >/dev/null; then
    fail "These packages are missing, and there is neither root nor sudo to install them. As root run:
  $line"
  fi
  say "Installing ${#missing[@]} missing packages: ${missing[*]}"
  mkdir -p build/log
  : >build/log/apt.log
  update_lists
  if ! apt_get install --no-install-recommends "${missing[@]}"; then
    show_apt_errors
    fail "The packages could not be installed (log: build/log/apt.log). By hand, as root:
  $line"
  fi
}

missing_of() {
  local installed package
  # It ends with 1 when it does not know one of them.
  installed=$({ dpkg-query -W -f '${db:Status-Status} ${Package}\n' "$@" 2>/dev/null || true; } | sed -n 's/^installed //p')
  for package in "$@"; do
    grep -qxF -- "$package" <<<"$installed" || echo "$package"
  done
}

# One unreachable source must not stop an installation that the others can serve, so a failure is reported and
# the installation tried.
update_lists() {
  say "  Fetching the package lists"
  apt_get update -o APT::Update::Error-Mode=any && return
  say "  apt-get update FAILED; going on with the package lists at hand. It said:"
  show_apt_errors
}

apt_get() {
  as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 apt-get -y -o DPkg::Lock::Timeout=300 "$@" </dev/null 2>&1 |
    tee -a build/log/apt.log | show_apt_progress
}

show_apt_errors() {
  { grep -E '^(E|W|Err):' build/log/apt.log || tail -n 5 build/log/apt.log; } | tail -n 8 | sed 's/^/    /' >&2
}

show_apt_progress() {
  local line total=0 done=0 next=0
  while IFS= read -r line; do
    case "$line" in
      *' newly installed, '*)
        total=${line#*upgraded, }
        total=${total%% newly*}
        ;;
      'Need to get '*) say "  Downloading: ${line#Need to get }" ;;
      'Fetched '*) say "  $line" ;;
      'Setting up '*)
        done=$((done + 1))
        if [ "$total" -gt 0 ] && [ $((done * 10 / total)) -gt "$next" ]; then
          next=$((done * 10 / total))
          say "  Set up $done of $total packages"
        fi
        ;;
    esac
  done
}
