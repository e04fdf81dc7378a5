# Splits a guide converted to HTML into help topics, one per chapter, and writes their table of
# contents to standard output. Pass the guide twice as the only files: the first pass collects the
# anchors, the second writes the pages. Needs -v language=xx -v folder=OUT. The caller adds the
# list element around the contents.

BEGIN { depth = 1 }

# The anchor of each heading is in the paragraph before it.
/^<p><a id="[^"]*"><\/a><\/p>$/ {
    split($0, parts, "\"")
    anchor = parts[2]
    next
}

/^<h[123]>/ {
    level = substr($0, 3, 1)
    if (level < 3) topic = anchor
}

FNR == NR {
    if (/^<h[123]>/) home[anchor] = topic
    next
}

/^<h[123]>/ {
    name = $0
    gsub(/<[^>]*>/, "", name)
    if (level < 3) begin_topic()
    list_heading()
    sub(/^<h[123]/, "& id=\"" anchor "\"")
}

{ print linked($0) > page }

END {
    end_topic()
    while (depth-- > 1) print "</ul>"
}

function page_of(topic) { return language "-" topic ".html" }

function begin_topic() {
    end_topic()
    page = folder "/" page_of(topic)
    print "<!DOCTYPE html>\n<html lang=\"" language "\">\n<head>" > page
    print "<meta charset=\"windows-1252\">" > page
    print "<title>" name "</title>" > page
    print "<link rel=\"stylesheet\" href=\"help.css\">\n</head>\n<body>" > page
}

function end_topic() {
    if (page == "") return
    print "</body>\n</html>" > page
    close(page)
}

# Nests the contents by heading level; the title of the guide is the root.
function list_heading() {
    while (depth < level) { print "<ul>"; ++depth }
    while (depth > level) { print "</ul>"; --depth }
    print "<li><object type=\"text/sitemap\"><param name=\"Name\" value=\"" name "\">" \
        "<param name=\"Local\" value=\"" page_of(topic) (level < 3 ? "" : "#" anchor) \
        "\"></object>"
}

# Rewrites links: anchors of the guide to their pages, the other guide to its first page.
function linked(text,   before, target) {
    before = ""
    while (match(text, /href="[^"]*"/)) {
        target = substr(text, RSTART + 6, RLENGTH - 7)
        if (target == "user-guide.md") target = "en-top.html"
        else if (target == "user-guide.es.md") target = "es-top.html"
        else if (substr(target, 1, 1) == "#" && substr(target, 2) in home)
            target = page_of(home[substr(target, 2)]) target
        else if (target !~ /^https?:/) {
            print "a link of the guide leads nowhere: " target > "/dev/stderr"
            exit 1
        }
        before = before substr(text, 1, RSTART - 1) "href=\"" target "\""
        text = substr(text, RSTART + RLENGTH)
    }
    return before text
}
