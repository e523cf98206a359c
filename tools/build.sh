# shellcheck shell=bash
# Configuring, building and testing. Sourced from the root of the tree.

jobs=$(nproc)
# Without these ccache cannot keep a result that was made with precompiled headers.
export CCACHE_SLOPPINESS=${CCACHE_SLOPPINESS-pch_defines,time_macros}

# configure <folder in build/> <cmake arguments...>
# Runs CMake only when the arguments have changed or nothing is configured yet; Ninja sees changed lists itself.
# ccache is used when it is there; the launcher is always given, so that it may come and go.
configure() {
  local folder=build/$1
  shift
  local arguments=("$@" "-DCMAKE_CXX_COMPILER_LAUNCHER=$(command -v ccache || true)")
  local stamp=$folder/dev-configuration
  if [ -f "$folder/build.ninja" ] && [ "$(cat "$stamp" 2>/dev/null)" = "${arguments[*]}" ]; then
    return
  fi
  note "Configuring $folder"
  mkdir -p build/log "$folder"
  rm -f "$stamp"
  local log=build/log/configure-${folder##*/}.log
  if ! cmake "${arguments[@]}" >"$log" 2>&1; then
    cat "$log" >&2
    fail "CMake could not configure $folder (log: $log)."
  fi
  printf '%s\n' "${arguments[*]}" >"$stamp"
}

build() { # <folder in build/> [target...]
  say "Building build/$1${2+: ${*:2}}"
  cmake --build "build/$1" --parallel "$jobs" ${2+--target "${@:2}"} >&2
}

# For commands whose output must be the program's alone: the compiler's output is shown only if it fails.
build_quietly() { # <folder in build/> <target>
  local log=build/log/build-$2.log
  mkdir -p build/log
  note "Building $2"
  if ! cmake --build "build/$1" --parallel "$jobs" --target "$2" >"$log" 2>&1; then
    cat "$log" >&2
    fail "$2 could not be built (log: $log)."
  fi
}

# With quiet set, progress is for a person at a terminal; who collects stderr gets errors only.
note() {
  if [ -z "${quiet-}" ] || [ -t 2 ]; then
    say "$@"
  fi
}

is_builtin_locale() {
  case "$1" in
    C | POSIX | C.UTF-8 | C.utf8) ;;
    *) return 1 ;;
  esac
}

check_locale() {
  if ! is_builtin_locale "$1" && ! [[ "$1" =~ ^[a-z]+_[A-Z]+\.[A-Za-z0-9-]+$ ]]; then
    usage_error "test: a locale looks like de_DE.UTF-8, not $1"
  fi
}

# Compiles the locales into build/locales, so that the tests need none on the system.
make_locales() {
  local name
  for name in "$@"; do
    is_builtin_locale "$name" && continue
    [ -f "build/locales/$name/LC_NUMERIC" ] && continue
    say "Compiling the locale $name"
    mkdir -p build/locales
    localedef -i "${name%%.*}" -f "${name#*.}" "build/locales/$name" >&2 || fail "There is no locale $name."
  done
}

decimal_mark() { # <locale>
  case "$1" in
    # Known, so that a locale that is silently missing cannot pass for one with a point.
    de_* | fr_* | tr_*) echo , ;;
    *) LOCPATH=$PWD/build/locales LC_ALL=$1 locale decimal_point ;;
  esac
}

# test_under_locale <preset> <locale> <ctest arguments...>
# The expected decimal mark makes every test program prove that it runs under the locale it was given.
test_under_locale() {
  local preset=$1 locale=$2
  shift 2
  local environment=(LC_ALL="$locale" LANGUAGE= ASAN_OPTIONS=detect_leaks=1:halt_on_error=1:detect_stack_use_after_return=1
    UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1)
  if is_builtin_locale "$locale"; then
    environment+=(OPTSTUDY_EXPECT_DECIMAL_MARK=.)
  else
    environment+=(LOCPATH="$PWD/build/locales" OPTSTUDY_EXPECT_DECIMAL_MARK="$(decimal_mark "$locale")")
  fi
  say "Testing build/$preset under $locale"
  env "${environment[@]}" ctest --test-dir "build/$preset" --parallel "$jobs" --output-on-failure --no-tests=error "$@"
}
