# Imported targets for every third-party dependency.
find_package(Threads REQUIRED)
find_package(Boost 1.74 REQUIRED COMPONENTS regex)
find_package(TBB REQUIRED)
find_package(PkgConfig REQUIRED)
# Debian's libzip CMake package names its command-line tools too; pkg-config needs only the library.
pkg_check_modules(LIBZIP REQUIRED IMPORTED_TARGET libzip)
add_library(libzip::zip ALIAS PkgConfig::LIBZIP)
# The C++ build of Lua, so that a Lua error unwinds C++ frames instead of longjmp-ing over them.
pkg_check_modules(LUA REQUIRED IMPORTED_TARGET lua5.4-c++)
add_library(Lua::lua ALIAS PkgConfig::LUA)
if(BKETC_BUILD_TESTS)
  find_package(GTest REQUIRED)
endif()
if(BKETC_BUILD_BENCH)
  find_package(benchmark REQUIRED)
endif()
