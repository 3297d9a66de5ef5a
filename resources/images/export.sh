#!/usr/bin/env bash
# Makes the PNG files from the SVG sources, for one, two and three device pixels to the pixel.
# Needs rsvg-convert (Debian: librsvg2-bin) and convert (imagemagick).
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

for source in *.svg; do
    name=${source%.svg}
    for ratio in 1 2 3; do
        [[ $ratio -eq 1 ]] && file=$name.png || file=$name@${ratio}x.png
        rsvg-convert --zoom "$ratio" "$source" --output "$file"
    done
done

# The one large picture that the window's first painting has to read: from a palette it is read in a
# third of the time.
for file in add1.png add1@2x.png add1@3x.png; do
    convert "$file" +dither -colors 256 -strip "PNG8:$file"
done
