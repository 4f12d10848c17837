#!/usr/bin/env bash
# Checks that no file of a floor includes a header of a floor above it. A public header belongs to the floor
# that its class is built on.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

declare -A LEVEL=([platform]=0 [core]=1 [text]=2 [streams]=3 [values]=4 [resources]=5 [xml]=6)

# Floor of each public header, from the list that the build reads.
declare -A FLOOR_OF
floor=
while read -r word _; do
    if [[ $word =~ ^set\(RYN_HEADERS_([a-z]+)$ ]]; then
        floor=${BASH_REMATCH[1]}
    elif [[ $word =~ ^([A-Za-z0-9]+\.(h|inc))\)?$ ]]; then
        FLOOR_OF[${BASH_REMATCH[1]}]=$floor
    fi
done <cmake/RynHeaders.cmake

# The only two places that look upward: a named value is a value, and a package is described in XML.
is_allowed() { # FILE HEADER
    case $1:$2 in
        core/RyNamedValue*:RynCommon/RyValue.h | core/RyName*:RynCommon/RyValue.h) return 0 ;;
        resources/zip/*.cpp:RynCommon/* | resources/zip/*.cpp:xml/*) return 0 ;;
    esac
    return 1
}

failures=0
complain() {
    echo "$1" >&2
    failures=$((failures + 1))
}

for header in include/RynCommon/*; do
    if [[ -z ${FLOOR_OF[${header##*/}]:-} ]]; then complain "$header is missing from cmake/RynHeaders.cmake"; fi
done

pattern='^([^:]+):([0-9]+):[[:space:]]*#[[:space:]]*include[[:space:]]*[<"]([^>"]+)[>"]'
while IFS= read -r found; do
    [[ $found =~ $pattern ]] || continue
    file=${BASH_REMATCH[1]} line=${BASH_REMATCH[2]} header=${BASH_REMATCH[3]}
    floor=${file%%/*}
    case $header in
        RynCommon/*) target=${FLOOR_OF[${header#RynCommon/}]:-} ;;
        */*) target=${header%%/*} ;;
        *) continue ;;
    esac
    level=${LEVEL[${target:-none}]:-}
    if [[ -n $level ]] && ((level > LEVEL[$floor])) && ! is_allowed "$file" "$header"; then
        complain "$file:$line: $floor must not include $header, which belongs to $target"
    fi
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include' "${!LEVEL[@]}" \
    --include='*.h' --include='*.cpp' --include='*.inc' || true)

if ((failures)); then
    echo "$failures faults" >&2
    exit 1
fi
