#!/bin/sh
# The main job on real input: the ISO country, language and currency lists, to packets and back.
# usage: iso-codes.sh [FOLDER]   (FOLDER keeps the files; by default they are removed; nxplist is found on PATH)
set -eu
source=/usr/share/iso-codes/json
if [ $# -gt 0 ]; then
    folder=$1
    mkdir -p "$folder"
else
    folder=$(mktemp -d)
    trap 'rm -rf "$folder"' EXIT
fi

for list in iso_3166-1 iso_639-3 iso_4217; do
    echo "== $list"
    nxplist convert "$source/$list.json" "$folder/$list.nxp"
    nxplist convert "$folder/$list.nxp" "$folder/$list.json"
    nxplist same "$source/$list.json" "$folder/$list.json" && echo "read back from packets: the same"
    nxplist stat "$folder/$list.nxp"
done

echo "== a country, a language, a currency"
nxplist get "$folder/iso_3166-1.nxp" '.3166-1[3].name'
nxplist get --raw "$folder/iso_639-3.nxp" '.639-3[-1].name'
nxplist get "$folder/iso_4217.nxp" '.4217[0]'
