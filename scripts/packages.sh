# shellcheck shell=bash disable=SC2034
# The Debian packages that each task needs, and what installs them. A package that other
# releases name otherwise is written with all its names: the first that apt offers is taken.

build_packages=(
  g++ cmake ninja-build pkg-config libsafec-dev 'libyang2-dev|libyang-dev' libcbor-dev
  libexpat1-dev libmd-dev libcli11-dev nlohmann-json3-dev libsimdjson-dev libmd4c-dev
  python3-dev pybind11-dev
)
test_packages=(
  libgtest-dev python3 python3-jsonschema python3-html5lib libxml2-utils 'libyang2-tools|libyang3-tools' binutils parallel
  python3-pytest python3-hypothesis python3-ncclient mandoc bash-completion zsh fish
)
python_packages=(python3-dev pybind11-dev) # for the Python package
all_packages=("${build_packages[@]}" "${python_packages[@]}" "${test_packages[@]}")
lint_packages=(clang-format clang-tidy cppcheck shellcheck mypy)
coverage_packages=(gcovr)
bench_packages=(
  python3 'libyang2-tools|libyang3-tools' libbenchmark-dev valgrind time libprotobuf-dev
  protobuf-compiler
)
cross_packages=(
  gcc-aarch64-linux-gnu g++-aarch64-linux-gnu cmake ninja-build pkg-config binutils mmdebstrap
)
package_packages=(dpkg-dev debhelper dh-python fakeroot lintian)
cluster_packages=(slurm-wlm slurmctld slurmd munge python3-distributed)
browser_packages=(chromium chromium-driver python3-selenium)
fuzz_packages=(clang libclang-rt-dev)

# Ends the script, saying what of `missing` is missing, why, and how to go on.
cannot_install() { # reason
  echo "dev: packages ${missing[*]} are missing, and $1: install them or what they hold by other" \
    "means, then go on with ACECONV_NO_INSTALL=1" >&2
  exit 1
}

# The packages of "$@" that are not installed, in `missing`.
find_missing() {
  local names name installed
  installed=$'\n'$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null || true)$'\n'
  missing=()
  for names in "$@"; do
    for name in ${names//|/ }; do
      [[ $installed != *$'\n'"installed $name"$'\n'* ]] || continue 2
    done
    missing+=("$names")
  done
}

# The name that apt offers of each package in `missing`.
choose_names() {
  local at name
  for at in "${!missing[@]}"; do
    [[ ${missing[at]} == *'|'* ]] || continue
    for name in ${missing[at]//|/ }; do
      # Not `show`, which knows names that others only stand in for.
      if [[ $(apt-cache madison "$name" 2>/dev/null) ]]; then
        missing[at]=$name
        break
      fi
    done
  done
}

# Installs what is missing of the named packages. With ACECONV_NO_INSTALL=1 nothing is
# installed: what is lacking is named, and the build shows whether it is there all the same.
need() {
  local missing root=()
  find_missing "$@"
  ((${#missing[@]})) || return 0
  if [[ ${ACECONV_NO_INSTALL:-0} != 0 ]]; then
    ! command -v dpkg-query >/dev/null ||
      echo "dev: going on without packages ${missing[*]}, as ACECONV_NO_INSTALL says" >&2
    return 0
  fi
  choose_names
  command -v apt-get >/dev/null || cannot_install "there is no apt-get"
  if (($(id -u) != 0)); then
    command -v sudo >/dev/null || cannot_install "only root can install them"
    root=(sudo)
  fi
  # Without a network this fails; what apt has stored may do.
  "${root[@]}" apt-get update -qq >&2 || true
  choose_names
  echo "Installing ${missing[*]}" >&2
  "${root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2 ||
    cannot_install "apt-get could not install them"
}
