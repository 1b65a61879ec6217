# Runs over the tree that is about to become a package: what was configured for the prefix of the
# build is moved to the package's, and texts are compressed as Debian wants them.

set(tree ${CPACK_TEMPORARY_INSTALL_DIRECTORY})
set(bindir ${CPACK_PACKAGING_INSTALL_PREFIX}/${CPACK_PLEMORA_BINDIR})

file(GLOB_RECURSE services ${tree}/*.service)
foreach(file IN LISTS services)
  file(READ ${file} text)
  string(REPLACE "=${CPACK_PLEMORA_BUILD_BINDIR}/" "=${bindir}/" text "${text}")
  file(WRITE ${file} "${text}")
endforeach()

find_program(gzip NAMES gzip REQUIRED)
file(GLOB_RECURSE texts ${tree}/*.1 ${tree}/changelog)
foreach(file IN LISTS texts)
  # Without names and times: the same sources give the same package.
  execute_process(COMMAND ${gzip} -9 --no-name --force ${file} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
