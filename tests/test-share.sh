#!/bin/sh
# The share of test code: non-blank, non-comment lines of *_test.cpp and tests/ over those of all .cpp, .h, .js, .py and .sh.
cd "$(git -C "$(dirname "$0")" rev-parse --show-toplevel)" || exit 1
lines() { xargs -r -d '\n' cat | grep -c -v -E '^[[:space:]]*($|//|#[^i])'; }
files() { git ls-files | grep -E '\.(cpp|h|js|py|sh)$'; }
tests=$(files | grep -E '_test\.cpp$|^tests/' | lines)
all=$(files | lines)
echo "$tests of $all code lines are tests: $((100 * tests / all)) %"
