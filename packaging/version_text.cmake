# Writes the source file with what --version prints, and leaves it alone while that stays the same.
# cmake -DSOURCE=folder -DOUTPUT=file -P version_text.cmake
# The build is the package's revision and the commit: from git, else from what an archive of the sources says.

file(STRINGS ${SOURCE}/packaging/debian/changelog changelog LIMIT_COUNT 1)
string(REGEX REPLACE "^kavro \\(([^)]+)\\).*" "\\1" package "${changelog}")
string(REGEX REPLACE "-[^-]*$" "" version "${package}")

set(commit)
set(changes)
if(EXISTS ${SOURCE}/.git)
  # The time of the one who builds plays no part, nor how many digits git finds enough.
  execute_process(COMMAND git -C ${SOURCE} log -1 "--format=%cs %H"
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
  execute_process(COMMAND git -C ${SOURCE} status --porcelain --untracked-files=no
    OUTPUT_VARIABLE changes OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET)
else()
  file(STRINGS ${SOURCE}/packaging/archive_commit.txt commit LIMIT_COUNT 1)
endif()

set(build "build ${package}")
if(commit MATCHES "^([0-9-]+) ([0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f])")
  string(APPEND build ", ${CMAKE_MATCH_1} ${CMAKE_MATCH_2}")
  if(changes)
    string(APPEND build " with changes")
  endif()
endif()

set(text "#include \"map/product.h\"\n\nconst char* const kavro::VersionText = \"${version} (${build})\";\n")
set(before)
if(EXISTS ${OUTPUT})
  file(READ ${OUTPUT} before)
endif()
if(NOT text STREQUAL before)
  file(WRITE ${OUTPUT} "${text}")
endif()
