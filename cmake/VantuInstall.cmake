# What `cmake --install` puts where (GNU install dirs), and the Debian
# packages made from it (cpack -G DEB). docs/packaging.md describes the result.
#
# Components: "runtime" (shared libraries, the command, the JavaScript SDK, the
# docs) and "dev" (headers, static libraries and .so links, CMake package,
# pkg-config files).
include(CMakePackageConfigHelpers)

set(_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/vantu-h5)
set(_share_dir ${CMAKE_INSTALL_DATADIR}/vantu-h5)

# Public headers. Of the platform-free library: values, the ports (the
# platform interfaces the environment and handlers speak), the core (handler
# contract, environment, host delegate, whitelists, answers) and the runtime
# (bridge registry, page protocol). The subsystems' handlers stay internal:
# hosts reach them through the registry. Every header a public header
# includes must be in one of these folders (the install check compiles each
# installed header on its own).
set(VANTU_PUBLIC_FOLDERS value platform core runtime)
foreach(_folder IN LISTS VANTU_PUBLIC_FOLDERS)
  install(DIRECTORY ${PROJECT_SOURCE_DIR}/vantu/${_folder}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantu/${_folder}
          COMPONENT dev FILES_MATCHING PATTERN "*.h")
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/include/vantu/version.h DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantu COMPONENT dev)

# The libraries and their exported targets, one export set per target so that
# a host needs only the dependencies of what it links.
set(_targets vantu_h5:core vantu_platform_linux:linux)
if(VANTU_HAVE_GTK)
  list(APPEND _targets vantu_platform_gtk:gtk)
endif()
set(VANTU_COMPONENTS "")
foreach(_pair IN LISTS _targets)
  string(REPLACE ":" ";" _pair ${_pair})
  list(GET _pair 0 _target)
  list(GET _pair 1 _name)
  list(APPEND VANTU_COMPONENTS ${_name})
  install(TARGETS ${_target} EXPORT vantu-h5-${_name}
          LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT dev
          ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT dev)
  install(EXPORT vantu-h5-${_name} NAMESPACE vantu:: DESTINATION ${_cmake_dir}
          FILE vantu-h5-${_name}-targets.cmake COMPONENT dev)
  # Public headers of a platform (platforms/<name>/public/vantu/<name>/*.h).
  set(_public ${PROJECT_SOURCE_DIR}/platforms/${_name}/public/vantu)
  if(IS_DIRECTORY ${_public})
    install(DIRECTORY ${_public}/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/vantu COMPONENT dev FILES_MATCHING PATTERN "*.h")
  endif()
endforeach()

# The CMake package: find_package(vantu-h5 [COMPONENTS core linux gtk]).
# What the build found, for a static build's config to look for again.
set(VANTU_CAMERA OFF)
set(VANTU_PAM OFF)
set(VANTU_GEOCLUE OFF)
if(VANTU_HAVE_CAMERA)
  set(VANTU_CAMERA ON)
endif()
if(TARGET PkgConfig::VANTU_PAM)
  set(VANTU_PAM ON)
endif()
if(TARGET PkgConfig::VANTU_GEOCLUE)
  set(VANTU_GEOCLUE ON)
endif()
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/vantu-h5Config.cmake.in
                              ${PROJECT_BINARY_DIR}/package/vantu-h5Config.cmake INSTALL_DESTINATION ${_cmake_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/vantu-h5ConfigVersion.cmake
                                 COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/package/vantu-h5Config.cmake ${PROJECT_BINARY_DIR}/package/vantu-h5ConfigVersion.cmake
        DESTINATION ${_cmake_dir} COMPONENT dev)

# pkg-config files, relocatable (paths from the file's own folder). A static
# build lists what its archives need under Requires.private/Libs.private
# (pkg-config --static); a shared one needs none of it.
file(RELATIVE_PATH VANTU_PC_PREFIX /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
string(REGEX REPLACE "/$" "" VANTU_PC_PREFIX "${VANTU_PC_PREFIX}")
if(BUILD_SHARED_LIBS)
  set(VANTU_PC_CORE_PRIVATE "")
  set(VANTU_PC_LINUX_PRIVATE "")
  set(VANTU_PC_GTK_PRIVATE "")
else()
  set(VANTU_PC_CORE_PRIVATE "simdjson fmt libcrypto")
  set(VANTU_PC_LINUX_PRIVATE "sqlite3 libcurl gdk-pixbuf-2.0")
  if(VANTU_PAM)
    string(APPEND VANTU_PC_LINUX_PRIVATE " pam")
  endif()
  if(VANTU_GEOCLUE)
    string(APPEND VANTU_PC_LINUX_PRIVATE " libgeoclue-2.0")
  endif()
  set(VANTU_PC_GTK_PRIVATE "fmt")
  if(VANTU_HAVE_CAMERA)
    string(APPEND VANTU_PC_GTK_PRIVATE " gstreamer-1.0 gstreamer-app-1.0 gstreamer-video-1.0")
  endif()
endif()
foreach(_name IN LISTS VANTU_COMPONENTS)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/pkgconfig/vantu-h5-${_name}.pc.in
                 ${PROJECT_BINARY_DIR}/package/vantu-h5-${_name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/package/vantu-h5-${_name}.pc
          DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT dev)
endforeach()

# The command.
install(TARGETS vantu-h5-cli RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT runtime)

# The JavaScript SDK for pages (the package's files as npm would publish them).
install(FILES ${PROJECT_SOURCE_DIR}/sdk/js/vantu.js ${PROJECT_SOURCE_DIR}/sdk/js/vantu.d.ts
              ${PROJECT_SOURCE_DIR}/sdk/js/index.mjs ${PROJECT_SOURCE_DIR}/sdk/js/index.d.mts
              ${PROJECT_SOURCE_DIR}/sdk/js/mock.mjs ${PROJECT_SOURCE_DIR}/sdk/js/mock.d.mts
              ${PROJECT_SOURCE_DIR}/sdk/js/package.json ${PROJECT_SOURCE_DIR}/sdk/js/README.md
              ${PROJECT_SOURCE_DIR}/sdk/js/LICENSE
        DESTINATION ${_share_dir}/sdk/js COMPONENT runtime)

# The docs.
install(FILES ${PROJECT_SOURCE_DIR}/README.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT runtime
        FILES_MATCHING PATTERN "*.md")

if(PROJECT_IS_TOP_LEVEL)  # a project that includes this one makes its own packages
  include(${CMAKE_CURRENT_LIST_DIR}/VantuPackage.cmake)
endif()
