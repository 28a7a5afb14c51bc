# Makes the demo page's card of each effect:
#
#   awk -f demo_page.awk EFFECTS
#
# EFFECTS holds, for each effect, a line `"request": "..."` with what was asked for, and what `info --json` prints of
# it, with one key a line.

# The value of a line `"key": value,`.
function value(line) {
    sub(/^ *"[^"]*": /, "", line)
    sub(/,$/, "", line)
    if (line == "null") return ""
    if (line ~ /^"/) line = substr(line, 2, length(line) - 2)
    gsub(/\\"/, "\"", line)
    return line
}

function html(text) {
    gsub(/&/, "\\&amp;", text)
    gsub(/</, "\\&lt;", text)
    gsub(/>/, "\\&gt;", text)
    gsub(/"/, "\\&quot;", text)
    return text
}

# What a value looks like: a colour has a swatch.
function shown(type, text) {
    if (type != "color") return html(text)
    return "<span class=\"swatch\" style=\"background: " html(text) "\"></span>" html(text)
}

/^"request":/ { request = value($0) }
/^  "id":/ { id = value($0) }
/^  "title":/ { title = value($0) }
/^  "description":/ { description = value($0) }
/^  "properties":/ { begin_card() }
/^      "id":/ { property = value($0) }
/^      "description":/ { about = value($0) }
/^      "type":/ { type = value($0) }
/^      "range":/ { range = value($0) }
/^      "start":/ { add_property(value($0)) }
/^}/ { end_card() }

function begin_card() {
    rows = 0
    printf "<article id=\"%s\">\n", id
    printf "<video src=\"clips/%s.mp4\" poster=\"pictures/%s.png\" width=\"640\" height=\"480\" preload=\"none\" " \
           "muted loop playsinline></video>\n", \
           id, id
    printf "<h2>%s</h2>\n<p>%s</p>\n", html(title), html(description)
    printf "<p class=\"files\"><code>-e %s</code> <a href=\"pictures/%s.png\">picture</a> <a href=\"clips/%s.mp4\">" \
           "clip</a></p>\n", html(request), id, id
}

function add_property(start) {
    if (rows++ == 0) print "<table><tr><th>property</th><th>starts with</th><th>range</th></tr>"
    printf "<tr title=\"%s\"><td>%s</td><td>%s</td><td>%s</td></tr>\n", html(about), html(property), \
           shown(type, start), html(range)
}

function end_card() {
    print rows == 0 ? "<p class=\"none\">No properties.</p>" : "</table>"
    print "</article>"
}
