# Hidden-line engine: the hide pass (per face, per line, reference and engine) and face
# intersection.
target_sources(vogebasic_objects PRIVATE
  ${CMAKE_CURRENT_LIST_DIR}/hide_face.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_pass.cpp
  ${CMAKE_CURRENT_LIST_DIR}/hide_engine.cpp
  ${CMAKE_CURRENT_LIST_DIR}/face_intersect.cpp
  ${CMAKE_CURRENT_LIST_DIR}/box_index.cpp)
