# What every target shares: the language level, warnings, sanitizers and where programs land.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")

find_program(VIRLO_CCACHE ccache)
if(VIRLO_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER "${VIRLO_CCACHE}")
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual)
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # This compiler takes joining two strings for overlapping copies.
  add_compile_options(-Wno-restrict)
endif()
if(CMAKE_UNITY_BUILD AND CMAKE_CXX_COMPILER_ID STREQUAL GNU)
  # Where sources are read together, their anonymous namespaces are in included files.
  add_compile_options(-Wno-subobject-linkage)
endif()
if(VIRLO_WARNINGS_AS_ERRORS)
  add_compile_options(-Werror)
endif()
if(VIRLO_SANITIZE)
  add_compile_options(-fsanitize=${VIRLO_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${VIRLO_SANITIZE})
endif()

# virlo_admit_generated_qml(TARGET): the code that Qt generates from the target's documents shadows its own names. Called
# after qt_add_qml_module.
function(virlo_admit_generated_qml target)
  get_target_property(sources ${target} SOURCES)
  list(FILTER sources INCLUDE REGEX "_qml\\.cpp$")
  set_source_files_properties(${sources} PROPERTIES COMPILE_OPTIONS -Wno-shadow)
endfunction()
