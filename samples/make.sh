#!/bin/sh
# Makes all samples again, byte for byte: samples/make.sh [path of tarnwick-make]
set -eu
here=$(cd "$(dirname "$0")" && pwd)
make=${1:-$here/../build/release/bin/tarnwick-make}
if [ ! -x "$make" ]; then
    echo "make.sh: no tarnwick-make at $make; build it, or name it on the command line" >&2
    exit 1
fi
make=$(cd "$(dirname "$make")" && pwd)/$(basename "$make")
cd "$here"

"$make" part gear.stp --shape gear --triangles 1600 --normals one --seed 4
"$make" part bolt.stp --shape bolt --triangles 1500 --kind strips --seed 2
"$make" part flange.stpz --shape flange --triangles 4000 --kind fans --transparent --compress --seed 3
"$make" part plate-with-material.stp --shape plate --triangles 1400 --solids 2 --colours 6 --material \
    --shared-coordinates --seed 5
"$make" part sheet.stpz --triangles 8000 --solids 7 --colours 7 --material --pnindex --compress --seed 6
"$make" part surface-sets.stpz --triangles 4000 --solids 4 --kind sets --colours 4 --compress
"$make" fem panel-fem.stp --quads 250

# One machine in every format.
rm -rf machine machine-xml
mkdir machine machine-xml
style="--kind strips --normals one --shared-coordinates"
"$make" assembly machine/machine.stp --uses 4 --triangles-per-part 300 $style
"$make" stpx machine-xml/machine.stpx --uses 4 --triangles-per-part 300 $style
"$make" stpa machine.stpa --uses 4 --triangles-per-part 300 $style --route documents
"$make" stpj machine.stpj --uses 4 --triangles-per-part 300
"$make" part machine.stpz --machine 300 $style --compress
