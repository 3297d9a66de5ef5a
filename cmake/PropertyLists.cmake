# The property-list library as PkgConfig::PLIST.

find_package(PkgConfig REQUIRED)

pkg_check_modules(PLIST REQUIRED IMPORTED_TARGET libplist-2.0>=2.2)
