# quorva_library(NAME DEPENDS ... PACKAGES ...): one static library made of the sources in the current
# folder. DEPENDS names the project's own libraries, PACKAGES those of others.
#
# Headers are included as "folder/Header.h". A library sees its own folder and those of the
# libraries it depends on, and no other: each folder's headers are linked into an include root of
# its own, so that an include against the layers' direction is a build error.
function(quorva_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "DEPENDS;PACKAGES")
    file(GLOB sources CONFIGURE_DEPENDS *.cpp)
    file(GLOB headers CONFIGURE_DEPENDS *.h)
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    set(root ${PROJECT_BINARY_DIR}/include/${name})
    file(MAKE_DIRECTORY ${root}/${folder})
    foreach(header IN LISTS headers)
        cmake_path(GET header FILENAME file)
        file(CREATE_LINK ${header} ${root}/${folder}/${file} SYMBOLIC)
    endforeach()

    if(sources)
        add_library(${name} STATIC ${sources})
        target_include_directories(${name} PUBLIC ${root})
        target_link_libraries(${name} PUBLIC ${arg_DEPENDS} ${arg_PACKAGES}
            PRIVATE quorva_compiler)
        precompile(${name} library_headers quorva_compiler <algorithm> <chrono> <filesystem>
            <functional> <map> <memory> <optional> <set> <string> <string_view> <utility> <variant>
            <vector> <fmt/format.h>)
    else()
        add_library(${name} INTERFACE)
        target_include_directories(${name} INTERFACE ${root})
        target_link_libraries(${name} INTERFACE ${arg_DEPENDS} ${arg_PACKAGES})
    endif()
endfunction()
