# Reads a mapped netlist (RTLIL) and writes the yosys commands that name the clocks.
#
# `clkbufmap` leaves the RTL name of a clock on the output of the buffer that it
# inserts and makes up a name for the net in front. Here the net in front gets the
# RTL name and source position, and the net behind the same name ending in _g.

function separators(name, copy) {
    copy = name
    return gsub(/\./, "", copy)
}

# True when name a is the better one: higher in the hierarchy, shorter, first.
function better(a, b) {
    if (separators(a) != separators(b))
        return separators(a) < separators(b)
    if (length(a) != length(b))
        return length(a) < length(b)
    return a < b
}

function public_name(id) {
    return substr(id, 1, 1) == "\\" ? substr(id, 2) : ""
}

$1 == "attribute" && $2 == "\\src" { source = $3; next }
$1 == "attribute" { next }
$1 == "wire" { position[public_name($NF)] = source; source = "" }
$1 == "cell" { in_cell = 1; buffer = ($2 == "\\KVR_GBUFCE") }
$1 == "end" { in_cell = 0; buffer = 0; source = "" }

buffer && $1 == "connect" && $2 == "\\I" && NF == 3 { front = $3 }
buffer && $1 == "connect" && $2 == "\\O" && NF == 3 && front ~ /^\$auto\$clkbufmap/ {
    behind[++buffers] = public_name($3)
    ahead[buffers] = front
}

# Other names of a net: connections of a whole wire to a whole wire.
!in_cell && $1 == "connect" && NF == 3 && $2 ~ /^\\/ && $3 ~ /^\\/ {
    alias[++aliases] = public_name($2)
    net[aliases] = public_name($3)
}

END {
    for (b = 1; b <= buffers; b++) {
        best = behind[b]
        for (a = 1; a <= aliases; a++)
            if (net[a] == behind[b] && better(alias[a], best))
                best = alias[a]
        if (best == "")
            continue
        printf "rename %s %s_g\n", best, best
        printf "rename %s %s\n", ahead[b], best
        if (position[best] != "")
            printf "setattr -set src %s w:%s\n", \
                position[best], best
    }
}
