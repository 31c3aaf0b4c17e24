# The inspector page: one HTML file made of web/ by esbuild, embedded in the server. Without esbuild and preact (Debian's
# packages) the server says in one line that the page is left out; nothing else changes.
find_program(VIRLO_ESBUILD esbuild)
find_path(VIRLO_NODE_MODULES preact/package.json PATHS /usr/share/nodejs NO_DEFAULT_PATH)
set(page "${CMAKE_CURRENT_BINARY_DIR}/InspectorPage.cpp")
if(VIRLO_BUILD_INSPECTOR AND NOT (VIRLO_ESBUILD AND VIRLO_NODE_MODULES))
  message(STATUS "The inspector page is left out: esbuild or node-preact is missing (scripts/setup build installs them)")
endif()
if(VIRLO_BUILD_INSPECTOR AND VIRLO_ESBUILD AND VIRLO_NODE_MODULES)
  set(web "${CMAKE_CURRENT_LIST_DIR}/web")
  file(GLOB sources CONFIGURE_DEPENDS "${web}/*.ts" "${web}/*.tsx")
  add_custom_command(OUTPUT "${page}"
    COMMAND "${CMAKE_COMMAND}" -E env "NODE_PATH=${VIRLO_NODE_MODULES}" "${VIRLO_ESBUILD}" "${web}/main.tsx"
      --bundle --minify --charset=utf8 --target=es2020 --jsx-factory=h --jsx-fragment=Fragment --log-level=warning
      "--outfile=${CMAKE_CURRENT_BINARY_DIR}/page.js"
    COMMAND "${CMAKE_COMMAND}" -DHTML=${web}/page.html -DSTYLE=${web}/page.css
      -DSCRIPT=${CMAKE_CURRENT_BINARY_DIR}/page.js -DPAGE=${CMAKE_BINARY_DIR}/bin/inspector.html -DOUTPUT=${page}
      -P "${CMAKE_CURRENT_LIST_DIR}/EmbedPage.cmake"
    DEPENDS ${sources} "${web}/page.html" "${web}/page.css" "${CMAKE_CURRENT_LIST_DIR}/EmbedPage.cmake"
    COMMENT "Bundling the inspector page"
    VERBATIM)
else()
  file(CONFIGURE OUTPUT "${page}" CONTENT [[
#include "InspectorPage.h"
const std::string adserver::inspectorPage =
    "This ad-server was built without the inspector page: it needs Debian's packages esbuild and node-preact.\n";
]])
endif()
target_sources(virlo-ad-server PRIVATE "${page}")
set_source_files_properties("${page}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
