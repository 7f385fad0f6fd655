# Writes what the program is built from, if it differs from what is there:
# cmake -D OUTPUT=built_from.h -D VERSION=1.0.0 -D SOURCE=folder -P built_from.cmake
set(commit "")
if(EXISTS ${SOURCE}/.git)  # not a checkout that this one happens to lie in
    execute_process(COMMAND git -C ${SOURCE} describe --always --dirty --abbrev=12 --exclude=*
                    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
endif()
file(CONFIGURE OUTPUT ${OUTPUT} CONTENT "#define BUILT_VERSION \"${VERSION}\"\n#define BUILT_COMMIT \"${commit}\"\n")
