# drabwise_module(NAME DIRECTORY [LIBS...]): a static library of every .cpp in
# DIRECTORY, or a header-only interface library while it has none.
function(drabwise_module name directory)
  file(GLOB sources CONFIGURE_DEPENDS ${directory}/*.cpp)
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${ARGN})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARGN})
  endif()
endfunction()
