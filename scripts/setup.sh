# shellcheck shell=bash
# Sourced by ./run, ./test and ./bench.sh: installs the missing packages of a purpose, after saying which.
#
#   setup build | setup build test | setup build test bench
#
# Quick when there is nothing to do, silent on standard output, and never reads standard input. Recommended packages
# are left out, so what the program itself loads as it runs is named too: libsecret for the keychain, the certificates.

debian_packages() {
  case $1 in
    build) echo clang-19 lld-19 cmake ninja-build ccache qt6-base-dev qt6-declarative-dev \
                qt6-declarative-dev-tools qt6-svg-dev qt6-multimedia-dev libgl-dev libmd4c-dev libicu-dev qcoro-qt6-dev qtkeychain-qt6-dev libboost1.81-dev \
                libboost-json1.81-dev libre2-dev libcli11-dev libedit-dev libcpp-httplib-dev libsqlitecpp-dev libsqlite3-dev \
                libssl-dev zlib1g-dev libbrotli-dev pkgconf ca-certificates libsecret-1-0 libglib2.0-dev \
                qt6-qpa-plugins qml6-module-qtqml qml6-module-qtqml-models qml6-module-qtqml-workerscript \
                qml6-module-qtquick qml6-module-qtquick-layouts qml6-module-qtquick-templates \
                qml6-module-qtquick-window fonts-noto-cjk ;;
    test)  echo clang-format-19 libclang-rt-19-dev llvm-19 libgtest-dev libgmock-dev dbus-daemon gnome-keyring git \
                python3 espeak-ng qml6-module-qttest qml6-module-qt-labs-platform desktop-file-utils appstream ;;
    tidy)  echo clang-tidy-19 ;;
    package) echo dpkg-dev fakeroot python3 ;;
    bench) echo libbenchmark-dev nlohmann-json3-dev python3 curl xvfb dbus-daemon libx11-dev libxdamage-dev libxtst-dev \
                qml6-module-qtquick-controls qml6-module-qtquick-templates ;;
  esac
}

homebrew_packages() {
  case $1 in
    build) echo cmake ninja ccache qt md4c icu4c qcoro qtkeychain boost re2 cli11 libedit cpp-httplib sqlitecpp sqlite openssl@3 pkgconf ;;
    test)  echo clang-format googletest espeak-ng ;;
    tidy)  echo llvm ;;
    package) ;;
    bench) echo google-benchmark nlohmann-json ;;
  esac
}

setup_debian() {
  local wanted missing installed root=()
  wanted=$(for purpose in "$@"; do debian_packages "$purpose"; done)
  installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' 2>/dev/null | sed -n 's/^installed //p')
  missing=$(comm -23 <(tr ' ' '\n' <<<"$wanted" | sort -u) <(sort -u <<<"$installed"))
  [ -n "$missing" ] || return 0
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "需要管理员权限来安装：" $missing >&2; return 1; }
    root=(sudo)
  fi
  echo "即将用 apt-get 安装：" $missing >&2
  "${root[@]}" apt-get update </dev/null >&2 &&
    "${root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends $missing </dev/null >&2
}

setup_macos() {
  local wanted missing
  command -v brew >/dev/null || { echo "需要 Homebrew 来安装依赖。" >&2; return 1; }
  wanted=$(for purpose in "$@"; do homebrew_packages "$purpose"; done)
  missing=$(comm -23 <(tr ' ' '\n' <<<"$wanted" | sort -u) <(brew list --formula -1 | sort -u))
  [ -n "$missing" ] || return 0
  echo "即将用 brew 安装：" $missing >&2
  # shellcheck disable=SC2086
  brew install $missing </dev/null >&2
}

# setup PURPOSE...
setup() {
  case $(uname -s) in
    Darwin) setup_macos "$@" ;;
    *)
      if command -v apt-get >/dev/null; then
        setup_debian "$@"
      else
        echo "不认识这个系统的软件包管理，请自行装好依赖（见 README）。" >&2
      fi
      ;;
  esac
}

# configure PRESET: once, and again by CMake itself whenever a CMakeLists.txt changes.
configure() {
  [ -f "build/$1/build.ninja" ] || cmake --preset "$1" </dev/null >&2
}
