#!/usr/bin/env bash
# Fails if clang-format would change a C++ source file.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

find . \( -path ./build -o -name '.?*' \) -prune -o \
    -type f \( -name '*.cpp' -o -name '*.h' \) -print0 |
    xargs -0 --no-run-if-empty clang-format --dry-run -Werror
