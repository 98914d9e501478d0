# Checks a copy of the folder FROM, TO, in which FILE stands in the place of NAME.
file(REMOVE_RECURSE "${TO}")
file(GLOB libraries "${FROM}/*")
file(COPY ${libraries} DESTINATION "${TO}")
configure_file("${FILE}" "${TO}/${NAME}" COPYONLY)
execute_process(COMMAND "${PYTHON}" "${CHECK}" "${TO}" COMMAND_ERROR_IS_FATAL ANY)
