# One command's help as lines of fields: command, section, entry, text.
BEGIN { OFS = "\t"; section = "Text" }
function Flush() {
  if (entry != "") print command, section, entry, text
  entry = text = ""
}
/^(Options|Positionals|Subcommands):$/ { Flush(); section = substr($0, 1, length($0) - 1); next }
/^Usage: / { Flush(); print command, "Usage", "", substr($0, 8); next }
/^$/ { Flush(); section = "Text"; next }
section == "Text" { print command, "Text", "", $0; next }
/^  [^ ]/ {
  Flush()
  entry = substr($0, 3)
  if (match(entry, /  +/) || length(entry) > 28 && match(entry, / /) && substr($0, 30, 1) == " ") {
    text = substr(entry, RSTART + RLENGTH)
    entry = substr(entry, 1, RSTART - 1)
  }
  # A long entry with one space before its text, which begins in column 31.
  if (text == "" && length($0) > 30 && substr($0, 30, 1) == " ") {
    text = substr($0, 31)
    entry = substr($0, 3, 27)
  }
  sub(/ +$/, "", entry)
  next
}
{ line = $0; sub(/^ +/, "", line); text = text (text == "" ? "" : " ") line }
END { Flush() }
