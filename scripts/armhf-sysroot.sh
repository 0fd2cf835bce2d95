#!/usr/bin/env bash
# Builds the armhf dependency tree for the cross build: protobuf, zlib and
# GoogleTest from Debian's armhf packages (plus the header-only CLI11), each
# unpacked with dpkg -x into one directory. Nothing armhf is installed on the
# machine: the foreign architecture is added only for the download and removed
# again. The host protoc generates the message code, so its version must equal
# the armhf protobuf headers' version; the script checks that every time.
#
# Usage: scripts/armhf-sysroot.sh [SYSROOT]     (default: build-arm/sysroot)
# Idempotent: an existing complete sysroot is only re-checked (well under a
# second). Delete the directory to fetch the packages again.
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
SYSROOT=${1:-$ROOT/build-arm/sysroot}
STAMP=$SYSROOT/.complete
TRIPLET=arm-linux-gnueabihf
PACKAGES=(libprotobuf-dev:armhf libprotobuf32:armhf zlib1g-dev:armhf zlib1g:armhf
          libgtest-dev:armhf libcli11-dev nlohmann-json3-dev)

die() { echo "armhf-sysroot: $*" >&2; exit 1; }

# "3.21.12" from the armhf headers' PROTOBUF_VERSION 3021012.
sysroot_protobuf_version() {
  local inc=$SYSROOT/usr/include/google/protobuf/port_def.inc n
  [ -f "$inc" ] || return 1
  n=$(sed -n 's/^#define PROTOBUF_VERSION \([0-9][0-9]*\).*/\1/p' "$inc" | head -n 1)
  [ -n "$n" ] || return 1
  echo "$((n / 1000000)).$((n / 1000 % 1000)).$((n % 1000))"
}

check_protoc() {
  command -v protoc >/dev/null || die "host protoc not found (install protobuf-compiler)"
  local host arm
  host=$(protoc --version | awk '{print $2}')
  arm=$(sysroot_protobuf_version) || die "no protobuf headers in $SYSROOT"
  if [ "$host" != "$arm" ]; then
    die "host protoc is $host but the armhf protobuf headers are $arm; generated code" \
        "would not match the library. Install the same protobuf version on both sides" \
        "(or delete $SYSROOT to fetch the armhf packages again)."
  fi
}

# A sysroot made before a package joined the list is made again.
if [ -f "$STAMP" ] && [ ! -f "$SYSROOT/usr/include/nlohmann/json.hpp" ]; then rm -f "$STAMP"; fi
if [ -f "$STAMP" ]; then
  check_protoc
  exit 0
fi

SUDO=""
if [ "$(id -u)" -ne 0 ]; then SUDO=sudo; fi

rm -rf "$SYSROOT"
mkdir -p "$SYSROOT"
DEBS=$(mktemp -d "${TMPDIR:-/tmp}/qh-armhf-debs.XXXXXX")
added_arch=0
cleanup() {
  rm -rf "$DEBS"
  if [ "$added_arch" = 1 ]; then $SUDO dpkg --remove-architecture armhf || true; fi
}
trap cleanup EXIT

if ! dpkg --print-foreign-architectures | grep -qx armhf; then
  $SUDO dpkg --add-architecture armhf
  added_arch=1
fi
echo "armhf-sysroot: fetching ${PACKAGES[*]}"
# One unreachable index (a third-party source, say) is harmless here.
$SUDO apt-get update -qq >/dev/null 2>&1 || true
download() { (cd "$DEBS" && apt-get download -q -o APT::Sandbox::User=root "$@") >/dev/null 2>&1; }
# Ask for the host's protobuf version first, so protoc and the armhf headers
# agree even when the archive's newest armhf build differs; fall back to the
# newest one (check_protoc below then says whether they still agree).
host_pb=$(dpkg-query -W -f='${Version}' libprotobuf-dev 2>/dev/null || true)
pinned=()
for p in "${PACKAGES[@]}"; do
  case "$p" in
    libprotobuf*) pinned+=("$p${host_pb:+=$host_pb}") ;;
    *) pinned+=("$p") ;;
  esac
done
download "${pinned[@]}" || download "${PACKAGES[@]}" \
  || die "apt-get download failed for: ${PACKAGES[*]}"

for deb in "$DEBS"/*.deb; do
  dpkg -x "$deb" "$SYSROOT"
done
# Absolute links (libz.so -> /lib/...) would point at the build machine's own
# files: re-point them inside the sysroot.
find "$SYSROOT" -type l | while read -r link; do
  target=$(readlink "$link")
  case "$target" in
    /*) ln -sfr "$SYSROOT$target" "$link" ;;
  esac
done
for lib in libprotobuf.a libprotobuf.so libz.a libgtest.a libgtest_main.a; do
  [ -e "$SYSROOT/usr/lib/$TRIPLET/$lib" ] || die "unpacked packages lack usr/lib/$TRIPLET/$lib"
done
check_protoc
(cd "$DEBS" && ls -1 *.deb) >"$STAMP"
echo "armhf-sysroot: ready in $SYSROOT (protobuf $(sysroot_protobuf_version))"
