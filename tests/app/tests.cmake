vireloce_test(app app/driver_test.cpp app/parameters_test.cpp app/place_test.cpp app/program_test.cpp
    app/timer_test.cpp)
target_compile_definitions(test_app PRIVATE VIRELOCE_PROGRAM="$<TARGET_FILE:vireloce>"
    VIRELOCE_EXAMPLES="${PROJECT_SOURCE_DIR}/examples")
add_dependencies(test_app vireloce)
