# Debian packages only; nothing is downloaded at configure time.
find_package(Threads REQUIRED)
find_package(LAPACK REQUIRED)
find_package(PkgConfig REQUIRED)
foreach(entry "EGL:egl" "GLES:glesv2" "GLU:glu" "SPNG:spng" "DEFLATE:libdeflate" "JPEG:libturbojpeg" "WEBP:libwebp"
              "CAIRO:cairo" "SQLITE:sqlite3" "CURL:libcurl")
    string(REPLACE ":" ";" pair ${entry})
    list(GET pair 0 name)
    list(GET pair 1 module)
    pkg_check_modules(${name} REQUIRED IMPORTED_TARGET ${module})
endforeach()
