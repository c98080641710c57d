# Turns a metric id table file (see data/metric-ids.txt for the format) into the C++
# lookup tables of VantorMetricsHelper. Script mode:
#   cmake -DTABLE_FILE=<table> -DOUTPUT_FILE=<generated .inc> -P GenerateMetricIdTables.cmake
# Any malformed line stops with "<table>:<line>: <reason>" and a non-zero exit status, which
# fails the build step that runs this script.
cmake_minimum_required(VERSION 3.25)

if(NOT DEFINED TABLE_FILE OR NOT DEFINED OUTPUT_FILE)
    message(FATAL_ERROR "GenerateMetricIdTables: TABLE_FILE and OUTPUT_FILE must be set")
endif()
if(NOT EXISTS "${TABLE_FILE}")
    message(FATAL_ERROR "${TABLE_FILE}: metric id table file not found")
endif()

set(name_pattern "^[A-Za-z0-9_.-]+$")
set(group_id_pattern "^[a-z0-9][a-z0-9][a-z0-9][a-z0-9][a-z0-9][a-z0-9][a-z0-9][a-z0-9]$")
set(schema_id_pattern "^[a-z0-9][a-z0-9][a-z0-9][a-z0-9]/2/0[0-9][0-9][0-9][0-9][0-9][0-9][0-9]$")

# One unwrapped "file:line: reason" line (the form compilers use, so that editors can jump
# to it), then the failure itself.
function(table_error line_number reason)
    message(NOTICE "${TABLE_FILE}:${line_number}: ${reason}")
    message(FATAL_ERROR "malformed metric id table ${TABLE_FILE}")
endfunction()

function(check_id line_number kind id)
    if(kind MATCHES "group")
        if(NOT id MATCHES "${group_id_pattern}")
            table_error(${line_number}
                "group id '${id}' is not 8 lower-case letters or digits")
        endif()
    elseif(NOT id MATCHES "${schema_id_pattern}")
        table_error(${line_number}
            "schema id '${id}' is not 4 lower-case letters or digits, '/2/0' and 7 digits")
    endif()
endfunction()

# Split into lines without losing line numbers: empty lines must stay list elements, and
# ';', '[', ']' and '\' would split or join list elements, so they are swapped for a marker
# first (none of them may appear outside a comment).
file(READ "${TABLE_FILE}" content)
string(ASCII 1 list_marker)
foreach(special ";" "[" "]" "\\")
    string(REPLACE "${special}" "${list_marker}" content "${content}")
endforeach()
string(REPLACE "\r" "" content "${content}")
string(REPLACE "\n" ";" lines "${content}")

set(group_rows "")
set(schema_rows "")
set(group_names "")
set(schema_names "")
set(fallback_group "")
set(fallback_schema "")
set(line_number 0)
foreach(raw_line IN LISTS lines)
    math(EXPR line_number "${line_number} + 1")
    string(REGEX REPLACE "#.*$" "" line "${raw_line}")
    if(line MATCHES "${list_marker}")
        table_error(${line_number} "unexpected character (one of ; [ ] \\)")
    endif()
    string(STRIP "${line}" line)
    if(line STREQUAL "")
        continue()
    endif()
    string(REGEX REPLACE "[ \t]+" ";" fields "${line}")
    list(LENGTH fields field_count)
    list(GET fields 0 kind)
    if(kind STREQUAL "group" OR kind STREQUAL "schema")
        if(NOT field_count EQUAL 3)
            table_error(${line_number} "'${kind}' takes a name and an id: '${line}'")
        endif()
        list(GET fields 1 name)
        list(GET fields 2 id)
        if(NOT name MATCHES "${name_pattern}")
            table_error(${line_number}
                "name '${name}' may only hold letters, digits, '_', '.' and '-'")
        endif()
        check_id(${line_number} ${kind} "${id}")
        if(name IN_LIST ${kind}_names)
            table_error(${line_number} "${kind} '${name}' is listed twice")
        endif()
        list(APPEND ${kind}_names "${name}")
        string(APPEND ${kind}_rows "    {\"${name}\", \"${id}\"},\n")
    elseif(kind STREQUAL "fallback-group" OR kind STREQUAL "fallback-schema")
        if(NOT field_count EQUAL 2)
            table_error(${line_number} "'${kind}' takes exactly one id: '${line}'")
        endif()
        list(GET fields 1 id)
        check_id(${line_number} ${kind} "${id}")
        string(REPLACE "-" "_" variable "${kind}")
        if(NOT ${variable} STREQUAL "")
            table_error(${line_number} "'${kind}' is given twice")
        endif()
        set(${variable} "${id}")
    else()
        table_error(${line_number}
            "unknown entry '${kind}' (expected group, schema, fallback-group or fallback-schema)")
    endif()
endforeach()

foreach(kind IN ITEMS group schema)
    if(fallback_${kind} STREQUAL "")
        message(NOTICE "${TABLE_FILE}: no 'fallback-${kind}' line")
        message(FATAL_ERROR "malformed metric id table ${TABLE_FILE}")
    endif()
endforeach()

list(LENGTH group_names group_count)
list(LENGTH schema_names schema_count)
set(generated "// Generated from ${TABLE_FILE} by GenerateMetricIdTables.cmake; do not edit.
constexpr std::array<MetricIdRow, ${group_count}> kGroupRows{{
${group_rows}}};
constexpr std::array<MetricIdRow, ${schema_count}> kSchemaRows{{
${schema_rows}}};
constexpr const char* kFallbackGroupId = \"${fallback_group}\";
constexpr const char* kFallbackSchemaId = \"${fallback_schema}\";
")
# Rewrite only on change, so that an unchanged table does not rebuild its users.
if(EXISTS "${OUTPUT_FILE}")
    file(READ "${OUTPUT_FILE}" previous)
    if(previous STREQUAL generated)
        return()
    endif()
endif()
file(WRITE "${OUTPUT_FILE}" "${generated}")
