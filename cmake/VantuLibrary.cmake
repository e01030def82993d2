# How the libraries are put together.
#
# Every subsystem folder compiles into an object library (vantu_module); the
# objects of several folders make one installed library (vantu_library):
#   vantu::core   libvantu-h5-core   vantu/*            (platform-free: values, ports, core, bridges, runtime)
#   vantu::linux  libvantu-h5-linux  platforms/common, store, curl, linux
#   vantu::gtk    libvantu-h5-gtk    platforms/gtk, camera
# The folders stay separate targets so that the layering test can check each
# on its own (tests/layering).

# An object library of every .cpp in `dir`; the rest are its dependencies.
function(vantu_module target dir)
  file(GLOB _sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
  add_library(${target} OBJECT ${_sources})
  target_link_libraries(${target} PUBLIC ${ARGN})
endfunction()

# vantu_library(<target> EXPORT_NAME <name> OBJECTS <object libraries...>
#               [PUBLIC_INCLUDE <dir>] [PUBLIC <deps...>] [PRIVATE <deps...>])
# One installed library, static or shared after BUILD_SHARED_LIBS, named
# libvantu-h5-<name> and known to users as vantu::<name>. PRIVATE lists what the
# objects themselves link with (for a static library users link it too).
# PUBLIC_INCLUDE is a folder of public headers that lives outside vantu/.
function(vantu_library target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "EXPORT_NAME;PUBLIC_INCLUDE" "OBJECTS;PUBLIC;PRIVATE")
  add_library(${target})
  add_library(vantu::${arg_EXPORT_NAME} ALIAS ${target})
  foreach(_objects IN LISTS arg_OBJECTS)
    target_sources(${target} PRIVATE $<TARGET_OBJECTS:${_objects}>)
  endforeach()
  target_link_libraries(${target} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE})
  target_compile_features(${target} PUBLIC cxx_std_20)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                                              $<BUILD_INTERFACE:${PROJECT_BINARY_DIR}/include>
                                              $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  if(arg_PUBLIC_INCLUDE)
    target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${arg_PUBLIC_INCLUDE}>)
  endif()
  set_target_properties(${target} PROPERTIES
    EXPORT_NAME ${arg_EXPORT_NAME}
    OUTPUT_NAME vantu-h5-${arg_EXPORT_NAME}
    VERSION ${PROJECT_VERSION}
    SOVERSION ${PROJECT_VERSION_MAJOR}
    LINKER_LANGUAGE CXX
    INSTALL_RPATH "$ORIGIN")  # the libraries find each other wherever they are installed
  if(BUILD_SHARED_LIBS)
    # Only the library's own namespace is exported; the copies of stb_image,
    # simdjson and fmt code compiled into it stay private (cmake/vantu.map).
    set(_map ${PROJECT_SOURCE_DIR}/cmake/vantu.map)
    target_link_options(${target} PRIVATE "LINKER:--version-script=${_map}" "LINKER:--no-undefined")
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${_map})
  endif()
endfunction()
