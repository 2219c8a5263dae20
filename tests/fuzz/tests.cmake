# Fuzz targets of the kit's readers: fuzz/NAME_fuzzer.cpp with the inputs of fuzz/corpus/NAME. As tests they read
# those inputs; with VIRELOCE_FUZZ, which needs clang++, there are also programs that look for new ones:
#     cmake --preset fuzz && cmake --build --preset fuzz --target lef_fuzzer def_fuzzer
#     build/fuzz/bin/def_fuzzer -max_total_time=180 /tmp/new tests/fuzz/corpus/def
foreach(name lef def)
    add_executable(replay_${name} fuzz/${name}_fuzzer.cpp fuzz/replay.cpp)
    target_include_directories(replay_${name} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(replay_${name} PRIVATE vireloce_kit vireloce_warnings)
    add_test(NAME fuzz.${name} COMMAND replay_${name} ${CMAKE_CURRENT_SOURCE_DIR}/fuzz/corpus/${name})
    set_tests_properties(fuzz.${name} PROPERTIES TIMEOUT 300)
endforeach()

if(VIRELOCE_FUZZ)
    find_package(LibLZMA REQUIRED)
    find_package(ZLIB REQUIRED)
    # The readers are compiled once more, so that the fuzzer sees which of their branches an input takes.
    set(lefdef defReader lefReader macroReader orient parser scanner source statements)
    list(TRANSFORM lefdef REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/kit/formats/lefdef/\\1.cpp")
    set(rest base/files/readFile base/files/unpack base/finding base/text/decimal base/text/escape base/text/json base/text/text
        geometry/polygon)
    list(TRANSFORM rest REPLACE "(.+)" "${PROJECT_SOURCE_DIR}/kit/\\1.cpp")
    foreach(name lef def)
        add_executable(${name}_fuzzer fuzz/${name}_fuzzer.cpp ${lefdef} ${rest})
        target_include_directories(${name}_fuzzer PRIVATE ${CMAKE_CURRENT_SOURCE_DIR} ${PROJECT_SOURCE_DIR})
        target_link_libraries(${name}_fuzzer PRIVATE vireloce_warnings LibLZMA::LibLZMA ZLIB::ZLIB)
        target_compile_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer,address,undefined -fno-sanitize-recover=all)
        target_link_options(${name}_fuzzer PRIVATE -fsanitize=fuzzer,address,undefined)
    endforeach()
endif()
