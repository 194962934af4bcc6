# The base layer: shared numbers and the small kernels below the geometry classes.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/linear_solve.cpp
  ${CMAKE_CURRENT_LIST_DIR}/arbitrary_axis.cpp)
