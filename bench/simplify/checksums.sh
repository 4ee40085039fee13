#!/bin/sh
# Hashes of the contraction sequence and of the output for a fixed set of full-size runs, to
# prove that a change of the production leaves every contraction and every output bit as it was.
#   bench/simplify/checksums.sh [build/bin/simplify_cli] > sums.txt   (then diff two such files)
cli=${1:-build/bin/simplify_cli}
bunny=/usr/share/glmark2/models/bunny.obj
run() { printf '%s: ' "$*"; "$cli" "$@" --checksum 2>&1 | grep -E '^checksum|reduction failed' ; }
run $bunny --keep 0.1
run $bunny --keep 0.5
run $bunny --keep 0.02
run $bunny --keep 0.1 --geom-only
run $bunny --keep 0.2 --tex-seams --color-borders
run $bunny --keep 0.3 --lock 1,100,1000,10000,30000
run $bunny --keep 0.1 --zero-error
run $bunny --keep 0.1 --subdivide 1
run /usr/share/assimp/models/PLY/Wuson.ply --keep 0.1
run /usr/share/assimp/models/OBJ/regr01.obj --keep 0.1
run /usr/share/assimp/models/OBJ/spider.obj --keep 0.3 --tex-seams
run $bunny --keep 0.1 --engine
