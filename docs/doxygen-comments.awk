# Lets Doxygen see the comments of a header as they are written here, in plain "//": an input
# filter that prints the header with them marked ("///", "///<"), line by line unless it adds some.
#
#   the comment at the top         describes the file, and its first class if that has none
#   a comment above a declaration  describes it, and the overloads that follow it at once
#   a comment above constants      is the heading of all of them, up to the next empty line
#   a comment behind one           describes it
#   // --- Heading ------           begins a group of members, with the comment below it, if any
#
# A comment with an empty line behind it, and one inside a function, is left alone. Lines indented
# by four more blanks are shown as code.

{ text[NR] = $0 }

END {
  for (i = 1; i <= NR; i++) {
    if (IsComment(text[i])) i = PrintComment(i)
    else PrintCode(text[i])
  }
}

function IsComment(line) { return line ~ /^[ \t]*\/\// }
function IsHeading(line) { return line ~ /^[ \t]*\/\/ --- .* -+$/ }
function IsConstant(line) {
  return line ~ /^[ \t]*(inline |static )?constexpr [A-Za-z_: ]+ [A-Za-z_0-9]+ = .*;/
}

# Text is text: nothing in it is a command, an entity or a tag.
function Escaped(words) {
  gsub(/\\/, "&&", words)
  gsub(/["@<>#%$]/, "\\\\&", words)
  gsub(/&/, "\\\\\\&", words)
  gsub(/--/, "\\\\&", words)
  return words
}

# The comment lines from first to last as Doxygen reads them.
function Marked(first, last,    j, words, isCode, result) {
  for (j = first; j <= last; j++) {
    words = text[j]
    sub(/^[ \t]*\/\/ ?/, "", words)
    if (words ~ /^    / && !isCode && (j == first || text[j - 1] ~ /\/\/$/)) {
      isCode = 1
      result = result "/// @code" (IsCppBlock(j, last) ? "{.cpp}" : "{.unparsed}") "\n"
    } else if (isCode && words !~ /^    /) {
      isCode = 0
      result = result "/// @endcode\n"
    }
    result = result "/// " (isCode ? substr(words, 5) : Escaped(words)) "\n"
  }
  return result (isCode ? "/// @endcode\n" : "")
}

function IsCppBlock(first, last,    j) {
  for (j = first; j <= last && text[j] ~ /\/\/     /; j++)
    if (text[j] ~ /;$/) return 1
  return 0
}

# Prints the block of comment lines that begins here; returns its last line.
function PrintComment(first,    last, next_, heading) {
  last = first
  while (!IsHeading(text[first]) && IsComment(text[last + 1]) && !IsHeading(text[last + 1])) last++
  next_ = text[last + 1]
  if (bodies > 0) {
    while (first <= last) print text[first++]
  } else if (first == 1) {
    fileComment = Marked(first, last)
    printf "/// @file\n%s", fileComment
  } else if (IsHeading(text[first])) {
    last = PrintHeading(first)
  } else if (next_ == "") {
    while (first <= last) print text[first++]
  } else if (IsConstant(next_) && IsConstant(text[last + 2]) && text[last + 2] !~ /\/\//) {
    PrintConstants(first, last)
  } else {
    comment = Marked(first, last)
    printf "%s", comment
    isFresh = 1
  }
  return last
}

# The heading's own text goes on behind an empty comment line.
function PrintHeading(first,    words, last) {
  words = text[first]
  sub(/^[ \t]*\/\/ --- /, "", words)
  sub(/ -+$/, "", words)
  CloseGroup()
  printf "/// @name %s\n", words
  last = first
  if (IsComment(text[first + 1]) && (text[first + 1] ~ /\/\/$/ || IsDetached(first + 1))) {
    while (IsComment(text[last + 1])) last++
    printf "%s%s", (text[first + 1] ~ /\/\/$/ ? "" : "///\n"), Marked(first + 1, last)
  }
  print "/// @{"
  isGroupOpen = 1
  return last
}

# A comment that an empty line follows.
function IsDetached(line) {
  while (IsComment(text[line])) line++
  return text[line] == ""
}

function PrintConstants(first, last,    words) {
  words = Marked(first, last)
  sub(/^\/\/\/ /, "/// @name ", words)
  CloseGroup()
  printf "%s/// @{\n", words
  isGroupOpen = isConstants = 1
}

function CloseGroup() {
  if (isGroupOpen) print "/// @}"
  isGroupOpen = isConstants = 0
}

function PrintCode(line,    code, name) {
  code = WithoutStrings(line)
  if (line == "") {
    lastName = comment = ""
    if (isConstants) CloseGroup()
  }
  if (bodies == 0) {
    if (isGroupOpen && code ~ /^(};|private:|protected:|ZRHB_EXPORT_END)/) CloseGroup()
    if (statement == "") {
      DescribeFirstClass(line)
      name = FunctionName(code)
      if (!isFresh && name != "" && name == lastName && !IsCopy(code)) printf "%s", comment
      if (name != "") lastName = name
      else if (isFresh) lastName = ""
      if (!isFresh && name == "") comment = ""
      isFresh = 0
    }
    if (code ~ /[^ ] +\/\/ / && code !~ /^[ \t]*}/ && code !~ /^#/) line = MarkTrailing(line, code)
  }
  print line
  Follow(code)
}

function MarkTrailing(line, code,    at) {
  at = index(code, "// ")
  return substr(line, 1, at - 1) "///< " Escaped(substr(line, at + 3))
}

function DescribeFirstClass(line) {
  if (isClassSeen || line !~ /^(class|struct) [A-Za-z_]+( final)?( :| {|$)/) return
  isClassSeen = 1
  if (!isFresh && !isTemplate) printf "%s", fileComment
}

# Of a declaration that begins here, without the digits at its end; empty for anything else.
function FunctionName(code) {
  if (code !~ /\(/ || code ~ /^[ \t]*(using|typedef|struct|class|enum|#)/) return ""
  sub(/\(.*/, "", code)
  if (code !~ /[ *&~][A-Za-z_0-9]+$/) return ""
  sub(/.*[^A-Za-z_0-9]/, "", code)
  sub(/[0-9]+$/, "", code)
  return code
}

function IsCopy(code) { return code ~ /\((const [A-Za-z_]+&|[A-Za-z_]+&&) other\)/ }

# String and character literals become blanks of the same length.
function WithoutStrings(line,    blanks) {
  while (match(line, /"([^"\\]|\\.)*"|'([^'\\]|\\.)'/)) {
    if (index(line, "//") && index(line, "//") < RSTART) break
    blanks = sprintf("%" RLENGTH "s", "")
    line = substr(line, 1, RSTART - 1) blanks substr(line, RSTART + RLENGTH)
  }
  return line
}

# Counts the braces that are bodies or initialisers, not scopes of declarations.
function Follow(code,    j, ch) {
  sub(/\/\/.*/, "", code)
  if (code ~ /^#/) return
  if (code ~ /^ZRHB_EXPORT_/ || code ~ /^[ \t]*(public|protected|private):/) code = ""
  for (j = 1; j <= length(code); j++) {
    ch = substr(code, j, 1)
    if (ch == "{") {
      depth++
      isScope[depth] = bodies == 0 && IsScope(statement)
      if (!isScope[depth]) bodies++
      else statement = ""
    } else if (ch == "}") {
      if (!isScope[depth] && --bodies == 0 && code ~ /}[ \t]*$/) statement = ""
      if (isScope[depth]) statement = ""
      depth--
    } else if (bodies == 0) {
      statement = statement ch
      if (ch == ";" || (ch == "," && depth > 0 && isScope[depth] && isEnum[depth])) statement = ""
    }
    if (ch == "{") isEnum[depth] = isScope[depth] && opened ~ /enum/
  }
  gsub(/^[ \t]+/, "", statement)
  isTemplate = statement ~ /^template/
}

function IsScope(words) {
  opened = words
  return words ~ /(^|[ \t])(class|struct|enum|namespace|union)([ \t]|$)/ && words !~ /\(/
}
