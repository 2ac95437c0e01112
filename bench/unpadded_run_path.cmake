# CMake pads the run path of what it will install with an empty entry, for which the loader looks
# through the working directory. What users start has none: copies FROM to TO without it.
file(COPY_FILE "${FROM}" "${TO}")
file(RPATH_CHANGE FILE "${TO}" OLD_RPATH "$ORIGIN/../${LIBDIR}:" NEW_RPATH "$ORIGIN/../${LIBDIR}")
