#!/usr/bin/env bash
# Installs what building and testing VoGeBasic needs on a Debian machine, when it is missing:
# compiler, CMake, Ninja, CLI11, GoogleTest and Google Benchmark. Does nothing when all are there.
set -euo pipefail

packages=(g++ cmake ninja-build libcli11-dev libgtest-dev libgmock-dev libbenchmark-dev pkgconf binutils)
# Instead of all that: --tool, only what the library and the drawing tool need (the tool preset,
# no test tools); --fuzz, clang and its runtime libraries (libFuzzer, the sanitizers) for the
# fuzz preset; --docs, Doxygen for the API reference. Extras may be combined.
if (($# > 0)); then
  packages=()
  for extra in "$@"; do
    case "$extra" in
      --tool) packages+=(g++ cmake ninja-build libcli11-dev) ;;
      --fuzz) packages+=(clang libclang-rt-dev) ;;
      --docs) packages+=(doxygen) ;;
      *) echo "usage: $0 [--tool] [--fuzz] [--docs]" >&2; exit 2 ;;
    esac
  done
fi
missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
    missing+=("$p")
  fi
done
# pkg-config may come from the pkg-config package instead of pkgconf.
if [[ " ${missing[*]} " == *" pkgconf "* ]] && command -v pkg-config >/dev/null; then
  missing=("${missing[@]/pkgconf/}")
fi
read -r -a missing <<<"${missing[*]}"
if ((${#missing[@]} == 0)); then
  exit 0
fi

sudo=""
if [[ $(id -u) -ne 0 ]]; then sudo="sudo"; fi
echo "installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
