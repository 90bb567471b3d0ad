# Completion for bash: commands, options, the values that an option is limited to, files.
BEGIN { FS = "\t" }
$2 == "Subcommands" { commands = commands " " $3 }
$2 == "Options" || $2 == "Positionals" {
  name = $3
  sub(/ .*/, "", name)
  count = split(name, names, ",")
  values = ""
  if (match($3, /\{[^}]*\}/)) {
    values = substr($3, RSTART + 1, RLENGTH - 2)
    gsub(/,/, " ", values)
  }
  if ($2 == "Positionals") {
    if (values != "") words[$1] = words[$1] " " values
    next
  }
  for (i = 1; i <= count; i++) {
    options[$1] = options[$1] " " names[i]
    if (values != "") limited[$1 " " names[i]] = values
    else if ($3 ~ / (TEXT|MS|NAME|INT|UINT)/ && $3 !~ /FILE|PATH/) free[$1 " " names[i]] = 1
  }
}
END {
  print "# bash completion for zrhttp"
  print "_zrhttp() {"
  print "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}"
  print "    local command=${COMP_WORDS[1]}"
  print "    COMPREPLY=()"
  print "    if ((COMP_CWORD == 1)); then"
  printf "        mapfile -t COMPREPLY < <(compgen -W \"%s%s\" -- \"$word\")\n", commands, options[""]
  print "        return"
  print "    fi"
  print "    case \"$command $before\" in"
  fflush()
  for (key in limited)
    printf "        \"%s\") mapfile -t COMPREPLY < <(compgen -W \"%s\" -- \"$word\"); return ;;\n",
           key, limited[key] | "sort"
  close("sort")
  for (key in free) printf "        \"%s\") return ;;\n", key | "sort"
  close("sort")
  print "    esac"
  print "    local words="
  print "    case $command in"
  fflush()
  for (command in options)
    if (command != "")
      printf "        %s) words=\"%s%s\" ;;\n", command, options[command], words[command] | "sort"
  close("sort")
  print "    esac"
  print "    if [[ $word == -* || -z $word ]]; then"
  print "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")"
  print "        [[ $word == -* ]] && return"
  print "    fi"
  print "    local file"
  print "    while IFS= read -r file; do COMPREPLY+=(\"$file\"); done < <(compgen -f -- \"$word\")"
  print "}"
  print "complete -o filenames -F _zrhttp zrhttp"
}
