#!/usr/bin/env bash
# Sets up a fresh Debian 12 machine, builds Quillfern and starts it; arguments are files to open.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake -S . -B build/release -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build/release --parallel "$(nproc)" --target quillfern quillfern-cli
exec build/release/src/app/quillfern "$@"
