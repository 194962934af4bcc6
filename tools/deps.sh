#!/usr/bin/env bash
# Installs what building and testing VoGeBasic needs on a Debian machine, when it is missing:
# compiler, CMake, Ninja, CLI11, GoogleTest and Google Benchmark (with --tool: only what the
# library and the drawing tool need; with --fuzz: clang with libFuzzer). Does nothing when all
# are there.
set -euo pipefail

packages=(g++ cmake ninja-build libcli11-dev libgtest-dev libgmock-dev libbenchmark-dev pkgconf binutils)
# With --fuzz: clang and its runtime libraries (libFuzzer, the sanitizers) for the fuzz preset.
# With --tool: the library and vogedraw only (the tool preset), no test tools.
case "${1:-}" in
  --fuzz) packages=(clang libclang-rt-dev) ;;
  --tool) packages=(g++ cmake ninja-build libcli11-dev) ;;
  "") ;;
  *) echo "usage: $0 [--tool | --fuzz]" >&2; exit 2 ;;
esac
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
