# The FFmpeg libraries as PkgConfig::AVFORMAT and so on. The lower bounds are FFmpeg 5.1.
# Headers of imported targets count as system headers: they raise no warnings.

find_package(PkgConfig REQUIRED)

pkg_check_modules(AVFORMAT REQUIRED IMPORTED_TARGET libavformat>=59.27)
pkg_check_modules(AVCODEC REQUIRED IMPORTED_TARGET libavcodec>=59.37)
pkg_check_modules(AVUTIL REQUIRED IMPORTED_TARGET libavutil>=57.28)
pkg_check_modules(AVFILTER REQUIRED IMPORTED_TARGET libavfilter>=8.44)
pkg_check_modules(SWSCALE REQUIRED IMPORTED_TARGET libswscale>=6.7)
pkg_check_modules(SWRESAMPLE REQUIRED IMPORTED_TARGET libswresample>=4.7)
