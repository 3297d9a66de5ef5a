#!/usr/bin/env bash
# Makes the PNG files from the SVG sources, for one, two and three device pixels to the pixel.
# Needs rsvg-convert (Debian: librsvg2-bin).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

for source in *.svg; do
    name=${source%.svg}
    rsvg-convert "$source" --output "$name.png"
    for ratio in 2 3; do
        rsvg-convert --zoom "$ratio" "$source" --output "$name@${ratio}x.png"
    done
done
