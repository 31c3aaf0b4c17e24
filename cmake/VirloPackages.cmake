# Debian packages by CPack, one for each install component; scripts/package runs it.
include(GNUInstallDirs)

install(TARGETS ad-server vast-inspect RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
set(pages ad-server vast-inspect)
if(VIRLO_BUILD_UI)
  install(TARGETS virlo-adhost RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
  list(APPEND pages virlo-adhost)
endif()
install(DIRECTORY AdServer/campaigns DESTINATION "${CMAKE_INSTALL_DATADIR}/virlo" COMPONENT tools PATTERN art EXCLUDE)

set(VIRLO_PACKAGE_core libvirlo-core${PROJECT_VERSION_MAJOR})
set(VIRLO_PACKAGE_core-dev libvirlo-core-dev)
set(VIRLO_PACKAGE_framework libvirloadframework${PROJECT_VERSION_MAJOR})
set(VIRLO_PACKAGE_framework-dev libvirloadframework-dev)
set(VIRLO_PACKAGE_media libvirloadframework${PROJECT_VERSION_MAJOR}-media)
set(VIRLO_PACKAGE_tools virlo-tools)
set(CPACK_COMPONENTS_ALL core core-dev tools)
if(VIRLO_BUILD_UI)
  list(APPEND CPACK_COMPONENTS_ALL framework framework-dev)
  if(VIRLO_BUILD_MEDIA)
    list(APPEND CPACK_COMPONENTS_ALL media)
  endif()
endif()

set(CPACK_PACKAGE_CONTACT "VIRLOAdFramework <packages@example.com>" CACHE STRING "The packages' maintainer")
set(CPACK_PACKAGE_VENDOR "VIRLOAdFramework")
set(VIRLO_PACKAGE_DATE "Thu, 01 Jan 1970 00:00:00 +0000" CACHE STRING "The date of the packages, in the form of RFC 2822")

# Each package's copyright and changelog, where Debian looks for them.
configure_file(packaging/changelog.in "${CMAKE_BINARY_DIR}/packaging/changelog" @ONLY)
find_program(VIRLO_GZIP gzip REQUIRED)
function(virlo_compress source target)
  get_filename_component(folder "${target}" DIRECTORY)
  file(MAKE_DIRECTORY "${folder}")
  execute_process(COMMAND "${VIRLO_GZIP}" -9nc "${source}" OUTPUT_FILE "${target}" COMMAND_ERROR_IS_FATAL ANY)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${source}")
endfunction()
virlo_compress("${CMAKE_BINARY_DIR}/packaging/changelog" "${CMAKE_BINARY_DIR}/packaging/changelog.gz")
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  install(FILES packaging/copyright "${CMAKE_BINARY_DIR}/packaging/changelog.gz"
    DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/${VIRLO_PACKAGE_${component}}" COMPONENT ${component})
endforeach()
foreach(page IN LISTS pages)
  virlo_compress("${CMAKE_SOURCE_DIR}/packaging/man/${page}.1" "${CMAKE_BINARY_DIR}/packaging/man/${page}.1.gz")
  install(FILES "${CMAKE_BINARY_DIR}/packaging/man/${page}.1.gz"
    DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
endforeach()
install(FILES docs/hosts.md DESTINATION "${CMAKE_INSTALL_DATAROOTDIR}/doc/virlo-tools" COMPONENT tools)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME virloadframework)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT) # NAME_VERSION_ARCHITECTURE.deb
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${CMAKE_LIBRARY_OUTPUT_DIRECTORY}")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

# virlo_package(COMPONENT SECTION SUMMARY TEXT [DEPENDS PACKAGE…] [RECOMMENDS PACKAGE…])
function(virlo_package component section summary text)
  cmake_parse_arguments(PARSE_ARGV 4 package "" "" "DEPENDS;RECOMMENDS")
  string(TOUPPER ${component} key)
  list(JOIN package_DEPENDS ", " depends)
  list(JOIN package_RECOMMENDS ", " recommends)
  set(CPACK_DEBIAN_${key}_PACKAGE_NAME ${VIRLO_PACKAGE_${component}} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_SECTION ${section} PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_DESCRIPTION "${summary}\n${text}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_DEPENDS "${depends}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${key}_PACKAGE_RECOMMENDS "${recommends}" PARENT_SCOPE)
endfunction()

if(VIRLO_BUILD_UI)
  find_package(Qt6 6.4 REQUIRED COMPONENTS Core) # for its version
  set(framework "${VIRLO_PACKAGE_framework} (= ${PROJECT_VERSION})")
endif()
# What dpkg has to know of a shared library. CPack's own would call ldconfig by scripts, as Debian did long ago.
foreach(library core:virlo-core framework:VIRLOAdFramework)
  string(REPLACE ":" ";" library "${library}")
  list(GET library 0 component)
  list(GET library 1 name)
  set(control "${CMAKE_BINARY_DIR}/packaging/${component}")
  file(WRITE "${control}/triggers" "activate-noawait ldconfig\n")
  file(WRITE "${control}/shlibs"
    "lib${name} ${PROJECT_VERSION_MAJOR} ${VIRLO_PACKAGE_${component}} (= ${PROJECT_VERSION})\n")
  string(TOUPPER ${component} key)
  set(CPACK_DEBIAN_${key}_PACKAGE_CONTROL_EXTRA "${control}/triggers;${control}/shlibs")
endforeach()

set(same "(= ${PROJECT_VERSION})")
set(qml qml6-module-qtqml qml6-module-qtqml-workerscript qml6-module-qtquick qml6-module-qtquick-window)
virlo_package(core libs "ads for television set-top apps, without screens"
  "The ad library for hosts without Qt: session, requests, rewards and the data of\n an advertisement. The host draws it."
  DEPENDS ca-certificates RECOMMENDS tzdata)
virlo_package(core-dev libdevel "headers of the ad library without screens"
  "What is needed to build a host without Qt, by CMake or pkg-config."
  DEPENDS "${VIRLO_PACKAGE_core} ${same}" nlohmann-json3-dev)
# The private headers of Qt that the screens use are those of one release.
virlo_package(framework libs "full-screen ads for television set-top apps"
  "The ad library with its screens, on Qt Quick."
  DEPENDS ca-certificates fonts-dejavu-core "qt6-declarative-abi (= ${Qt6Core_VERSION})" ${qml}
  RECOMMENDS tzdata "${VIRLO_PACKAGE_media} ${same}")
virlo_package(framework-dev libdevel "headers of the ad library"
  "What is needed to build a host on Qt Quick, by CMake or pkg-config."
  DEPENDS "libvirlo-core-dev ${same}" "${VIRLO_PACKAGE_framework} ${same}" qt6-declarative-dev)
virlo_package(media libs "video ads for television set-top apps"
  "What plays the videos of the ad library, by GStreamer. Loaded with the first of\n them."
  DEPENDS "${VIRLO_PACKAGE_framework} ${same}" gstreamer1.0-plugins-base gstreamer1.0-plugins-good
  RECOMMENDS gstreamer1.0-libav gstreamer1.0-plugins-bad)
virlo_package(tools utils "ad server, VAST inspector and ad process of the ad library"
  "A development ad server with campaigns, a program that shows what the library\n makes of a VAST tag, and one that shows ads for hosts in any language."
  DEPENDS ${framework})
include(CPack)
