# Completion for zsh, with what each option does.
BEGIN { FS = "\t" }
function Quote(text) {
  gsub(/'/, "'\\''", text)
  return text
}
function Description(text) {
  gsub(/[\]\[:\\]/, "\\\\&", text)
  return Quote(text)
}
$2 == "Subcommands" { commands = commands sprintf("    '%s:%s'\n", $3, Description($4)) }
$2 == "Options" && $1 != "" {
  name = $3
  sub(/ .*/, "", name)
  count = split(name, names, ",")
  value = ""
  if (match($3, /\{[^}]*\}/)) {
    value = substr($3, RSTART + 1, RLENGTH - 2)
    gsub(/,/, " ", value)
    value = ":value:(" value ")"
  } else if ($3 ~ / (FILE|NAME=@FILE|NAME=PATH)/) value = ":file:_files"
  else if ($3 ~ / (TEXT|MS|NAME|INT|UINT)/) value = ":value: "
  often = $3 ~ /\.\.\./ ? "*" : ""
  for (i = 1; i <= count; i++)
    arguments[$1] = arguments[$1] sprintf(" \\\n        '%s%s[%s]%s'", often, names[i],
                                          Description($4), value)
}
$2 == "Positionals" {
  value = "_files"
  if (match($3, /\{[^}]*\}/)) {
    value = substr($3, RSTART + 1, RLENGTH - 2)
    gsub(/,/, " ", value)
    value = "(" value ")"
  } else if ($3 ~ /^URL/) value = "_urls"
  arguments[$1] = arguments[$1] sprintf(" \\\n        ':%s:%s'", tolower(substr($3, 1, index($3 " ", " ") - 1)), value)
}
END {
  print "#compdef zrhttp"
  print "local -a commands"
  printf "commands=(\n%s)\n", commands
  print "if ((CURRENT == 2)); then\n    _describe command commands\n    return\nfi"
  print "local command=$words[2]\nshift words\n((CURRENT--))"
  print "case $command in"
  for (command in arguments)
    printf "    %s)\n        _arguments%s\n        ;;\n", command, arguments[command]
  print "esac"
}
