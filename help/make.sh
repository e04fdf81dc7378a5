#!/bin/sh
# Compiles both user guides to the program's help file: help/make.sh tswuhelp.chm
# The pages are in Windows-1252: the viewer's search works in that code page.
set -eu
help=$(cd "$(dirname "$0")" && pwd)
docs=$help/../docs
mkdir -p "$(dirname "$1")"
result=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
work=$result.work
rm -rf "$work"
mkdir -p "$work/utf8"
cd "$work"

contents() {  # LANGUAGE GUIDE
    cmark-gfm -e table --unsafe "$docs/$2" >"$1.html"
    awk -v "language=$1" -v folder=utf8 -f "$help/topics.awk" "$1.html" "$1.html" >"$1.hhc"
}
contents en user-guide.md
contents es user-guide.es.md
cat >utf8/contents.hhc <<'EOF'
<html><head><object type="text/site properties"></object></head><body><ul>
EOF
cat en.hhc es.hhc >>utf8/contents.hhc
echo '</ul></body></html>' >>utf8/contents.hhc
cp "$help/start.html" utf8
for page in utf8/*; do iconv -f UTF-8 -t WINDOWS-1252 "$page" >"$(basename "$page")"; done
rm -r utf8 en.html es.html
cp -R "$docs/images" "$help/help.css" .

{
    printf '[OPTIONS]\nCompatibility=1.1\nCompiled file=tswuhelp.chm\nContents file=contents.hhc\n'
    printf 'Default topic=start.html\nDefault Window=main\nFull-text search=Yes\n'
    printf 'Language=0x409 English (United States)\nTitle=Tessmar Vantor Update\n'
    printf '\n[WINDOWS]\nmain="Tessmar Vantor Update","contents.hhc",,"start.html","start.html",,,,,'
    printf '0x63520,260,0x387e,[40,30,940,680],,,,,,,0\n\n[FILES]\n'
    find . -name '*.html' -o -name '*.css' -o -name '*.png' | sed 's|^\./||' | LC_ALL=C sort
} >tswuhelp.hhp
chmcmd --no-html-scan tswuhelp.hhp >chmcmd.log 2>&1 || { cat chmcmd.log; exit 1; }
mv tswuhelp.chm "$result"
