# Compiling the sources of a folder as one, so that what they include and instantiate is compiled once.

# Puts a target's sources into groups by their folders. They take effect where the property UNITY_BUILD is on.
function(vireloce_group_by_folder target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
    get_target_property(sources ${target} SOURCES)
    foreach(source IN LISTS sources)
        get_filename_component(folder ${source} DIRECTORY)
        if(NOT IS_ABSOLUTE ${source})
            set_source_files_properties(${source} PROPERTIES UNITY_GROUP "${folder}")
        endif()
    endforeach()
endfunction()
