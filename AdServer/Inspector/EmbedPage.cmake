# Joins HTML, STYLE and SCRIPT into the file PAGE, and writes OUTPUT, the source that holds it.
file(READ "${HTML}" html)
file(READ "${STYLE}" style)
file(READ "${SCRIPT}" script)
# A script ends at the first such tag, also within a text.
string(REPLACE "</script" "<\\/script" script "${script}")
string(REPLACE "/*STYLE*/" "${style}" html "${html}")
string(REPLACE "/*SCRIPT*/" "${script}" html "${html}")
file(WRITE "${PAGE}" "${html}")

# A literal has its limits: the text comes in parts.
set(source "#include \"InspectorPage.h\"\n\nconst std::string adserver::inspectorPage =\n    std::string()")
string(LENGTH "${html}" length)
set(position 0)
while(position LESS length)
  string(SUBSTRING "${html}" ${position} 8000 part)
  string(APPEND source "\n    + R\"=+=(${part})=+=\"")
  math(EXPR position "${position} + 8000")
endwhile()
file(WRITE "${OUTPUT}" "${source};\n")
