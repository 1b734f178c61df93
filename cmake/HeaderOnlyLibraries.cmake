# The header-only libraries of the bench host and vant, as the distribution packages them. They are linked into a
# folder of their own, so that a cross-compilation sees them and nothing else of the build machine's headers.

set(header_dir ${PROJECT_BINARY_DIR}/headers)
file(MAKE_DIRECTORY ${header_dir})
foreach(library toml++ CLI nlohmann)
  if(NOT EXISTS /usr/include/${library})
    message(FATAL_ERROR "The headers of ${library} are not installed; script/bootstrap installs them.")
  endif()
  file(CREATE_LINK /usr/include/${library} ${header_dir}/${library} SYMBOLIC)
endforeach()
add_library(vant_header_only INTERFACE)
target_include_directories(vant_header_only SYSTEM INTERFACE ${header_dir})
