#!/usr/bin/env bash
# Builds the example program in Release and looks at documents with it: the samples (XML, an office package, a
# compound file) and a generated document of 50 MB, or the files and URIs given.
#   scripts/demo.sh [FILE-OR-URI...]
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/common.sh"

need_packages "${BUILD_PACKAGES[@]}"

invoked_from=$PWD
cd "$ROOT"
configure_preset release -DRYNCOMMON_TESTS=OFF -DRYNCOMMON_EXAMPLES=ON
say "== release: build"
cmake --build --preset release --target ryn-inspect ryn-generate ryn-values >&2
examples=$ROOT/build/release/examples

if (($#)); then
    cd "$invoked_from"
    exec "$examples/ryn-inspect" "$@"
fi
large=$ROOT/build/demo/large.fo
mkdir -p "$(dirname "$large")"
if [[ ! -f $large ]]; then
    say "== generating $(basename "$large") (50 MB)"
    "$examples/ryn-generate" 50 "$large.part"
    # The name changes once the document is complete.
    mv "$large.part" "$large"
fi
cd examples/data
samples=()
for file in *.fo *.svg *.xml; do
    case $file in
        broken*) samples+=(--broken "$file") ;;
        *) samples+=("$file") ;;
    esac
done
"$examples/ryn-inspect" "${samples[@]}" "$large"
say "== an office package, a part of it, and a compound file"
"$examples/ryn-inspect" leaflet.docx "jar:file://$PWD/leaflet.docx!/word/document.xml" index-cards.cfb
say "== one stream of it, copied out"
"$examples/ryn-inspect" --extract Cards/A4/Width "$ROOT/build/demo/width.txt" index-cards.cfb
cat "$ROOT/build/demo/width.txt" && echo
say "== attribute values of paper-sizes.fo as property values"
grep -o '="[^"]*"' paper-sizes.fo | sed 's/^="//; s/"$//' | sort -u | "$examples/ryn-values"
