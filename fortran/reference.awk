# SPDX-License-Identifier: MIT
# awk -v form=FORM -f reference.awk libqwport.def docs/*.md qwport_*.f90
# Makes of the modules' interfaces docs/reference.md (FORM page), which links to the sections of the pages, or
# include/qwport.inc, the declarations for programs without the module (FORM include).

FILENAME ~ /\.def$/ { if (/^    /) exported[spoken($1)] = 1; next }

# The section of a page that tells of a routine is the first one with a table that names it, or else that names it.
FILENAME ~ /\.md$/ {
  if (FNR == 1) { file = FILENAME; sub(/.*\//, "", file); in_code = 0 }
  if (/^```/) in_code = !in_code
  if (in_code) next
  if (/^#+ /) section = anchor($0)
  else note_names($0, /^\|/)
  next
}

FNR == 1 {
  page = FILENAME
  sub(/.*qwport_/, "", page)
  sub(/(_(files|processes|structures|system))?\.f90$/, "", page)
  if (page == "") page = FILENAME ~ /processes/ ? "processes" : "files"
  if (page == "errors") page = "conventions"
  if (page == "core") page = "core-runtime"
  comment = generic = name = ""
  in_comment = nested = is_abstract = 0
  exported["errsns"] = exported["flushqq"] = exported["commitqq"] = 1
}

# Comments: a block tells of the procedures behind it, up to the next one; above a blank line it tells of none.
/^ *! / && name == "" {
  if (!in_comment) comment = ""
  sub(/^ *! /, "")
  comment = comment (in_comment ? " " : "") $0
  in_comment = 1
  next
}
/^$/ && in_comment { comment = "" }
{ in_comment = 0 }

# Interfaces in a procedure are of no interest.
name != "" && $1 == "interface" { nested = 1 }
$1 == "end" && $2 == "interface" { nested = is_abstract = 0; if (name == "") generic = ""; next }
nested { next }
/^  abstract interface/ { is_abstract = 1 }
/^  interface [a-z]/ { generic = $2; told[generic] = comment }
generic != "" && $1 == "procedure" { for (i = 2; i <= NF; i++) { sub(/,/, "", $i); generic_of[$i] = generic } next }

# A heading, with its continuation lines.
/^ +((pure|elemental) )?(function|subroutine) / {
  heading = $0
  while (sub(/& *$/, "", heading)) { getline; sub(/^ +/, ""); heading = heading $0 }
  sub(/^ +/, "", heading)
  sub(/ bind.*/, "", heading)
  name = heading
  sub(/^.*(function|subroutine) /, "", name)
  arguments = name
  sub(/\(.*/, "", name)
  sub(/^[^(]*\( */, "", arguments)
  sub(/ *\).*/, "", arguments)
  result = heading
  if (!sub(/.*result\(/, "", result)) result = ")"
  sub(/\).*/, "", result)
  sub(/ *\) *result.*/, ")", heading)
  type = declarations = ""
  next
}
name != "" && / :: / && !/^ *(use|!)/ { declare($0) }
$1 == "end" && ($2 == "function" || $2 == "subroutine") { add(); name = ""; next }

/^  procedure\([a-z_]+\) :: / {
  of = $1
  gsub(/procedure\(|\)/, "", of)
  text = pattern[of]
  sub(of, $3, text)
  keep($3, text, "")
}

END { if (form == "page") write_page(); else write_include() }

# $$MSPORTLIB$RANDOM is MSPORTLIB_RANDOM in Fortran.
function spoken(word) {
  gsub(/^"\$*|"/, "", word)
  gsub(/\$/, "_", word)
  return tolower(word)
}

# The name by which a link reaches a heading.
function anchor(heading) {
  heading = tolower(heading)
  sub(/^#+ /, "", heading)
  gsub(/[^a-z0-9 _-]/, "", heading)
  gsub(/ /, "-", heading)
  return heading
}

# The names in a page's line.
function note_names(line, is_table, words, i, count_of_words) {
  gsub(/\$\$/, "", line)
  gsub(/[$]/, "_", line)
  count_of_words = split(line, words, /[^A-Z0-9_]+/)
  for (i = 1; i <= count_of_words; i++) {
    key = file " " tolower(words[i])
    if (is_table && !(key in tabled)) tabled[key] = section
    if (!(key in named)) named[key] = section
  }
}

# A declaration of the result, or of arguments; others are those of local variables.
function declare(line, at, first) {
  sub(/^ +/, "", line)
  at = index(line, " :: ")
  first = substr(line, at + 4)
  sub(/[ ,(].*/, "", first)
  if (first == result) type = line
  else if (index(", " arguments ",", ", " first ",")) declarations = declarations "  " line "\n"
}

function add(routine, text, kind) {
  kind = type
  sub(/ :: .*/, "", kind)
  routine = generic != "" ? generic : name in generic_of ? generic_of[name] : name
  sub("(function|subroutine) " name, "& ", heading)
  sub(name " \\(", routine "(", heading)
  text = heading "\n" declarations
  if (type ~ /:: .*\(|,/) text = heading " result(" result ")\n" declarations "  " type "\n"
  else if (type != "") sub(/function/, kind " function", text)
  if (is_abstract) pattern[name] = text
  else if (routine in exported) keep(routine, text, kind)
}

function keep(routine, text, kind) {
  if (!(routine in signature)) names[++count] = routine
  else text = signature[routine] "\n" text
  signature[routine] = text
  result_type[routine] = kind
  page_of[routine] = page
  summary[routine] = routine in told && told[routine] != "" ? told[routine] : comment
}

function sort_names(i, j, held) {
  for (i = 2; i <= count; i++) {
    held = names[i]
    for (j = i; j > 1 && names[j - 1] > held; j--) names[j] = names[j - 1]
    names[j] = held
  }
}

function first_sentence(text, end) {
  sub(/:  .*/, ".", text)
  end = match(text, /\. ([A-Z]|[a-z0-9_, ]+:|-?[0-9])/)
  return end ? substr(text, 1, end) : text
}

function link(routine, key) {
  key = page_of[routine] ".md " routine
  if (!(key in named)) { print "no page tells of " routine > "/dev/stderr"; exit 1 }
  return page_of[routine] ".md#" (key in tabled ? tabled[key] : named[key])
}

function write_page(i, routine) {
  sort_names()
  print "# Reference\n"
  print "Every routine, as `use qwport` declares it; the heading links to the page that tells all. The build writes this"
  print "from the modules in `fortran/`."
  for (i = 1; i <= count; i++) {
    routine = names[i]
    print "\n## [" toupper(routine) "](" link(routine) ")\n"
    print first_sentence(summary[routine]) "\n\n```fortran\n" signature[routine] "```"
  }
}

# One name a line, of at most 72 columns, so that a line can be taken out and both source forms read it.
function write_include(i, routine, kind) {
  sort_names()
  print "! SPDX-License-Identifier: MIT"
  print "! qwport for programs without its module: INCLUDE 'qwport.inc' behind"
  print "! IMPLICIT, in every program unit that calls a routine. A name that the"
  print "! program has for something else is one line to take out of a copy."
  print "! Not here: ABORT, EXIT, FLUSH and DIM, which GNU Fortran knows, and the"
  print "! four routines that need the module (NLSENUM..., MBCONVERT...)."
  for (i = 1; i <= count; i++) {
    routine = names[i]
    if (routine ~ /^(abort|exit|flush|dim|nlsenum.*|mbconvert.*)$/) continue
    kind = result_type[routine] == "" ? "" : result_type[routine] ", "
    print toupper("      " kind "external :: " routine)
  }
}
