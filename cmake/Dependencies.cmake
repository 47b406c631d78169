# The libraries of the tests and tools (the launcher has none): from a package that CMake finds, from
# the sources and headers that Debian installs, or fetched, each with its checksum.
include(FetchContent)

# What is fetched is built like everything else: with the static runtime.
set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
set(CMAKE_POLICY_DEFAULT_CMP0091 NEW)

# provide_googletest(): GTest::gtest, GTest::gmock and GTest::gmock_main
function(provide_googletest)
  find_package(GTest 1.13 CONFIG QUIET GLOBAL)
  if(GTest_FOUND)
    return()
  endif()
  set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)
  # As the launcher: older standards leave std::string's functions to other objects, and the linker
  # would take those of the launcher for it, the ones that a test replaces among them.
  set(CMAKE_CXX_STANDARD 20)
  set(INSTALL_GTEST OFF)
  set(gtest_force_shared_crt OFF)
  if(EXISTS /usr/src/googletest/CMakeLists.txt)
    add_subdirectory(/usr/src/googletest ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    # Not for its speed: the GNU linker spends its time on inline functions that were not inlined, in
    # every test program again.
    foreach(library gtest gmock)
      target_compile_options(${library} PRIVATE -O1)
    endforeach()
    return()
  endif()
  FetchContent_Declare(googletest SYSTEM DOWNLOAD_EXTRACT_TIMESTAMP ON
    URL https://github.com/google/googletest/archive/refs/tags/v1.14.0.tar.gz
    URL_HASH SHA256=8ad598c73ad796e0d8280b082cebd82a630d73e73cd3c70057938a6501bba5d7)
  FetchContent_MakeAvailable(googletest)
endfunction()

# provide_headers(TARGET PACKAGE FOLDER URL HASH): a library of nothing but headers, `FOLDER/...`
function(provide_headers target package folder url hash)
  if(TARGET ${target})
    return()
  endif()
  find_package(${package} CONFIG QUIET GLOBAL)
  if(TARGET ${target})
    return()
  endif()
  if(IS_DIRECTORY /usr/include/${folder})
    # By a link: nothing else in the system's folder is for a compiler of Windows programs.
    set(include ${PROJECT_BINARY_DIR}/headers/${package})
    file(MAKE_DIRECTORY ${include})
    file(CREATE_LINK /usr/include/${folder} ${include}/${folder} SYMBOLIC)
  else()
    # Its own CMake files are not asked: the folder named here does not exist.
    FetchContent_Declare(${package} DOWNLOAD_EXTRACT_TIMESTAMP ON SOURCE_SUBDIR only-headers
      URL ${url} URL_HASH SHA256=${hash})
    FetchContent_MakeAvailable(${package})
    string(TOLOWER ${package} fetched)
    set(include ${${fetched}_SOURCE_DIR}/include)
  endif()
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${include})
endfunction()

# provide_cli11(): CLI11::CLI11, everywhere the version that Debian 12 has
function(provide_cli11)
  provide_headers(CLI11::CLI11 CLI11 CLI
    https://github.com/CLIUtils/CLI11/archive/refs/tags/v2.1.2.tar.gz
    26291377e892ba0e5b4972cdfd4a2ab3bf53af8dac1f4ea8fe0d1376b625c8cb)
endfunction()

# provide_nlohmann_json(): nlohmann_json::nlohmann_json
function(provide_nlohmann_json)
  provide_headers(nlohmann_json::nlohmann_json nlohmann_json nlohmann
    https://github.com/nlohmann/json/releases/download/v3.11.3/json.tar.xz
    d6c65aca6b1ed68e7a182f4757257b107ae403032760ed6ef121c9d55e81757d)
endfunction()

# provide_valijson(): valijson, for tests; only where the system has its headers
function(provide_valijson)
  if(IS_DIRECTORY /usr/include/valijson)
    provide_headers(valijson valijson valijson "" "")
  endif()
endfunction()
