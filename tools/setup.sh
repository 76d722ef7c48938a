# Shared by run.sh, test.sh and the benchmarks: fails in one sentence, installs the packages, builds a preset.

fail() {
  printf '%s: %s\n' "$(basename "$0")" "$*" >&2
  exit 1
}

PACKAGES=(g++ cmake ninja-build pkg-config ccache curl libboost1.81-dev libboost-url1.81-dev libssl-dev nlohmann-json3-dev libdlt-dev dlt-daemon dlt-tools
  python3 python3-jinja2 python3-jsonschema python3-websockets libgtest-dev libgmock-dev libbenchmark-dev)
# What the fuzz targets need besides.
CLANG_PACKAGES=(clang-14 libclang-rt-14-dev llvm-14)

install_packages() {
  local missing=() package
  for package in "${PACKAGES[@]}"; do
    dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  command -v apt-get >/dev/null || fail "packages are missing (${missing[*]}) and this system has no apt-get: Debian 12 is needed"
  local sudo=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "packages are missing (${missing[*]}): run as root, or install them first"
    sudo=(sudo)
  fi
  echo "Installing ${missing[*]} …"
  "${sudo[@]}" apt-get update -qq || fail "the package sources cannot be reached: check the network and the apt sources"
  # CI may replace what stands in the way (another Boost, say); on a developer's machine nothing is removed.
  local keep=(--no-remove)
  [ "${CI:-}" = true ] && keep=()
  local log
  log=$(mktemp)
  if ! "${sudo[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${keep[@]}" "${missing[@]}" >"$log" 2>&1; then
    local way
    way=$(sed -n '/will be REMOVED/,/^[^ ]/p' "$log" | grep '^ ' | tr -s ' \n' ' ')
    [ -n "$way" ] && fail "installing ${missing[*]} would remove${way}: remove these first if you can spare them"
    fail "installing ${missing[*]} failed: $(grep -m1 '^E:' "$log" || tail -n 1 "$log")"
  fi
  rm -f "$log"
}

build() {
  local preset=$1
  export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
  cmake --preset "$preset" >"/tmp/cmc-configure.$$" 2>&1 || { cat "/tmp/cmc-configure.$$" >&2; rm -f "/tmp/cmc-configure.$$"; fail "configuring failed"; }
  rm -f "/tmp/cmc-configure.$$"
  cmake --build --preset "$preset" --parallel "${BUILD_JOBS:-$(nproc)}" ${2:+--target ${@:2}} || fail "the build failed"
}
