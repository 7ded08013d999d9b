# Writes the SQL files of SCRIPTS, in that order, into the C++ source OUTPUT: a function `FUNCTION` that HEADER declares
# and that returns a TYPE of name and text for each. "shop-objects.sql" has the name "shop".
set(entries "")
foreach(script IN LISTS SCRIPTS)
  get_filename_component(name ${script} NAME_WE)
  string(REGEX REPLACE "-.*" "" name ${name})
  file(READ ${script} text)
  string(APPEND entries "    {\"${name}\", R\"sql(${text})sql\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"${HEADER}\"

namespace SampleServer {

std::span<const ${TYPE}> ${FUNCTION}()
{
    static constexpr ${TYPE} scripts[] = {
${entries}    };
    return scripts;
}

} // namespace SampleServer
")
