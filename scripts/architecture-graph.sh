#!/usr/bin/env bash
# Draws docs/architecture.svg from the layers block of docs/architecture.md (needs Graphviz's dot).
set -euo pipefail
cd "$(dirname "$0")/.."
{
  echo 'digraph layers {'
  echo '  rankdir=TB; node [shape=box, style="rounded,filled", fontname="sans-serif", fontsize=11];'
  echo '  zelmar3 [label="zelmar3: the engine, below every library", fillcolor="#d9d9d9"]; { rank=max; zelmar3; }'
  sed -n '/^```layers/,/^```$/p' docs/architecture.md | grep -v '^```' | grep -v '^#' | while IFS= read -r line; do
    [ -z "$line" ] && continue
    name=${line%%:*}; deps=${line#*:}
    fill='"#e3eefc"'
    case "$name" in *"(qt)"*) name=${name%% *}; fill='"#fde9c9"';; esac
    echo "  $name [label=\"vexil_$name\", fillcolor=$fill];"
    for d in $deps; do echo "  $name -> $d;"; done
  done
  echo '}'
} > docs/architecture.dot
dot -Tsvg docs/architecture.dot -o docs/architecture.svg
echo "docs/architecture.svg written"
