# Layers: one target per folder of src/, which links the layers below it. A source may include only
# the layers that its own layer links; `check_layers`, part of every build, verifies this.

# add_layer(name [FOLDER path] [SYSTEM WIN32|UNIX] [LINKS layer...])
# Makes the static library `name` of the sources in src/FOLDER (default: src/name), or an interface
# library where the folder has headers only. A layer of another system is checked and not built.
function(add_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 layer "" "FOLDER;SYSTEM" "LINKS")
  if(NOT layer_FOLDER)
    set(layer_FOLDER ${name})
  endif()
  set_property(GLOBAL APPEND PROPERTY vantor_layers ${name})
  set_property(GLOBAL PROPERTY vantor_folder_of_${name} ${layer_FOLDER})
  set_property(GLOBAL PROPERTY vantor_links_of_${name} "${layer_LINKS}")
  if(layer_SYSTEM AND NOT ${layer_SYSTEM})
    return()
  endif()
  file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/src/${layer_FOLDER}/*.cpp)
  list(FILTER sources EXCLUDE REGEX "/main.cpp$")
  if(sources)
    add_library(${name} STATIC ${sources})
    target_link_libraries(${name} PUBLIC project_options ${layer_LINKS})
    # One header for all layers: it reduces the build time by a third. scripts/lint compiles without
    # it, so that each source still includes what it uses.
    if(name STREQUAL errors)
      target_precompile_headers(errors PRIVATE <algorithm> <array> <functional> <map> <memory>
        <optional> <span> <string> <string_view> <utility> <vector>)
    else()
      target_precompile_headers(${name} REUSE_FROM errors)
    endif()
  else()
    add_library(${name} INTERFACE)
    target_link_libraries(${name} INTERFACE project_options ${layer_LINKS})
  endif()
endfunction()

# The folders that `name` may include: its own and those of all layers below it.
function(_folders_below name result)
  get_property(folders GLOBAL PROPERTY vantor_folder_of_${name})
  get_property(links GLOBAL PROPERTY vantor_links_of_${name})
  foreach(link ${links})
    _folders_below(${link} below)
    list(APPEND folders ${below})
  endforeach()
  list(REMOVE_DUPLICATES folders)
  set(${result} ${folders} PARENT_SCOPE)
endfunction()

function(add_layer_check)
  get_property(layers GLOBAL PROPERTY vantor_layers)
  set(table "")
  foreach(layer ${layers})
    get_property(folder GLOBAL PROPERTY vantor_folder_of_${layer})
    _folders_below(${layer} folders)
    list(JOIN folders " " folders)
    string(APPEND table "${folder}: ${folders}\n")
  endforeach()
  file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/layers.txt CONTENT "${table}")
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/src/*.cpp ${PROJECT_SOURCE_DIR}/src/*.hpp)
  add_custom_command(OUTPUT ${PROJECT_BINARY_DIR}/layers.checked
    COMMAND ${PROJECT_SOURCE_DIR}/cmake/check_layers.sh ${PROJECT_BINARY_DIR}/layers.txt
    COMMAND ${CMAKE_COMMAND} -E touch ${PROJECT_BINARY_DIR}/layers.checked
    DEPENDS ${sources} ${PROJECT_BINARY_DIR}/layers.txt
      ${PROJECT_SOURCE_DIR}/cmake/check_layers.sh
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}/src
    COMMENT "Checking that no include points up"
    VERBATIM)
  add_custom_target(check_layers ALL DEPENDS ${PROJECT_BINARY_DIR}/layers.checked)
endfunction()
