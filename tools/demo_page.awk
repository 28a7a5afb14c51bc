# Makes the demo page's card of each effect:
#
#   awk -f demo_page.awk docs/texts.json EFFECTS
#
# EFFECTS holds, for each effect, a line `"request": "..."` with what was asked for, and what `info --json` prints of
# it. Both files have one key a line.

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
    return "<span class=\"swatch\" style=\"background: rgb(" html(text) ")\"></span>" html(text)
}

function range_words(type, range) {
    if (type == "boolean") return "TRUE or FALSE"
    if (type == "color") return "0 to 255 each"
    sub(/,/, " to ", range)
    return html(range)
}

FNR == 1 { file++ }

# ---- the texts ----
file == 1 && /^    "/ { class = $0; sub(/^ *"/, "", class); sub(/": .*/, "", class) }
file == 1 && /^ *"about":/ { about[class] = value($0) }
file == 1 && /^ *"variants":/ {
    rest = $0
    sub(/^ *"variants": /, "", rest)
    while (match(rest, /"[0-9]+": "[^"]*"/)) {
        split(substr(rest, RSTART, RLENGTH), part, "\"")
        variant_text[class, part[2]] = part[4]
        rest = substr(rest, RSTART + RLENGTH)
    }
}
file == 1 { next }

# ---- an effect ----
/^"request":/ { request = value($0) }
/^  "name":/ { name = value($0) }
/^  "displayName":/ { title = value($0) }
/^  "variant":/ { variant = value($0) }
/^  "guid":/ { guid = value($0) }
/^  "properties":/ { begin_card() }
/^      "name":/ { property = value($0) }
/^      "type":/ { type = value($0) }
/^      "default":/ { default_text = value($0) }
/^      "range":/ { range = value($0) }
/^      "running":/ { add_property(value($0)) }
/^}/ { end_card() }

function begin_card() {
    rows = 0
    printf "<article id=\"%s\">\n", name
    printf "<video src=\"clips/%s.mp4\" poster=\"pictures/%s.png\" width=\"640\" height=\"480\" preload=\"none\" " \
           "muted loop playsinline></video>\n", \
           name, name
    printf "<h2>%s%s</h2>\n", html(title), \
           variant == "" ? "" : " <span class=\"variant\">variant " html(variant) "</span>"
    printf "<p>%s", html(about[title])
    if ((title, variant) in variant_text) printf " <em>This one: %s.</em>", html(variant_text[title, variant])
    printf "</p>\n"
    printf "<p class=\"files\"><code>-e %s</code> <a href=\"pictures/%s.png\">picture</a> <a href=\"clips/%s.mp4\">" \
           "clip</a></p>\n", html(request), name, name
}

function add_property(running) {
    if (rows++ == 0) print "<table><tr><th>property</th><th>runs with</th><th>range</th></tr>"
    printf "<tr><td>%s</td><td>%s%s</td><td>%s</td></tr>\n", html(property), shown(type, running), \
           running == default_text ? "" : " <small>the table says " html(default_text) "</small>", \
           range_words(type, range)
}

function end_card() {
    print rows == 0 ? "<p class=\"none\">No properties.</p>" : "</table>"
    print "</article>"
}
