# Run by `cmake --install` after the headers were copied: they include each other as "vireloce/db/pin.h" then, not as
# "db/pin.h". Headers that were not copied again stay as they are.
cmake_path(ABSOLUTE_PATH include_dir BASE_DIRECTORY "${CMAKE_INSTALL_PREFIX}")
file(GLOB_RECURSE headers "$ENV{DESTDIR}${include_dir}/vireloce/*.h")
foreach(header IN LISTS headers)
    file(READ "${header}" text)
    string(REPLACE "#include \"" "#include \"vireloce/" text "${text}")
    string(REPLACE "\"vireloce/vireloce/" "\"vireloce/" text "${text}")
    file(WRITE "${header}" "${text}")
endforeach()
