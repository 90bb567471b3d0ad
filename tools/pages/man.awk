# The man page.
BEGIN {
  FS = "\t"
  printf ".TH ZRHTTP 1 \"\" \"ZrHttpBase3 %s\" \"User commands\"\n", version
}
function Escape(text) {
  gsub(/\\/, "\\e", text)
  gsub(/-/, "\\-", text)
  return text ~ /^[.']/ ? "\\&" text : text
}
$1 == "" && $2 == "Text" && !hasName {
  hasName = 1
  print ".SH NAME\nzrhttp \\- fetch, submit and download as the e\\-banking client does"
  print ".SH SYNOPSIS\n.B zrhttp\n.I command\n[options]\n.SH DESCRIPTION\n" Escape($4)
  next
}
$1 == "" && $2 == "Text" { exitStatus = $4; next }
$1 == "" && $2 == "Options" {
  if (!hasOptions++) print ".SH OPTIONS"
  print ".TP\n.B " Escape($3) "\n" Escape($4)
  next
}
$1 == "" { next }
$1 != command {
  if (command == "") print ".SH COMMANDS"
  command = $1
  print ".SS " Escape(command)
}
$2 == "Text" && $4 != exitStatus { print Escape($4) }
$2 == "Usage" { print ".PP\n.B " Escape($4) }
$2 == "Positionals" || ($2 == "Options" && $3 !~ /--help/) {
  print ".TP\n.B " Escape($3) "\n" Escape($4)
}
END {
  sub(/^Exit status: /, "", exitStatus)
  print ".SH EXIT STATUS\n" Escape(exitStatus)
  print ".SH ENVIRONMENT"
  print ".B zrhttp doctor\nshows every setting, its value and where it comes from."
  print "Proxies come from http_proxy, https_proxy and no_proxy."
}
