include_guard(GLOBAL)

# Warnings for every target of ours; third-party headers come in as system headers.
add_library(lumero_warnings INTERFACE)
target_compile_options(lumero_warnings INTERFACE -Wall -Wextra -Wpedantic $<$<BOOL:${LUMERO_WERROR}>:-Werror>)

if(LUMERO_SANITIZE)
    add_compile_options(-fsanitize=${LUMERO_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${LUMERO_SANITIZE})
endif()
if(LUMERO_FUZZ)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "LUMERO_FUZZ needs clang (use the fuzz preset)")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined)
    add_link_options(-fsanitize=address,undefined)
endif()

set(LUMERO_TSAN_TARGETS "" CACHE INTERNAL "")
# One variable only: gtest_discover_tests flattens list-valued properties. The
# sanitizers fail a test on their own (-fno-sanitize-recover, TSan's exit code).
set(LUMERO_TEST_ENVIRONMENT "QT_QPA_PLATFORM=offscreen")

# lumero_add_library(name [QT] [STATIC] SOURCES ... [PUBLIC_LIBS ...] [PRIVATE_LIBS ...])
# A library with headers under include/<name>/ and the alias lumero::<name>. Shared, so
# that a host and the plug-ins it loads hold one copy of each library: one channel list
# type, one id counter, one assertion handler. STATIC for what only test binaries link.
function(lumero_add_library name)
    cmake_parse_arguments(ARG "QT;STATIC" "" "SOURCES;PUBLIC_LIBS;PRIVATE_LIBS" ${ARGN})
    if(ARG_STATIC OR NOT LUMERO_SHARED_LIBS)
        add_library(${name} STATIC ${ARG_SOURCES})
    else()
        add_library(${name} SHARED ${ARG_SOURCES})
    endif()
    add_library(lumero::${name} ALIAS ${name})
    target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
                                       PRIVATE ${CMAKE_CURRENT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_LIBS} PRIVATE lumero_warnings ${ARG_PRIVATE_LIBS})
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
endfunction()

# lumero_add_gtest(name SOURCES ... LIBS ... [QT] [TSAN] [LABELS ...])
# A GoogleTest binary run by ctest, one ctest entry per test case. QT gives it a
# main that makes a QCoreApplication (target lumero::uni_testing_qt). TSAN marks a
# test of concurrent code: the tsan preset builds and runs only those.
function(lumero_add_gtest name)
    cmake_parse_arguments(ARG "QT;TSAN" "" "SOURCES;LIBS;LABELS" ${ARGN})
    if(NOT LUMERO_BUILD_TESTS)
        return()
    endif()
    if(LUMERO_TSAN_ONLY AND NOT ARG_TSAN)
        return()
    endif()
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE lumero_warnings lumero::uni_testing ${ARG_LIBS})
    if(ARG_QT)
        # Qt tests get a main with a QCoreApplication (lumero::uni_testing_qt).
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE lumero::uni_testing_qt)
    else()
        target_link_libraries(${name} PRIVATE lumero::uni_testing_main)
    endif()
    set(labels ${ARG_LABELS})
    if(ARG_TSAN)
        list(APPEND labels tsan)
        set(LUMERO_TSAN_TARGETS ${LUMERO_TSAN_TARGETS} ${name} CACHE INTERNAL "")
    endif()
    include(GoogleTest)
    gtest_discover_tests(${name}
        DISCOVERY_MODE PRE_TEST
        WORKING_DIRECTORY ${CMAKE_CURRENT_SOURCE_DIR}
        PROPERTIES ENVIRONMENT "${LUMERO_TEST_ENVIRONMENT}" LABELS "${labels}")
endfunction()

# lumero_add_fuzz(name SOURCES ... LIBS ... CORPUS dir)
# The source defines LLVMFuzzerTestOneInput. Always built as a replay runner
# that feeds every file of the seed corpus to it under ctest; with LUMERO_FUZZ
# also as a libFuzzer binary.
function(lumero_add_fuzz name)
    cmake_parse_arguments(ARG "" "CORPUS" "SOURCES;LIBS" ${ARGN})
    if(LUMERO_TSAN_ONLY)
        return()
    endif()
    add_executable(${name}_replay ${ARG_SOURCES} ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
    target_link_libraries(${name}_replay PRIVATE lumero_warnings ${ARG_LIBS})
    add_test(NAME fuzz_replay.${name} COMMAND ${name}_replay ${ARG_CORPUS})
    set_tests_properties(fuzz_replay.${name} PROPERTIES ENVIRONMENT "${LUMERO_TEST_ENVIRONMENT}" LABELS fuzz)
    if(LUMERO_FUZZ)
        add_executable(${name}_fuzzer ${ARG_SOURCES})
        target_link_libraries(${name}_fuzzer PRIVATE ${ARG_LIBS})
        target_link_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer)
    endif()
endfunction()

# lumero_add_benchmark(name SOURCES ... LIBS ...): a Google Benchmark binary, not run by ctest.
function(lumero_add_benchmark name)
    cmake_parse_arguments(ARG "QT" "" "SOURCES;LIBS" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    target_link_libraries(${name} PRIVATE lumero_warnings benchmark::benchmark ${ARG_LIBS})
    if(ARG_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
    endif()
endfunction()
