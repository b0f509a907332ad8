set(CMCFG_COMPONENTS "" CACHE INTERNAL "")

# The layering is enforced by the include path. Each component compiles
# against a staging folder of its own in the build tree that holds one
# symbolic link per source folder of the component ("platform/base" ->
# source), plus the staging folders of the components it depends on and,
# when it asks for them, the public headers. An include of a folder the
# component may not use then fails with "No such file or directory", while
# the includes keep the form "platform/base/x.h" and "cmcfg/x.h".
set(CMCFG_LAYERS_DIR ${PROJECT_BINARY_DIR}/layers)

# The public headers: include/ holds only cmcfg/, so it exposes nothing else.
add_library(cmcfg_api INTERFACE)
target_include_directories(cmcfg_api INTERFACE ${PROJECT_SOURCE_DIR}/include)

# Links every folder of `dirs` into the staging folder `stage`.
function(cmcfg_stage stage)
  foreach(dir IN LISTS ARGN)
    set(link ${stage}/${dir})
    get_filename_component(parent ${link} DIRECTORY)
    file(MAKE_DIRECTORY ${parent})
    if(NOT IS_SYMLINK ${link})
      file(CREATE_LINK ${PROJECT_SOURCE_DIR}/${dir} ${link} SYMBOLIC)
    endif()
  endforeach()
endfunction()

# Remembers what a component may see, for the layering test: its folders,
# the components it reaches through DEPENDS (itself included) and whether
# one of them gives it the public headers.
function(cmcfg_record_layer name dirs depends public_headers)
  set(reach ${name})
  set(api ${public_headers})
  foreach(dep IN LISTS depends)
    get_property(dep_reach GLOBAL PROPERTY CMCFG_LAYER_REACH_${dep})
    get_property(dep_api GLOBAL PROPERTY CMCFG_LAYER_API_${dep})
    list(APPEND reach ${dep_reach})
    if(dep_api)
      set(api TRUE)
    endif()
  endforeach()
  list(REMOVE_DUPLICATES reach)
  set_property(GLOBAL PROPERTY CMCFG_LAYER_DIRS_${name} ${dirs})
  set_property(GLOBAL PROPERTY CMCFG_LAYER_REACH_${name} ${reach})
  set_property(GLOBAL PROPERTY CMCFG_LAYER_API_${name} ${api})
  set_property(GLOBAL APPEND PROPERTY CMCFG_LAYERS ${name})
endfunction()

# cmcfg_component(NAME DIRS dir... [DEPENDS comp...] [PUBLIC_HEADERS]) makes
# the object library cmcfg_NAME from every .cc file of the given folders. It
# sees its own folders, those of the components named by DEPENDS (and of
# theirs), and include/ with PUBLIC_HEADERS. A component without sources yet
# is an interface library with the same include path, so that its
# dependents configure while it is being started.
function(cmcfg_component name)
  cmake_parse_arguments(C "PUBLIC_HEADERS" "" "DIRS;DEPENDS" ${ARGN})
  set(srcs)
  foreach(dir IN LISTS C_DIRS)
    file(GLOB found CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${dir}/*.cc)
    list(APPEND srcs ${found})
  endforeach()
  set(stage ${CMCFG_LAYERS_DIR}/${name})
  cmcfg_stage(${stage} ${C_DIRS})
  set(deps)
  foreach(dep IN LISTS C_DEPENDS)
    if(NOT TARGET cmcfg_${dep})
      message(FATAL_ERROR "component ${name}: ${dep} must be declared before it")
    endif()
    list(APPEND deps cmcfg_${dep})
  endforeach()
  if(C_PUBLIC_HEADERS)
    list(APPEND deps cmcfg_api)
  endif()
  cmcfg_record_layer(${name} "${C_DIRS}" "${C_DEPENDS}" ${C_PUBLIC_HEADERS})
  if(NOT srcs)
    add_library(cmcfg_${name} INTERFACE)
    target_include_directories(cmcfg_${name} INTERFACE ${stage})
    target_link_libraries(cmcfg_${name} INTERFACE ${deps})
    return()
  endif()
  add_library(cmcfg_${name} OBJECT ${srcs})
  target_include_directories(cmcfg_${name} PUBLIC ${stage})
  target_compile_definitions(cmcfg_${name} PRIVATE CMCFG_BUILDING_LIBRARY)
  target_link_libraries(cmcfg_${name} PUBLIC ${deps} Threads::Threads)
  set(CMCFG_COMPONENTS ${CMCFG_COMPONENTS} ${name} CACHE INTERNAL "")
endfunction()

# cmcfg_all_objects(OUT) lists the objects of every component with sources.
function(cmcfg_all_objects out)
  set(objs)
  foreach(c IN LISTS CMCFG_COMPONENTS)
    list(APPEND objs $<TARGET_OBJECTS:cmcfg_${c}>)
  endforeach()
  set(${out} ${objs} PARENT_SCOPE)
endfunction()

# cmcfg_check_public_headers() compiles every public header alone, twice
# in one unit, with nothing but include/ on the path: a public header that
# includes a private one, lacks an include of its own or its guard fails
# the build.
function(cmcfg_check_public_headers)
  file(GLOB headers CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/cmcfg/*.h)
  set(units)
  foreach(header IN LISTS headers)
    get_filename_component(stem ${header} NAME_WE)
    set(unit ${PROJECT_BINARY_DIR}/public_headers/${stem}.cc)
    set(text "#include \"cmcfg/${stem}.h\"\n#include \"cmcfg/${stem}.h\"\n")
    file(CONFIGURE OUTPUT ${unit} CONTENT "${text}")
    list(APPEND units ${unit})
  endforeach()
  add_library(cmcfg_public_headers OBJECT ${units})
  target_link_libraries(cmcfg_public_headers PRIVATE cmcfg_api)
endfunction()

# cmcfg_layering_test(TEST) adds the test TEST, which preprocesses, with the
# include path of each component, every header of the folders it may use
# (they must resolve, all the way down) and one header of every folder it
# may not use (it must fail as not found). A dependency dropped from a
# component, or a header that includes above its layer, fails it.
function(cmcfg_layering_test test)
  get_property(layers GLOBAL PROPERTY CMCFG_LAYERS)
  set(probes)
  foreach(c IN LISTS layers)
    get_property(reach GLOBAL PROPERTY CMCFG_LAYER_REACH_${c})
    get_property(api GLOBAL PROPERTY CMCFG_LAYER_API_${c})
    set(flags)
    foreach(r IN LISTS reach)
      list(APPEND flags "-I${CMCFG_LAYERS_DIR}/${r}")
    endforeach()
    if(api)
      list(APPEND flags "-I${PROJECT_SOURCE_DIR}/include")
    endif()
    string(REPLACE ";" "," flags "${flags}")
    foreach(other IN LISTS layers)
      get_property(dirs GLOBAL PROPERTY CMCFG_LAYER_DIRS_${other})
      set(allowed NO)
      if(other IN_LIST reach)
        set(allowed YES)
      endif()
      foreach(dir IN LISTS dirs)
        file(GLOB headers RELATIVE ${PROJECT_SOURCE_DIR} CONFIGURE_DEPENDS
             ${PROJECT_SOURCE_DIR}/${dir}/*.h)
        if(NOT allowed)
          list(SUBLIST headers 0 1 headers)
        endif()
        foreach(h IN LISTS headers)
          list(APPEND probes "${c}|${flags}|${h}|${allowed}")
        endforeach()
      endforeach()
    endforeach()
    file(GLOB public RELATIVE ${PROJECT_SOURCE_DIR}/include CONFIGURE_DEPENDS
         ${PROJECT_SOURCE_DIR}/include/cmcfg/*.h)
    list(SUBLIST public 0 1 public)
    set(allowed NO)
    if(api)
      set(allowed YES)
    endif()
    list(APPEND probes "${c}|${flags}|${public}|${allowed}")
  endforeach()
  set(list_file ${PROJECT_BINARY_DIR}/layering_probes.txt)
  file(CONFIGURE OUTPUT ${list_file} CONTENT "${probes}")
  add_test(NAME ${test}
    COMMAND ${CMAKE_COMMAND} -DCXX=${CMAKE_CXX_COMPILER} -DPROBES=${list_file}
      -DWORK_DIR=${CMAKE_CURRENT_BINARY_DIR}/layering
      -P ${PROJECT_SOURCE_DIR}/cmake/CheckLayering.cmake)
endfunction()
