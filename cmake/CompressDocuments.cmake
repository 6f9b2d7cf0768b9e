# CPack runs this on the folder to be packed. Compresses the manual pages and the changelog without
# a time stamp, as Debian requires.
file(GLOB manuals ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/man/man*/*.[1-9])
set(changelog ${CPACK_TEMPORARY_INSTALL_DIRECTORY}/usr/share/doc/${CPACK_PACKAGE_NAME}/changelog)
configure_file(${CPACK_QUORBEL_CHANGELOG} ${changelog} COPYONLY)
execute_process(COMMAND gzip -9nf ${manuals} ${changelog} COMMAND_ERROR_IS_FATAL ANY)
