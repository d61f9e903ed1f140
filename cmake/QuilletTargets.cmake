# Warnings as errors apply to our own code only.
function(quillet_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Werror)
endfunction()

# quillet_layer(name DIR dir LIBS ...): one static library per layer, made of
# every source file under the layer's directory.
function(quillet_layer name)
  cmake_parse_arguments(ARG "" "DIR" "LIBS" ${ARGN})
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${ARG_DIR}/*.cc)
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LIBS})
  quillet_warnings(${name})
endfunction()

# quillet_part(layer name LIBS ...): a static library <layer>_<name> of every
# source under the current directory's <name>/ folder, so that each part of a
# layer builds and is tested on its own; an empty folder gives an interface
# library. The part is added to the list <LAYER>_PARTS in the caller's scope.
macro(quillet_part layer name)
  cmake_parse_arguments(PART_ARG "" "" "LIBS" ${ARGN})
  file(GLOB_RECURSE part_sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${name}/*.cc)
  if(part_sources)
    add_library(${layer}_${name} STATIC ${part_sources})
    quillet_warnings(${layer}_${name})
    set(part_scope PUBLIC)
  else()
    add_library(${layer}_${name} INTERFACE)
    set(part_scope INTERFACE)
  endif()
  target_include_directories(${layer}_${name} ${part_scope} ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR})
  target_link_libraries(${layer}_${name} ${part_scope} ${PART_ARG_LIBS})
  string(TOUPPER ${layer} part_layer_upper)
  list(APPEND ${part_layer_upper}_PARTS ${layer}_${name})
endmacro()

# quillet_gather(layer): the layer's target, linking all its parts.
macro(quillet_gather layer)
  string(TOUPPER ${layer} gather_upper)
  add_library(${layer} INTERFACE)
  target_link_libraries(${layer} INTERFACE ${${gather_upper}_PARTS})
endmacro()

# quillet_test_dirs(layer LIBS ...): one test program per folder under
# tests/<layer>/, named <layer>_<folder>_tests, each registered with CTest.
# New folders need a fresh configure (cmake -S . -B <dir>).
function(quillet_test_dirs layer)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB dirs LIST_DIRECTORIES true ${CMAKE_CURRENT_SOURCE_DIR}/${layer}/*)
  foreach(dir ${dirs})
    if(IS_DIRECTORY ${dir})
      get_filename_component(facility ${dir} NAME)
      file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${dir}/*.cc)
      if(sources)
        set(target ${layer}_${facility}_tests)
        add_executable(${target} ${sources})
        target_include_directories(${target} PRIVATE ${CMAKE_CURRENT_SOURCE_DIR})
        # A facility's tests link only that facility when it has its own library.
        if(TARGET ${layer}_${facility})
          set(libs ${layer}_${facility})
        else()
          set(libs ${ARG_LIBS})
        endif()
        target_link_libraries(${target} PRIVATE ${libs} quillet_test_support GTest::gmock GTest::gtest_main)
        quillet_warnings(${target})
        add_test(NAME ${target} COMMAND ${target})
        set_tests_properties(${target} PROPERTIES TIMEOUT 300)
      endif()
    endif()
  endforeach()
endfunction()
