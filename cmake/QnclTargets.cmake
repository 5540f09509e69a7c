# Helpers shared by every target of the project.

# Our own code builds with every warning, and warnings are errors.
function(qncl_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Werror)
endfunction()

# A shared library of the product: "libNAME.so" on Linux, "NAME.dll" with its import library on
# Windows. Flat __stdcall functions are exported under their undecorated names as well as the
# decorated ones the import library links against (--kill-at would strip the decoration from
# the import library too, and callers could no longer link).
function(qncl_shared_library target)
    add_library(${target} SHARED ${ARGN})
    qncl_warnings(${target})
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "" IMPORT_PREFIX "" IMPORT_SUFFIX ".lib")
        target_link_options(${target} PRIVATE -Wl,--add-stdcall-alias)
    endif()
endfunction()

# Test programs. On Linux every test of a program is one CTest entry; in a Windows build run
# under Wine, the whole program is one entry, since each Wine process start has a cost.
# A build that runs only one kind (the sanitizer builds) leaves the other out with
# QNCL_UNIT_TESTS or QNCL_STRESS_TESTS; callers test if(TARGET NAME) before adding to one.
# qncl_test_program(NAME SOURCES ... [LIBS ...] [LABELS ...])
function(qncl_test_program name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LIBS;LABELS" ${ARGN})
    if(NOT ARG_LABELS)
        set(ARG_LABELS unit)
    endif()
    if(("unit" IN_LIST ARG_LABELS AND NOT QNCL_UNIT_TESTS)
       OR ("stress" IN_LIST ARG_LABELS AND NOT QNCL_STRESS_TESTS))
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    qncl_warnings(${name})
    target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main)
    if(CMAKE_CROSSCOMPILING)
        add_test(NAME ${name} COMMAND ${name})
        set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS};wine" TIMEOUT 900)
    else()
        gtest_discover_tests(${name} PROPERTIES LABELS "${ARG_LABELS}" TIMEOUT 300
                             DISCOVERY_TIMEOUT 60)
    endif()
endfunction()
