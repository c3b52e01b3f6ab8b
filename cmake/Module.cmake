# drabwise_module(NAME DIRECTORY [SUBSYSTEMS] [LIBS...]): a static library of the
# sources in DIRECTORY (and, with SUBSYSTEMS, in its subsystem folders), or a
# header-only interface library while it has none.
#
# Platform files are chosen by their name: NameLinux.cpp is built everywhere
# but on Apple systems, NameMacOS.mm only there.
function(drabwise_module name directory)
  cmake_parse_arguments(PARSE_ARGV 2 module "SUBSYSTEMS" "" "")
  set(libraries ${module_UNPARSED_ARGUMENTS})
  if(module_SUBSYSTEMS)
    set(glob GLOB_RECURSE)
  else()
    set(glob GLOB)
  endif()
  file(${glob} sources CONFIGURE_DEPENDS ${directory}/*.cpp)
  if(APPLE)
    list(FILTER sources EXCLUDE REGEX "Linux\\.cpp$")
    file(${glob} mac_sources CONFIGURE_DEPENDS ${directory}/*MacOS.mm)
    list(APPEND sources ${mac_sources})
  endif()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${libraries})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${libraries})
  endif()
endfunction()
