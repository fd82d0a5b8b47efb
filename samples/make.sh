#!/bin/sh
# Makes the sample tables from their CSVs again, byte for byte. Another program than the one of this source
# tree can be named: OVFILE=/usr/bin/ovfile samples/make.sh
set -eu
cd "$(dirname "$0")"
ovfile=${OVFILE:-../ovfile}

"$ovfile" import collars.csv collars.ovt --description "Sample: drillhole collars"
"$ovfile" import surveys.csv surveys.ovt --description "Sample: downhole surveys"
"$ovfile" import assays.csv assays.ovt --description "Sample: assays by interval"
"$ovfile" import blocks.csv blocks.ovt --description "Sample: block model of copper" \
  --implicit XMORIG=5200 --implicit YMORIG=8430 --implicit ZMORIG=130 \
  --implicit NX=8 --implicit NY=6 --implicit NZ=4
"$ovfile" import orebody_points.csv orebody_points.ovt --single --description "Sample: points of a wireframe"
"$ovfile" import orebody_triangles.csv orebody_triangles.ovt --single --description "Sample: triangles of a wireframe"
"$ovfile" import pit_outlines.csv pit_outlines.ovt --single --description "Sample: outlines of a pit, three levels"
