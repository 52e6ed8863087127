# shellcheck shell=bash
# Shared by ./run, ./test and .ci/run, which source it from the root of the repository.

# packages_for run|test|ci: what the command needs beyond a bare Debian 12, one name per line.
packages_for() {
  # To build; then to show a window: software rendering, a font, xdpyinfo.
  printf '%s\n' cmake g++ ninja-build libcli11-dev libegl-dev libexempi-dev libfltk1.3-dev libgl-dev libglu1-mesa-dev libheif-dev libjpeg62-turbo-dev libjs-three liblcms2-dev libpng-dev libtiff-dev libwebp-dev libzip-dev nlohmann-json3-dev
  printf '%s\n' libgl1-mesa-dri fonts-dejavu-core x11-utils
  if [[ $1 != run ]]; then
    printf '%s\n' clang-format-14 libbenchmark-dev libboost-dev libcoin-dev libeigen3-dev libgtest-dev librapidcheck-dev libtinygltf-dev libtinyobjloader-dev libx11-dev
    printf '%s\n' admesh imagemagick openbox parallel webp xclip xdotool xvfb
    # To judge what desktops and package managers read.
    printf '%s\n' appstream desktop-file-utils dpkg-dev libglib2.0-bin librsvg2-bin libxml2-utils lintian man-db shared-mime-info
  fi
  if [[ $1 == ci ]]; then
    printf '%s\n' clang-14 clang-tidy-14 shellcheck
  fi
}

say() { printf 'relievo: %s\n' "$*"; }
die() {
  printf 'relievo: %s\n' "$*" >&2
  exit 1
}

# as_root command...: the command as root, or status 126 where that would need a password.
as_root() {
  if ((EUID == 0)); then
    "$@"
  elif command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
    sudo -n "$@"
  else
    return 126
  fi
}

# apt log arguments...: apt-get that asks nothing, waits for another apt to finish and writes to the log.
apt() {
  local log=$1
  shift
  as_root env DEBIAN_FRONTEND=noninteractive apt-get -q -y \
    -o DPkg::Lock::Timeout=300 -o Acquire::Retries=3 "$@" >>"$log" 2>&1
}

# need_packages run|test|ci: installs the packages that are missing. If none is, it makes one dpkg query and no more.
need_packages() {
  local -A present=()
  local -a packages
  local status package log
  mapfile -t packages < <(packages_for "$1")
  while read -r status package; do
    if [[ $status == installed ]]; then present[$package]=1; fi
  done < <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' "${packages[@]}" 2>/dev/null)

  local missing=()
  for package in "${packages[@]}"; do
    if [[ -z ${present[$package]:-} ]]; then missing+=("$package"); fi
  done
  if ((${#missing[@]} == 0)); then return; fi

  command -v apt-get >/dev/null || die "apt-get was not found; these packages are needed: ${missing[*]}"
  as_root true 2>/dev/null || die "installing packages needs root. Run once: sudo apt-get install ${missing[*]}"

  say "installing ${missing[*]}"
  log=$(mktemp)
  # What an interrupted run left half done is finished first. An update may fail over a source that none of these
  # packages comes from; the install decides.
  as_root env DEBIAN_FRONTEND=noninteractive dpkg --configure -a >>"$log" 2>&1 || true
  apt "$log" update || true
  if ! apt "$log" install --no-install-recommends "${missing[@]}"; then
    tail -n 15 "$log" >&2
    rm -f "$log"
    die "installing packages failed (see above); is the network reachable?"
  fi
  rm -f "$log"
}

# want_package package purpose: installs one that some tests use and pass over without. Whatever fails is said and no more.
want_package() {
  local status log
  status=$(dpkg-query -W -f '${db:Status-Status}' "$1" 2>/dev/null) || status=
  if [[ $status == installed ]]; then return; fi
  say "installing $1, $2"
  log=$(mktemp)
  if ! command -v apt-get >/dev/null || { apt "$log" update || true; ! apt "$log" install --no-install-recommends "$1"; }; then
    tail -n 3 "$log" >&2
    say "$1 could not be installed: the tests that use it are passed over"
  fi
  rm -f "$log"
}

# build preset target [cmake option...]: configures where needed and brings the target up to date; silent when it is.
build() {
  local preset=$1 target=$2
  shift 2
  local tree=build/$preset
  configure "$preset" "$@"
  if [[ $(ninja -C "$tree" -n "$target" 2>&1) == *"no work to do"* ]]; then return; fi

  local verbosity=()
  if [[ ! -t 1 ]]; then verbosity=(--quiet); fi
  say "building (preset $preset)"
  ninja -C "$tree" -j "$(nproc)" "${verbosity[@]}" "$target" || die "the build failed"
}

# configure preset [cmake option...]: ninja runs CMake again by itself when a list changes, so an existing tree is only
# reconfigured for an option it does not have yet, and from nothing when the repository has been moved.
configure() {
  local preset=$1
  shift
  local cache=build/$preset/CMakeCache.txt option fresh=()
  if [[ -f build/$preset/build.ninja ]] && grep -qxF "CMAKE_HOME_DIRECTORY:INTERNAL=$PWD" "$cache"; then
    local known=1
    for option in "$@"; do
      grep -qxF "${option#-D}" "$cache" || known=0
    done
    if ((known)); then return; fi
  elif [[ -f $cache ]]; then
    fresh=(--fresh)
  fi

  local log
  log=$(mktemp)
  if ! cmake --preset "$preset" "${fresh[@]}" "$@" >"$log" 2>&1; then
    cat "$log" >&2
    rm -f "$log"
    die "cmake could not configure the build"
  fi
  rm -f "$log"
}
