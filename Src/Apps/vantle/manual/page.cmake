# Writes a page of the manual from what the program says of itself:
# cmake -D PROGRAM=vantle -D "COMMAND=render" -D VERSION=1.0.0 -D OUTPUT=vantle-render.1 -D MORE=more.h2m -P page.cmake
execute_process(COMMAND ${PROGRAM} ${COMMAND} --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
string(REGEX MATCH "^[^\n]+" purpose "${help}")
# One that is named like the page, because what is written there is of a program.
cmake_path(GET OUTPUT STEM page)
set(named ${OUTPUT}.of/${page})
file(WRITE ${named} "#!/bin/sh\nexec '${PROGRAM}' ${COMMAND} \"$@\"\n")
file(CHMOD ${named} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
execute_process(COMMAND ${HELP2MAN} --no-info --name=${purpose} --version-string=${VERSION} --include=${MORE}
                        --manual=vantle --source=vantle\ ${VERSION} --output=${OUTPUT} ${named}
                COMMAND_ERROR_IS_FATAL ANY)
file(REMOVE_RECURSE ${OUTPUT}.of)
execute_process(COMMAND gzip --force --best --no-name ${OUTPUT} COMMAND_ERROR_IS_FATAL ANY)
