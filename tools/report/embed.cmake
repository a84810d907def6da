# Writes the text files of the report into a C++ source, so that the tool carries them along.
# Usage: cmake -DOUTPUT=assets.cpp -P embed.cmake
set(scripts measures summary table stages app)  # in the order in which they are run
set(source "#include \"report/assets.h\"\n\nnamespace quofp::assets {\n")

function(embed name)
  set(text "")
  foreach(file ${ARGN})
    file(READ ${CMAKE_CURRENT_LIST_DIR}/${file} content)
    string(APPEND text "${content}")
  endforeach()
  string(APPEND source "\nconst std::string_view ${name} = R\"asset(${text})asset\";\n")
  set(source "${source}" PARENT_SCOPE)
endfunction()

list(TRANSFORM scripts APPEND .js)
embed(kPage report.html.in)
embed(kStyle report.css)
embed(kScript ${scripts})
file(WRITE ${OUTPUT} "${source}\n}  // namespace quofp::assets\n")
