#!/usr/bin/env bash
# Says which sources clang-format would change, and fails if there are any.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

say "Format"
cd "$root_dir"
git ls-files -z -- '*.cpp' '*.h' | xargs -0 clang-format --dry-run --Werror
