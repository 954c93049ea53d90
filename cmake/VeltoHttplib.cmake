# cpp-httplib for the local test servers: Homebrew ships a CMake package (header-only), Debian a
# compiled library described by pkg-config, whose compile flags must match the library's.
if(NOT TARGET velto_httplib)
  find_package(httplib CONFIG QUIET)
  add_library(velto_httplib INTERFACE)
  if(TARGET httplib::httplib)
    target_link_libraries(velto_httplib INTERFACE httplib::httplib)
  else()
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(CPP_HTTPLIB REQUIRED IMPORTED_TARGET cpp-httplib)
    target_link_libraries(velto_httplib INTERFACE PkgConfig::CPP_HTTPLIB)
  endif()
endif()
