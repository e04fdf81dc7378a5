# Splits a guide that has become HTML into the topics of the help file, one for each chapter, and
# writes their table of contents to standard output. The guide is read twice: for where its anchors
# come to lie, and for the text. Wants -v language=xx -v folder=OUT; the guide as the
# only two files. The list around the contents is the caller's.

BEGIN { depth = 1 }

# Every heading has its anchor in a paragraph before it.
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

# The guide's own chapter holds all others.
function list_heading() {
    while (depth < level) { print "<ul>"; ++depth }
    while (depth > level) { print "</ul>"; --depth }
    print "<li><object type=\"text/sitemap\"><param name=\"Name\" value=\"" name "\">" \
        "<param name=\"Local\" value=\"" page_of(topic) (level < 3 ? "" : "#" anchor) \
        "\"></object>"
}

# Links within the guide lead from page to page, those to the other language to its first one.
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
