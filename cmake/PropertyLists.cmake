# The property-list library as PkgConfig::PLISTPP.

find_package(PkgConfig REQUIRED)

pkg_check_modules(PLISTPP REQUIRED IMPORTED_TARGET libplist++-2.0>=2.2)
