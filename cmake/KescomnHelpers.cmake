# Each subsystem folder under src/, tests/, bench/ and fuzz/ is read whole, so
# that a new file joins the build without touching a shared list.

# Every .cpp of the calling folder joins the library.
function(kescomn_add_folder_sources)
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
    target_sources(kescomn64_internal PRIVATE ${sources})
endfunction()

# Every <name>_test.cpp of the calling folder is one GoogleTest executable.
function(kescomn_add_folder_tests)
    file(GLOB tests CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
    foreach(source ${tests})
        get_filename_component(name ${source} NAME_WE)
        add_executable(${name} ${source})
        target_link_libraries(${name} PRIVATE kescomn_testsupport ${ARGN})
        gtest_discover_tests(${name} DISCOVERY_TIMEOUT 120 PROPERTIES TIMEOUT 900)
    endforeach()
endfunction()

# Every <name>_bench.cpp of the calling folder is one Google Benchmark executable.
function(kescomn_add_folder_benches)
    file(GLOB benches CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_bench.cpp)
    foreach(source ${benches})
        get_filename_component(name ${source} NAME_WE)
        add_executable(${name} ${source})
        target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/bench)
        target_link_libraries(${name} PRIVATE kescomn64_internal benchmark::benchmark ${ARGN})
    endforeach()
endfunction()

# Every <name>_fuzz.cpp of the calling folder is a libFuzzer target (fuzz
# build) whose seed corpus <name>_corpus/ also replays as an ordinary test.
function(kescomn_add_folder_fuzzers)
    file(GLOB fuzzers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_fuzz.cpp)
    foreach(source ${fuzzers})
        get_filename_component(name ${source} NAME_WE)
        string(REGEX REPLACE "_fuzz$" "" base ${name})
        set(corpus ${CMAKE_CURRENT_SOURCE_DIR}/${base}_corpus)
        if(KESCOMN_FUZZ)
            add_executable(${name} ${source})
            target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
            target_link_options(${name} PRIVATE -fsanitize=fuzzer)
            target_link_libraries(${name} PRIVATE kescomn64_internal ${ARGN})
        endif()
        if(KESCOMN_TESTS)
            add_executable(${name}_replay ${source} ${PROJECT_SOURCE_DIR}/fuzz/replay.cpp)
            target_link_libraries(${name}_replay PRIVATE kescomn64_internal ${ARGN})
            add_test(NAME ${name}_corpus COMMAND ${name}_replay ${corpus})
        endif()
    endforeach()
endfunction()
