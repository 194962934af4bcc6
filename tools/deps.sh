#!/usr/bin/env bash
# Installs what building and testing VoGeBasic needs on a Debian machine, when it is missing:
# compiler, CMake, Ninja, GoogleTest and Google Benchmark (with --fuzz: clang with libFuzzer).
# Does nothing when all are there.
set -euo pipefail

packages=(g++ cmake ninja-build libgtest-dev libgmock-dev libbenchmark-dev pkgconf binutils)
# With --fuzz: clang and its runtime libraries (libFuzzer, the sanitizers) for the fuzz preset.
if [[ "${1:-}" == "--fuzz" ]]; then
  packages=(clang libclang-rt-dev)
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
