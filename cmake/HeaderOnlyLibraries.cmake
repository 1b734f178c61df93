# The header-only libraries of the bench host and vant, as the distribution packages them: toml++, CLI11, nlohmann-json
# and fmt.

add_library(vant_header_only INTERFACE)
target_compile_definitions(vant_header_only INTERFACE TOML_HEADER_ONLY=0)
if(NOT CMAKE_CROSSCOMPILING)
  find_package(tomlplusplus REQUIRED)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_package(fmt REQUIRED)
  # Of toml++ the headers alone, which the package keeps in the compiler's own folder: the host compiles the parser
  # with its own assertions.
  target_link_libraries(vant_header_only INTERFACE CLI11::CLI11 nlohmann_json::nlohmann_json fmt::fmt-header-only)
  return()
endif()

# A cross-compilation must not see the rest of the build machine's headers, so these are linked into a folder of their
# own.
set(header_dir ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${header_dir})
foreach(library toml++ CLI nlohmann fmt)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "The headers of ${library} are not installed; script/bootstrap installs them.")
  endif()
  file(CREATE_LINK /usr/include/${library} ${header_dir}/${library} SYMBOLIC)
endforeach()
target_include_directories(vant_header_only SYSTEM INTERFACE ${header_dir})
target_compile_definitions(vant_header_only INTERFACE FMT_HEADER_ONLY=1)
