# Hidden-line model: records, construction helpers, tessellators.
target_sources(vogebasic_tests PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/hd_builders_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_box_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_revolved_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_cone_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_sphere_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_torus_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_head_test.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_swept_test.cpp)
