# Run as a script: fails when a source of the program includes through a parent folder.
foreach(folder IN ITEMS VeltoKit VeltoMKV cli)
  file(GLOB_RECURSE files "${VELTO_SOURCE_DIR}/${folder}/*.h" "${VELTO_SOURCE_DIR}/${folder}/*.cpp")
  foreach(file IN LISTS files)
    file(STRINGS "${file}" escapes REGEX "^[ \t]*#[ \t]*include[ \t]*[\"<][^\">]*\\.\\./")
    if(escapes)
      file(RELATIVE_PATH shown "${VELTO_SOURCE_DIR}" "${file}")
      message(FATAL_ERROR "${shown}: ${escapes}\nIncluí por la ruta desde la raíz "
                          "(\"VeltoKit/carpeta/Archivo.h\"), nunca con \"../\".")
    endif()
  endforeach()
endforeach()
