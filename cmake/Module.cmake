# drabwise_module(NAME DIRECTORY [LIBS...]): a static library of the sources in
# DIRECTORY, or a header-only interface library while it has none.
#
# Platform files are chosen by their name: NameLinux.cpp is built everywhere
# but on Apple systems, NameMacOS.mm only there.
function(drabwise_module name directory)
  file(GLOB sources CONFIGURE_DEPENDS ${directory}/*.cpp)
  if(APPLE)
    enable_language(OBJCXX)
    list(FILTER sources EXCLUDE REGEX "Linux\\.cpp$")
    file(GLOB mac_sources CONFIGURE_DEPENDS ${directory}/*MacOS.mm)
    list(APPEND sources ${mac_sources})
  endif()
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
