# cmake -DSOURCE_DIR=<checkout> -DOUTPUT=<file> -P WriteBuildCommit.cmake
# Writes the source that names the commit the program is built from: the short hash, with
# "-dirty" when tracked files differ from it; empty when the sources are no git checkout
# (or git is missing). The file is only rewritten when its text changes.
set(commit "")
find_program(GIT git)
if(GIT AND EXISTS "${SOURCE_DIR}/.git")
  execute_process(COMMAND ${GIT} -C "${SOURCE_DIR}" rev-parse --short HEAD
    OUTPUT_VARIABLE commit OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    set(commit "")
  endif()
  if(commit)
    # Optional locks off: the build must not take the index's lock while a commit is being made.
    execute_process(COMMAND ${GIT} --no-optional-locks -C "${SOURCE_DIR}" status --porcelain --untracked-files=no
      OUTPUT_VARIABLE changes ERROR_QUIET RESULT_VARIABLE rc)
    if(rc EQUAL 0 AND NOT changes STREQUAL "")
      string(APPEND commit "-dirty")
    endif()
  endif()
endif()
set(text "// Generated at build time by WriteBuildCommit.cmake.\n#include \"ProgramVersion.h\"\n\nconst char* const qi::kBuildCommit = \"${commit}\";\n")
if(EXISTS "${OUTPUT}")
  file(READ "${OUTPUT}" old)
else()
  set(old "")
endif()
if(NOT old STREQUAL text)
  file(WRITE "${OUTPUT}" "${text}")
endif()
