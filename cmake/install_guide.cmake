# Included when the guide is installed: docs/first-program.md, the pages of the families and the viewer, and their
# pictures. Their links lead to where headers and examples are installed.
#   source, work                               the project's folder, and one for what is made
#   include_folder, data_folder, docs_folder   where things are installed, in the prefix
file(RELATIVE_PATH to_prefix /${docs_folder} /)
foreach(page docs/first-program.md docs/families/*.md viewer/README.md)
  file(GLOB paths ${source}/${page})
  foreach(path IN LISTS paths)
    file(RELATIVE_PATH name ${source} ${path})
    string(REPLACE docs/ "" name ${name})
    string(REPLACE viewer/README.md viewer.md name ${name})
    set(up "") # from the page to docs_folder
    if(name MATCHES "/")
      set(up ../)
    endif()
    file(READ ${path} text)
    foreach(from ../../ ../) # from the page to the project's folder
      string(REPLACE "](${from}include/" "](${up}${to_prefix}${include_folder}/" text "${text}")
      string(REPLACE "](${from}examples/" "](${up}${to_prefix}${data_folder}/examples/" text "${text}")
      string(REPLACE "](${from}viewer/README.md" "](${up}viewer.md" text "${text}")
      string(REPLACE "](${from}docs/" "](${up}" text "${text}")
    endforeach()
    file(WRITE ${work}/guide/${name} "${text}")
    string(REGEX MATCHALL "images/[a-z_]+\\.png" found "${text}")
    list(APPEND pictures ${found})
  endforeach()
endforeach()
list(REMOVE_DUPLICATES pictures)
list(TRANSFORM pictures PREPEND ${source}/docs/)
file(INSTALL ${work}/guide/ DESTINATION ${CMAKE_INSTALL_PREFIX}/${docs_folder})
file(INSTALL ${pictures} DESTINATION ${CMAKE_INSTALL_PREFIX}/${docs_folder}/images)
