# Sourced by the other scripts: installs Debian packages that are missing.

# need_packages NAME...: makes sure that every package is installed, with sudo where we are not root.
need_packages() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null | grep -qx installed || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return 0
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      echo "These Debian packages are missing and there is no sudo to install them: ${missing[*]}" >&2
      return 1
    }
    as_root=(sudo)
  fi
  echo "Installing: ${missing[*]}" >&2
  "${as_root[@]}" apt-get update -qq >&2 &&
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends \
      "${missing[@]}" >&2
}

# What building and running the program takes, and what the tests take on top.
program_packages=(g++ cmake ninja-build ccache qt6-base-dev libcli11-dev nlohmann-json3-dev libtomlplusplus-dev fonts-dejavu-core)
test_packages=(libgtest-dev libgmock-dev)

# configure_program FOLDER [CMAKE OPTIONS...]: says nothing unless it fails.
configure_program() {
  local folder=$1
  shift
  cmake -S "$root" -B "$folder" -G Ninja "$@" >"$folder.log" 2>&1 || {
    cat "$folder.log" >&2
    return 1
  }
}

# build_program FOLDER [CMAKE OPTIONS...]: configures where needed and builds.
build_program() {
  configure_program "$@"
  cmake --build "$1"
}

# cmake_windows_program FOLDER QT_FOLDER [CMAKE OPTIONS...]: the window and the other programs for Windows, with the
# static Qt that is installed in that folder.
cmake_windows_program() {
  local folder=$1 qt=$2
  shift 2
  configure_program "$folder" -DQV5123_TESTS=OFF \
    -DCMAKE_TOOLCHAIN_FILE="$qt/lib/cmake/Qt6/qt.toolchain.cmake" \
    -DQT_CHAINLOAD_TOOLCHAIN_FILE="$root/scripts/toolchain-mingw.cmake" \
    -DQT_HOST_PATH=/usr -DQT_HOST_PATH_CMAKE_DIR="/usr/lib/$(dpkg-architecture -qDEB_HOST_MULTIARCH)/cmake" "$@"
}
