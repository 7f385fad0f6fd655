# Reads the table of transitions, which is written for the compiler: gives the exported functions in their order and, for
# each, FUNCTION_NAME, the name that people see, if it has a record, and FUNCTION_SENTENCE. Texts may hold anything but
# quotation marks and backslashes.
function(vantle_read_table table functions)
    file(READ ${table} rows)
    # What would part a list or join its elements.
    string(ASCII 1 semicolon)
    string(ASCII 2 opening)
    string(ASCII 3 closing)
    string(REPLACE ";" "${semicolon}" rows "${rows}")
    string(REPLACE "[" "${opening}" rows "${rows}")
    string(REPLACE "]" "${closing}" rows "${rows}")
    string(REGEX REPLACE "\n *//[^\n]*" "\n" rows "\n${rows}")
    # A row may have several lines, and its texts parentheses.
    string(REGEX MATCHALL "\n(TRANSITION|CHECKED|STATEFUL|UNCATALOGUED)\\(([^()\"]|\"[^\"]*\")*\\)" rows "${rows}")
    set(found)
    foreach(row IN LISTS rows)
        # The names of functions are those that begin with Tr; of the texts the first is the name, the last the sentence.
        if(NOT row MATCHES
           "[(, \n](Tr[A-Za-z0-9]+), *[A-Za-z0-9]+, *[a-z]+, *\n? *(\"([^\"]*)\", *\n? *\"[^\"]*\", *\n? *)?\"([^\"]*)\"\\)$")
            message(FATAL_ERROR "A row of ${table} is of an unknown kind:${row}")
        endif()
        set(function ${CMAKE_MATCH_1})
        set(name "${CMAKE_MATCH_3}")
        set(sentence "${CMAKE_MATCH_4}")
        list(APPEND found ${function})
        foreach(text NAME SENTENCE)
            string(TOLOWER ${text} variable)
            string(REPLACE "${semicolon}" ";" ${variable} "${${variable}}")
            string(REPLACE "${opening}" "[" ${variable} "${${variable}}")
            string(REPLACE "${closing}" "]" ${variable} "${${variable}}")
            set(${function}_${text} "${${variable}}" PARENT_SCOPE)
        endforeach()
    endforeach()
    set(${functions} "${found}" PARENT_SCOPE)
endfunction()
