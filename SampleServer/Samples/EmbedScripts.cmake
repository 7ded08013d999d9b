# Writes the SQL files of SCRIPTS into the C++ source OUTPUT. "shop-objects.sql" is a script of the database "shop".
set(entries "")
foreach(script IN LISTS SCRIPTS)
  get_filename_component(name ${script} NAME_WE)
  string(REGEX REPLACE "-.*" "" database ${name})
  file(READ ${script} text)
  string(APPEND entries "    {\"${database}\", R\"sql(${text})sql\"},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"Engine/SampleDatabase.h\"

namespace SampleServer {

std::span<const SampleScript> sampleScripts()
{
    static constexpr SampleScript scripts[] = {
${entries}    };
    return scripts;
}

} // namespace SampleServer
")
