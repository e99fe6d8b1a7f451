# Writes the SQL files as C++ raw strings.
set(text "#include \"store/embedded_data.h\"\n\nnamespace store {\n")
foreach(name schema nengo master)
  file(READ ${DATA}/${name}.sql sql)
  string(APPEND text "const char* const embedded_${name} = R\"sql~(${sql})sql~\";\n")
endforeach()
string(APPEND text "} // namespace store\n")
file(WRITE ${OUT} "${text}")
