# Installs the built libraries, and moves them to another folder, as a package may be moved.
#
#     cmake -DBUILD_DIR=... -DPREFIX=... -P install.cmake

file(REMOVE_RECURSE ${PREFIX} ${PREFIX}.installed)
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}.installed
                COMMAND_ERROR_IS_FATAL ANY OUTPUT_QUIET)
file(RENAME ${PREFIX}.installed ${PREFIX})
