# Hidden-line model: records, construction helpers and the tessellators.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/hd_records.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hd_points.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hd_builders.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_box.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_revolved.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_cone.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_sphere.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_torus.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_head.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hd_section.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_swept.cpp
  ${CMAKE_CURRENT_LIST_DIR}/tess_squcir.cpp)
