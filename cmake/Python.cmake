# Finds a Python that has NumPy: QUO_PYTHON, QUO_NUMPY_FOUND. One for another processor than this is not looked for.
# Debian's interpreter first: its NumPy and pytest are the ones that a package of the module depends on.
find_program(QUO_PYTHON python3 HINTS /usr/bin)
set(QUO_NUMPY_MISSING 1)
if(QUO_PYTHON)
  execute_process(COMMAND ${QUO_PYTHON} -c "import numpy" RESULT_VARIABLE QUO_NUMPY_MISSING OUTPUT_QUIET ERROR_QUIET)
endif()
if(QUO_NUMPY_MISSING OR CMAKE_CROSSCOMPILING)
  set(QUO_NUMPY_FOUND OFF)
else()
  set(QUO_NUMPY_FOUND ON)
endif()
