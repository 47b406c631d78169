# Compiler settings of every target, and the one way to declare a library of the launcher.

set(CMAKE_CXX_EXTENSIONS OFF)

# Windows 7 is the oldest system on which the launcher must load.
add_library(launcher_settings INTERFACE)
target_compile_features(launcher_settings INTERFACE cxx_std_20)
target_compile_definitions(launcher_settings INTERFACE
  UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN _WIN32_WINNT=0x0601 NTDDI_VERSION=0x06010000)
# Only the root: a bare "strings.h" or "path.h" must never shadow a system header.
target_include_directories(launcher_settings INTERFACE ${PROJECT_SOURCE_DIR})

set(is_cxx $<COMPILE_LANGUAGE:CXX>)  # windres must not see compiler flags
if(MSVC)
  target_compile_definitions(launcher_settings INTERFACE _CRT_SECURE_NO_WARNINGS)
  target_compile_options(launcher_settings INTERFACE
    "$<${is_cxx}:/W4;/permissive-;/utf-8;/EHsc;/Gy;/guard:cf;/Zc:__cplusplus>")
  set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
  set(mingw_options
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wcast-qual -Wformat=2
    -Wundef -Wvla
    -fstack-protector-strong -fcf-protection=full
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND mingw_options -Wduplicated-cond -Wlogical-op -Wsuggest-override)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      list(APPEND mingw_options -Wno-restrict)  # false alarms in std::string, GCC bug 105329
    endif()
  endif()
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_INTERPROCEDURAL_OPTIMIZATION)
    # For tests and tools, which link the same objects without.
    list(APPEND mingw_options -ffat-lto-objects)
    # In one piece: GCC 12 can fail with an internal error when it divides the work.
    target_link_options(launcher_settings INTERFACE -flto-partition=one)
  endif()
  target_compile_options(launcher_settings INTERFACE "$<${is_cxx}:${mingw_options}>")
  add_compile_options("$<${is_cxx}:-ffunction-sections;-fdata-sections>")
  target_link_options(launcher_settings INTERFACE -static -fstack-protector-strong)
endif()

# Of launcher/mingw_runtime.cpp. The compiler itself refers to what it defines, after the point where
# unused code goes, and the canary cannot guard the function that makes it.
if(MINGW)
  set(mingw_runtime_options -fno-lto -fno-stack-protector)
endif()

# launcher_library(NAME SOURCES... LINKS TARGETS...): a static library. Its links are public, and
# name only layers below it.
function(launcher_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LINKS")
  add_library(${name} STATIC ${arg_SOURCES})
  target_link_libraries(${name} PUBLIC launcher_settings ${arg_LINKS})
endfunction()

# launcher_layer(NAME SOURCES... EDGES SOURCES... LINKS TARGETS...): a layer of the launcher. EDGES
# are the sources in which it meets the machine: each does one thing to it or asks one thing of it,
# and nothing else. A program with the property OWN_EDGES gets the layer without them, has to bring
# its own, and fails to link when one is missing. Everything is compiled once.
define_property(TARGET PROPERTY OWN_EDGES)
function(launcher_layer name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;EDGES;LINKS")
  add_library(${name}_edges OBJECT ${arg_EDGES})
  target_link_libraries(${name}_edges PRIVATE launcher_settings)
  launcher_library(${name}_core SOURCES ${arg_SOURCES} LINKS ${arg_LINKS})
  launcher_library(${name}_whole
    SOURCES $<TARGET_OBJECTS:${name}_core> $<TARGET_OBJECTS:${name}_edges>
    LINKS ${arg_LINKS})
  set_property(TARGET ${name}_whole PROPERTY LINKER_LANGUAGE CXX)
  add_library(${name} INTERFACE)
  target_link_libraries(${name} INTERFACE
    ${name}_$<IF:$<BOOL:$<TARGET_PROPERTY:OWN_EDGES>>,core,whole>)
endfunction()

# What makes a release executable small, repeatable to the byte and safe to start from a disc. The
# compilers' linkers randomise addresses and prevent data execution without being asked.
function(launcher_executable_hardening name)
  if(MSVC)
    target_link_options(${name} PRIVATE
      /MANIFEST:NO /SWAPRUN:CD /SWAPRUN:NET /CETCOMPAT /guard:cf /Brepro /DEPENDENTLOADFLAG:0x800
      $<$<NOT:$<CONFIG:Debug>>:/OPT:REF;/OPT:ICF>)
    return()
  endif()
  target_link_options(${name} PRIVATE
    -Wl,--gc-sections -Wl,--no-insert-timestamp -Wl,--dynamicbase -Wl,--nxcompat
    $<$<NOT:$<CONFIG:Debug>>:-s>)
  # The GNU linker has no option for it.
  set(set_swaprun sh ${PROJECT_SOURCE_DIR}/tools/set-swaprun.sh)
  if(CMAKE_HOST_WIN32)
    set(set_swaprun powershell -NoProfile -ExecutionPolicy Bypass
      -File ${PROJECT_SOURCE_DIR}/tools/set-swaprun.ps1)
  endif()
  add_custom_command(TARGET ${name} POST_BUILD
    COMMAND ${set_swaprun} $<TARGET_FILE:${name}> VERBATIM)
endfunction()
