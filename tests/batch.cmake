# cmake -D OUTPUT=FILE -D NAMES=... -D SOURCES=... -D MOCS=... -P batch.cmake: writes the file that
# has those tests compiled as one, each in a namespace of its own: they may call different things
# alike, and each has a main(). What they include comes before, outside of the namespaces and under
# the conditions that it stands under.
set(batch "")
foreach(source ${SOURCES} ${MOCS})
  file(STRINGS ${source} lines REGEX "^ *# *(include|if|ifdef|ifndef|elif|else|endif)( |$)")
  list(FILTER lines EXCLUDE REGEX "\\.moc\"")
  list(JOIN lines "\n" lines)
  string(APPEND batch "${lines}\n")
endforeach()
foreach(name source IN ZIP_LISTS NAMES SOURCES)
  string(APPEND batch "namespace ${name} {\n#include \"${source}\"\n}\n")
endforeach()
file(WRITE ${OUTPUT} "${batch}")
