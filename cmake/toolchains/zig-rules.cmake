# Archive rules of the zig toolchain: zig is the archiver and the ranlib (Mach-O archives
# included). Read after the platform's own rules, which would call CMAKE_AR as an ar program.
foreach(lang C CXX)
    set(CMAKE_${lang}_ARCHIVE_CREATE "<CMAKE_AR> ar qc <TARGET> <LINK_FLAGS> <OBJECTS>")
    set(CMAKE_${lang}_ARCHIVE_APPEND "<CMAKE_AR> ar q <TARGET> <LINK_FLAGS> <OBJECTS>")
    set(CMAKE_${lang}_ARCHIVE_FINISH "<CMAKE_RANLIB> ranlib <TARGET>")
endforeach()
