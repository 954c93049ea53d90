# Turns `veltomkv-cli --help` into its manual page, so the two never disagree. The help's shape:
# "Uso:" lines, a paragraph that describes, groups of "  --option ARG   text" (the text going on
# in deeper indented lines) each under a paragraph that ends in ":", then "Ejemplos:" and
# "Salida:". Usage: veltomkv-cli --help | awk -v version=… -v name=… -f help-to-man.awk

function roff(text) {
    gsub(/\\/, "\\e", text)
    gsub(/-/, "\\-", text)
    sub(/^[.']/, "\\\\&&", text)
    return text
}

function heading(title) {
    flush()
    print ".SH " title
    printed = 0
}

# Writes the paragraph gathered so far; the first one that introduces options opens OPTIONS.
function flush(text) {
    if (paragraph == "")
        return
    text = paragraph
    paragraph = ""
    if (section == "description" && text ~ /:\n$/) {
        heading("OPTIONS")
        section = "options"
    }
    if (printed)
        print ".PP"
    printf "%s", text
    printed = 1
}

BEGIN {
    print ".TH VELTOMKV-CLI 1 \"\" \"" version "\" \"Comandos de usuario\""
    print ".SH NAME"
    print "veltomkv-cli \\- " name
    print ".SH SYNOPSIS"
    section = "synopsis"
}

section == "synopsis" && /^$/ { heading("DESCRIPTION"); section = "description"; next }
section == "synopsis" {
    sub(/^(Uso:)? +/, "")
    if (printed)
        print ".br"
    print roff($0)
    printed = 1
    next
}

section == "examples" && /^ / { sub(/^ +/, ""); print roff($0); next }
section == "examples" { print ".fi"; section = "after" }

/^$/ { flush(); next }
/^Ejemplos:$/ { heading("EXAMPLES"); print ".nf"; section = "examples"; next }
/^Salida: / { heading("\"EXIT STATUS\""); section = "status"; sub(/^Salida: +/, "") }

/^  -/ {
    flush()
    match($0, /^  [^ ]+( [^ ]+)?/)
    text = substr($0, RLENGTH + 1)
    sub(/^ +/, "", text)
    print ".TP"
    print "\\fB" roff(substr($0, 3, RLENGTH - 2)) "\\fR"
    print roff(text)
    printed = 1
    next
}
/^ / { sub(/^ +/, ""); print roff($0); next }
{ paragraph = paragraph roff($0) "\n" }

END {
    flush()
    if (section == "examples")
        print ".fi"
}
