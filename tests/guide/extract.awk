# Takes a page of the guide apart, with -v stem=DIRECTORY/NAME: its programs become NAME_1.c, NAME_2.cpp ..., what one is
# said to print NAME_1.expected. A block of code without a `main` has to be made of lines of the page's programs.
/^```/ && !inside { inside = 1; kind = substr($0, 4); text = ""; next }
/^```/ {
  inside = 0
  if (kind ~ /^(c|cpp)$/ && text ~ /(^|\n)int main\(/) {
    printf "%s", text > (stem "_" ++programs "." kind)
    lines = split(text, line, "\n")
    for (i = 1; i <= lines; i++) known[trimmed(line[i])]
  } else if (kind ~ /^(c|cpp)$/) {
    fragments = fragments text
  } else if (kind == "text" && before ~ /(prints|출력).*:$/) {
    printf "%s", text > (stem "_" programs ".expected")
  }
  next
}
inside { text = text $0 "\n" }
!inside && NF { before = $0 }
END {
  lines = split(fragments, line, "\n")
  for (i = 1; i <= lines; i++) if (!(trimmed(line[i]) in known) && line[i] != "") {
    print FILENAME ": in no program of the page: " line[i] > "/dev/stderr"
    exit 1
  }
}
function trimmed(s) { gsub(/^ +| +$/, "", s); return s }
