# Run by cpack. tarnwick-mesh alone needs the libraries of the geometry kernel, and all else works without them: what it calls
# is recommended by the package, and the rest is what the package depends on.
set(mesh ${CPACK_TARNWICK_MESH})
find_program(dpkg_shlibdeps dpkg-shlibdeps REQUIRED)

# It reads a control file where it runs.
set(folder ${CPACK_PACKAGE_DIRECTORY}/kernel-libraries)
file(WRITE ${folder}/debian/control "Source: tarnwick\n\nPackage: tarnwick\nArchitecture: any\n")
execute_process(COMMAND ${dpkg_shlibdeps} -O -e${mesh} WORKING_DIRECTORY ${folder}
  OUTPUT_VARIABLE libraries OUTPUT_STRIP_TRAILING_WHITESPACE ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
string(REGEX REPLACE "^shlibs:Depends=" "" libraries "${libraries}")
string(REPLACE ", " ";" libraries "${libraries}")
# The package depends on these in any case.
list(FILTER libraries EXCLUDE REGEX "^(libc6|libgcc-s1|libstdc\\+\\+6)( |$)")
list(JOIN libraries ", " libraries)
string(APPEND CPACK_DEBIAN_PACKAGE_RECOMMENDS ", ${libraries}")

# In place of dpkg-shlibdeps, for the programs that cpack finds.
set(SHLIBDEPS_EXECUTABLE ${folder}/shlibdeps)
file(WRITE ${SHLIBDEPS_EXECUTABLE} "#!/bin/sh
for word; do
  shift
  case $word in */tarnwick-mesh) ;; *) set -- \"$@\" \"$word\" ;; esac
done
exec ${dpkg_shlibdeps} \"$@\"
")
file(CHMOD ${SHLIBDEPS_EXECUTABLE} PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE)
