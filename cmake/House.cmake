# What every target of this project shares: dependencies, warnings, hardening, and the one way to declare a target.

find_package(Threads REQUIRED)
find_package(Boost 1.81 REQUIRED COMPONENTS url)
find_package(nlohmann_json 3.11 REQUIRED)
find_package(OpenSSL 3 REQUIRED)
find_package(PkgConfig REQUIRED)
pkg_check_modules(DLT REQUIRED IMPORTED_TARGET automotive-dlt)
# Debian's own, since another python3 on the path does not see Debian's modules.
set(CMC_PYTHON /usr/bin/python3)

add_library(house INTERFACE)
target_compile_options(house INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
# GCC 12 takes a text put in front of a string for an overlapping copy when it optimises (its bug 105651).
target_compile_options(house INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
target_link_libraries(house INTERFACE Threads::Threads)
# Asio and Beast are compiled once, in xr_com and ara_rest; exceptions keep their standard types.
target_compile_definitions(house INTERFACE BOOST_ASIO_NO_DEPRECATED BOOST_BEAST_USE_STD_STRING_VIEW)
target_compile_options(house INTERFACE
  $<$<CONFIG:Release>:-fstack-protector-strong;-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=2;-D_GLIBCXX_ASSERTIONS>)
target_link_options(house INTERFACE $<$<CONFIG:Release>:-pie;-Wl,-z,relro,-z,now>)
if(CMC_SANITIZER)
  target_compile_options(house INTERFACE -fsanitize=${CMC_SANITIZER} -fno-omit-frame-pointer)
  target_link_options(house INTERFACE -fsanitize=${CMC_SANITIZER})
  if(CMC_SANITIZER STREQUAL "thread")
    # GCC warns that it does not follow Asio's fences; they only strengthen what it does follow.
    target_compile_options(house INTERFACE -Wno-tsan)
  endif()
  if(CMC_SANITIZER STREQUAL "address")
    target_compile_options(house INTERFACE -fsanitize=undefined -fno-sanitize-recover=undefined)
    target_link_options(house INTERFACE -fsanitize=undefined)
  endif()
endif()

if(CMC_FUZZ)
  # The fuzzer sees the ways through all code, not only through the targets' own.
  target_compile_options(house INTERFACE -fsanitize=fuzzer-no-link)
  target_compile_definitions(house INTERFACE _GLIBCXX_ASSERTIONS)
endif()

# cmc_library(<name> [ROOT <include root>] SOURCES <files…> [LINK <targets…>])
# ROOT defaults to the top of the tree; a platform folder is an include root of its own.
function(cmc_library name)
  cmake_parse_arguments(ARG "" "ROOT" "SOURCES;LINK" ${ARGN})
  if(NOT ARG_ROOT)
    set(ARG_ROOT ${CMAKE_SOURCE_DIR})
  endif()
  if(ARG_SOURCES)
    add_library(${name} STATIC ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${ARG_ROOT})
    target_link_libraries(${name} PUBLIC house ${ARG_LINK})
  else()
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${ARG_ROOT})
    target_link_libraries(${name} INTERFACE house ${ARG_LINK})
  endif()
endfunction()
