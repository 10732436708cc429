# How everything in the project is compiled, and how the two libraries are.

find_program(VELPKI_CCACHE ccache)
if(VELPKI_CCACHE)
  set(CMAKE_CXX_COMPILER_LAUNCHER ${VELPKI_CCACHE})
  set(CMAKE_C_COMPILER_LAUNCHER ${VELPKI_CCACHE})
  # Precompiled headers carry the time of their making; these two let ccache see past it.
  set(ENV{CCACHE_SLOPPINESS} "pch_defines,time_macros,include_file_mtime,include_file_ctime")
endif()

if(CMAKE_SIZEOF_VOID_P EQUAL 4)
  # Times past 2038 and files past 2 GiB on 32-bit machines.
  add_compile_definitions(_TIME_BITS=64 _FILE_OFFSET_BITS=64)
endif()

if(VELPKI_SANITIZE)
  add_compile_options(-fsanitize=${VELPKI_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  add_link_options(-fsanitize=${VELPKI_SANITIZE})
endif()
if(VELPKI_COVERAGE)
  add_compile_options(--coverage)
  add_link_options(--coverage)
endif()

# What both libraries share: warnings, no exceptions, one exported name list, a version node, no dependency of their own.
function(velpki_library_settings target version_script)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wconversion $<$<BOOL:${VELPKI_WERROR}>:-Werror>
                                           -fno-exceptions -fno-rtti -fvisibility=hidden -ffunction-sections
                                           # Allocation records carry __FILE__: keep it short and the same everywhere.
                                           -ffile-prefix-map=${PROJECT_SOURCE_DIR}/=)
  target_include_directories(${target} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
                                              $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>
                                       PRIVATE ${PROJECT_SOURCE_DIR})
  target_link_options(${target} PRIVATE -Wl,--version-script=${version_script} -Wl,--as-needed -Wl,-z,defs
                                        -Wl,--gc-sections -static-libgcc -static-libstdc++)
  if(VELPKI_SANITIZE AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    target_link_options(${target} PRIVATE -Wl,-z,undefs)
  endif()
  set_target_properties(${target} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                                             LINK_DEPENDS ${version_script}
                                             LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/lib)
endfunction()
