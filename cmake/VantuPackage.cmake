# Debian packages (cpack -G DEB in the build folder), built from a shared
# build (preset "shared"): "vantu-h5" with the runtime component (libraries,
# command, JavaScript SDK, docs) and "vantu-h5-dev" with the dev component.
# The runtime package's dependencies come from dpkg-shlibdeps; the dev
# package's are the -dev packages of the public dependencies (a static build
# adds those of the libraries compiled in).
set(CPACK_PACKAGE_NAME vantu-h5)
set(CPACK_PACKAGE_VENDOR "vantu-h5 developers")
set(CPACK_PACKAGE_CONTACT "vantu-h5 developers <vantu-h5@localhost>")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_COMPONENTS_ALL runtime dev)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME vantu-h5)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
# The command needs the package's own libraries; they are found in the package.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_INSTALL_LIBDIR})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_GENERATE_SHLIBS ON)
# The first line of a description is the package's synopsis.
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "runs HTML5 mini-apps in a WebKitGTK container and answers their bridge calls
The vantu-h5 libraries (the platform-free bridge library, the Linux platform
and the WebKitGTK 6 container), the vantu-h5 command (runs pages in the
container; headless bridge runner), the JavaScript SDK for pages and the docs.")
set(CPACK_DEBIAN_DEV_PACKAGE_NAME vantu-h5-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION "headers, CMake package and pkg-config files of vantu-h5
What a host application needs to build against vantu-h5:
find_package(vantu-h5) with the targets vantu::core, vantu::linux and
vantu::gtk, or pkg-config vantu-h5-core, vantu-h5-linux and vantu-h5-gtk.")

# The -dev packages a host needs to compile and link against the libraries.
set(_dev_depends "vantu-h5 (= ${PROJECT_VERSION})" pkg-config "libgtk-4-dev" "libwebkitgtk-6.0-dev" "libsoup-3.0-dev")
if(NOT BUILD_SHARED_LIBS)
  list(APPEND _dev_depends libsimdjson-dev libfmt-dev libssl-dev libsqlite3-dev "libcurl4-openssl-dev | libcurl-dev")
  if(VANTU_PAM)
    list(APPEND _dev_depends libpam0g-dev)
  endif()
  if(VANTU_GEOCLUE)
    list(APPEND _dev_depends libgeoclue-2-dev)
  endif()
  if(VANTU_CAMERA)
    list(APPEND _dev_depends libgstreamer1.0-dev libgstreamer-plugins-base1.0-dev)
  endif()
endif()
if(NOT VANTU_HAVE_GTK)
  list(REMOVE_ITEM _dev_depends "libgtk-4-dev" "libwebkitgtk-6.0-dev" "libsoup-3.0-dev")
endif()
list(JOIN _dev_depends ", " CPACK_DEBIAN_DEV_PACKAGE_DEPENDS)

include(CPack)
