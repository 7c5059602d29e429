#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds everything and runs the whole test suite (no display needed).
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake -S . -B build/test -G Ninja -DCMAKE_BUILD_TYPE=Debug
cmake --build build/test --parallel "$(nproc)"
cd build/test
QT_QPA_PLATFORM=offscreen ctest --output-on-failure --parallel "$(nproc)"
