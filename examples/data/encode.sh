#!/usr/bin/env bash
# Makes the Shift_JIS and the UTF-16 form of paper-sizes.fo, which is the source of all three.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")"

# encode NAME CONVERTER - the text with another encoding in its declaration; iconv rejects what it cannot hold.
encode() {
    sed "1s/encoding=\"UTF-8\"/encoding=\"$1\"/" paper-sizes.fo | iconv --from-code=UTF-8 --to-code="$2"
}

encode Shift_JIS CP932 >paper-sizes-shift_jis.fo
{
    printf '\xFF\xFE'
    encode UTF-16 UTF-16LE
} >paper-sizes-utf16.fo
