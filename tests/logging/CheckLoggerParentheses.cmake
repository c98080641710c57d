# Fails when a SmartHomeLogger is constructed with braces anywhere in SOURCE_DIR's code
# folders. Braces around two C strings select the part-list constructor, so an id meant for
# masking lands in the tag as it is; parentheses always select the constructor written.
# Recognised: SmartHomeLogger{...}, SmartHomeLogger name{...}, and name{...} in a
# constructor's initialiser list for a member declared "SmartHomeLogger name;".
#
#   cmake -DSOURCE_DIR=<repository> -P CheckLoggerParentheses.cmake
if(NOT SOURCE_DIR)
    message(FATAL_ERROR "SOURCE_DIR is not set")
endif()

set(globs)
foreach(folder src include port tools tests bench fuzz)
    list(APPEND globs "${SOURCE_DIR}/${folder}/*.h" "${SOURCE_DIR}/${folder}/*.cpp")
endforeach()
file(GLOB_RECURSE files ${globs})

set(name "[A-Za-z_][A-Za-z0-9_]*")
set(braced "(^|[^A-Za-z0-9_:])SmartHomeLogger[ \t]*(${name}[ \t]*)?{")

# Members holding a logger, whose initialisers are checked too.
set(members)
foreach(file IN LISTS files)
    file(STRINGS "${file}" lines REGEX "SmartHomeLogger[ \t]+${name}[ \t]*;")
    foreach(line IN LISTS lines)
        string(REGEX MATCH "SmartHomeLogger[ \t]+(${name})" found "${line}")
        list(APPEND members "${CMAKE_MATCH_1}")
    endforeach()
endforeach()
list(REMOVE_DUPLICATES members)
set(initialisers "")
foreach(member IN LISTS members)
    string(APPEND initialisers "|(^|[:,])[ \t]*${member}[ \t]*{")
endforeach()

set(offences 0)
foreach(file IN LISTS files)
    file(STRINGS "${file}" lines)
    foreach(line IN LISTS lines)
        string(REGEX REPLACE "//.*$" "" code "${line}")
        if(code MATCHES "(class|struct)[ \t]+SmartHomeLogger")
            continue()
        endif()
        if(code MATCHES "${braced}${initialisers}")
            file(RELATIVE_PATH shown "${SOURCE_DIR}" "${file}")
            message("${shown}: braced SmartHomeLogger construction: ${line}")
            math(EXPR offences "${offences} + 1")
        endif()
    endforeach()
endforeach()

if(offences GREATER 0)
    message(FATAL_ERROR "${offences} braced SmartHomeLogger construction(s): use parentheses")
endif()
list(LENGTH files count)
message("no braced SmartHomeLogger construction in ${count} files")
