# Creates the project's targets with the same warnings, sanitizers and include paths.

add_library(quorbel_options INTERFACE)
target_include_directories(quorbel_options INTERFACE ${PROJECT_SOURCE_DIR}/src)
target_compile_options(quorbel_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wdouble-promotion
    -Werror
    # GCC 12 reports false overlapping copies in string concatenation (GCC bug 105651).
    $<$<AND:$<CXX_COMPILER_ID:GNU>,$<VERSION_LESS:$<CXX_COMPILER_VERSION>,13>>:-Wno-restrict>
    # Disables contraction to fused multiply-add: results must be the same on every machine.
    -ffp-contract=off)
target_compile_definitions(quorbel_options INTERFACE QT_NO_KEYWORDS)
if(QUORBEL_SANITIZE)
    target_compile_options(quorbel_options INTERFACE
        -fsanitize=${QUORBEL_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer
        # GCC analyses the instrumented code and reports false positives in <regex>.
        -Wno-maybe-uninitialized)
    target_link_options(quorbel_options INTERFACE -fsanitize=${QUORBEL_SANITIZE})
endif()
if(QUORBEL_DISABLED_VECTOR_TARGETS)
    target_compile_definitions(quorbel_options INTERFACE
        QUORBEL_DISABLED_VECTOR_TARGETS=${QUORBEL_DISABLED_VECTOR_TARGETS})
endif()

# quorbel_library(NAME SOURCES file... LINKS target...): a static library of one layer folder.
# LINKS mirrors the layer table that scripts/check-layers checks.
function(quorbel_library name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINKS" ${ARGN})
    add_library(${name} STATIC ${ARG_SOURCES})
    target_link_libraries(${name} PUBLIC quorbel_options ${ARG_LINKS})
endfunction()

# quorbel_test(NAME SOURCES file... LINKS target... [TIMEOUT seconds] [LABELS label...]): one
# GoogleTest program; ctest runs each case separately.
function(quorbel_test name)
    cmake_parse_arguments(ARG "" "TIMEOUT" "SOURCES;LINKS;LABELS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE quorbel_options ${ARG_LINKS} quorbel_test_options GTest::gtest_main)
    target_precompile_headers(${name} REUSE_FROM quorbel_test_headers)
    if(NOT ARG_TIMEOUT)
        set(ARG_TIMEOUT 120)
    endif()
    set(properties TIMEOUT ${ARG_TIMEOUT})
    if(ARG_LABELS) # an empty value would consume the next property's name
        list(APPEND properties LABELS "${ARG_LABELS}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES ${properties})
endfunction()
